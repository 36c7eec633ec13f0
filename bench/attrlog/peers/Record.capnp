@0xd3b1c5a7e9f04826;
# A record of a number.
using Cxx = import "/capnp/c++.capnp";
$Cxx.namespace("Bench::Proto");

struct Record {
  entity @0 :UInt64;
  attribute @1 :Int32;
  value @2 :UInt32;
}
