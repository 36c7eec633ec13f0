@0xd3b1c5a7e9f04826;
# A record of a number.
using Cxx = import "/capnp/c++.capnp";
$Cxx.namespace("Bench::Proto");

struct Record {
  entity @0 :UInt64;
  attribute @1 :Int32;
  value @2 :UInt32;
}

struct Mixed {
  entity @0 :UInt64;
  attribute @1 :Int32;
  union {
    flag @2 :Bool;
    number16 @3 :UInt16;
    number32 @4 :UInt32;
    number64 @5 :UInt64;
    mac @6 :UInt64;
    text @7 :Data;
    row @8 :Data;
    rowGone @9 :Data;
    pair :group {
      mac @10 :UInt64;
      vni @11 :UInt32;
    }
    pairGone :group {
      mac @12 :UInt64;
      vni @13 :UInt32;
    }
    binding :group {
      key @14 :UInt16;
      text @15 :Data;
    }
    word :group {
      key @16 :Data;
      text @17 :Data;
    }
    reference :group {
      address @18 :UInt32;
      target @19 :UInt64;
    }
  }
}

# Many of them, as they are sent together.
struct Batch {
  records @0 :List(Mixed);
}
