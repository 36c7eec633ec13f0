// What a peer sends is taken in time that grows with its bytes: twice the input takes at most 2.3
// times as long. And nothing that it nests goes deeper than 64.
#include "../../unit/dynamic/Described.h"

#include "ServedBytes.h"

#include <algorithm>

namespace {

using namespace ServedBytes;

TEST(LinearTime, Values) {
    expectLinear(unit, [](std::size_t count) {
        std::string bytes;
        for (std::size_t i = 0; i < count; ++i) {
            bytes += hostileFrame(0, switchId, 388, 1, 0, number(i, 4));
        }
        return bytes;
    });
}

TEST(LinearTime, TextInSingleBytes) {
    expectLinear(2 * unit, [](std::size_t count) {
        std::string bytes;
        for (std::size_t i = 0; i < count; ++i) {
            bytes += hostileFrame(0x80, switchId, 387, 1, 0, "x");
        }
        return bytes + hostileFrame(0, switchId, 387, 1, 0, "x");
    });
}

TEST(LinearTime, KeysAndTheirSnapshots) {
    expectLinear(unit / 4, [](std::size_t count) {
        std::string bytes = marker(leafId, 388, 0);
        for (std::size_t i = 0; i < count; ++i) {
            bytes += hostileFrame(0, leafId, 388, 1, 0, text("k" + std::to_string(i)) + "\1");
        }
        bytes += marker(leafId, 388, 2);
        return bytes + marker(leafId, 388, 0) + marker(leafId, 388, 2);
    });
}

TEST(LinearTime, ChildrenAndTheirEnd) {
    expectLinear(unit / 4, [](std::size_t count) {
        std::string bytes;
        for (std::size_t i = 0; i < count; ++i) {
            bytes += hostileFrame(0, dbId, 263, 1, 151,
                                  text("x" + std::to_string(i)) + number(1001 + 2 * i, 8));
        }
        return bytes + marker(dbId, 263, 0) + marker(dbId, 263, 2);
    });
}

TEST(LinearTime, ChildrenWhoseIdsFallIntoOneBucket) {
    expectLinear(unit / 2, [](std::size_t count) {
        std::string bytes;
        for (std::size_t i = 0; i < count; ++i) {
            std::uint64_t const id = std::uint64_t{i + 1} << 18 | 1;
            bytes +=
                hostileFrame(0, dbId, 263, 1, 151, text("x" + std::to_string(i)) + number(id, 8));
        }
        return bytes;
    });
}

TEST(LinearTime, RecordsThatAreSkipped) {
    expectLinear(unit, [](std::size_t count) {
        std::string bytes;
        for (std::size_t i = 0; i < count; ++i) {
            bytes += hostileFrame(0, 1001 + 2 * i, 387, 1, 0, "x");
            bytes += hostileFrame(0, switchId, 500, 1, 0, text("nothing"));
        }
        return bytes;
    });
}

// Snapshots of `count` entities of a tree that the peer opens and never ends, and then as many
// markers that are sent for another: what the latter take, in seconds.
double costOfMarkersBesideOpenSnapshots(std::size_t count) {
    Served served("/vgw/status");
    Vgw::Status::Ptr const other = served.newTree("other");
    auto const near = served.status->ovsdb();
    auto const far = other->ovsdbIs(Name("db"));
    for (std::size_t i = 0; i < count; ++i) {
        Name const name("p" + std::to_string(i));
        near->physicalPortIs(name);
        far->physicalPortIs(name)->vlanBindingIs(1, "ls");
    }
    served.drain();
    std::string open;
    for (std::uint64_t id = leafId + 2; id < leafId + 2 + 2 * count; id += 2) {
        open += marker(id, 388, 0);
    }
    served.take(open);
    return timeOf([&] {
        served.take(mount("/vgw/other", 2));
        served.drain();
        EXPECT_EQ(served.closed(), "");
    });
}

TEST(LinearTime, MarkersBesideSnapshotsThatAreOpen) {
    expectLinearCost(unit / 8, costOfMarkersBesideOpenSnapshots);
}

// An entity with a reference to another.
Qor::TypeDescription link(std::string const& name, std::string const& to, std::uint32_t size) {
    Qor::TypeDescription result;
    result.fullName = Name(name);
    result.base = Name("Qor::Entity");
    result.kind = Qor::TypeDescription::Kind::entity;
    result.size = size;
    if (!to.empty()) {
        result.attributes = {{258, Name("next"), Name(to), Name(), {}, {}, Name(), {}}};
    }
    return result;
}

// A chain of types, each of which builds on the next one, is described; then once more, with
// another last one: what taking in the second takes, in seconds. The first of each length is kept.
double costOfChangedType(std::size_t count) {
    static std::uint32_t changes = 0;
    Qor::DescribedTypes types{Qor::DescribedTypes::Quota()};
    auto const nameOf = [count](std::size_t at) {
        std::string const digits = std::to_string(10000 + at);
        return "Chain" + std::to_string(count) + "::T" + digits;
    };
    for (std::size_t at = 0; at + 1 < count; ++at) {
        Described::take(types, link(nameOf(at), nameOf(at + 1), 8));
    }
    Described::take(types, link(nameOf(count - 1), "", ++changes));
    return timeOf([&] { types.complete(); });
}

TEST(LinearTime, TypesThatBuildOnAChangedOne) {
    constexpr std::size_t types = Settings::volume(400, 100, 100);
    costOfChangedType(types);
    costOfChangedType(2 * types);
    expectLinearCost(types, costOfChangedType);
}

// What the end of a session takes that has given `count` entities, in seconds.
double costOfEnd(std::size_t count) {
    Served served("/vgw/status");
    for (std::size_t i = 0; i < count; ++i) {
        served.status->ovsdb()->logicalSwitchIs(Name("ls" + std::to_string(i)));
    }
    served.drain();
    std::size_t given = 0;
    double const time = timeOf([&] { given = served.end(); });
    EXPECT_EQ(given, 4 + count);
    return time;
}

// Twice as many would not tell: what lies in no cache any more takes three times as long each.
TEST(LinearTime, TheEndOfASessionThatHasGivenManyEntities) {
    constexpr std::size_t few = unit * 2 / 5;
    constexpr std::size_t factor = 32;
    double const most = 5 * factor;
    double once = 1e9;
    double often = 1e9;
    for (int tries = 0; tries < 3 && (tries == 0 || often > most * once); ++tries) {
        once = std::min({once, costOfEnd(few), costOfEnd(few)});
        often = std::min(often, costOfEnd(factor * few));
    }
    EXPECT_LE(often / once, most);
}

// Directories that the peer announces, each in the one before it.
TEST(Depth, DirectoriesEndAtSixtyFour) {
    Served served("/vgw/dir");
    // A receipt for all that was sent and will be: nothing that is announced has crossed.
    served.take(hostileFrame(3, 0, 0, 1, 0, number(1U << 30, 8)));
    std::uint64_t above = statusId;
    for (std::uint64_t id = 101; id < 101 + 2 * 200 && served.closed().empty(); id += 2) {
        std::string const chain = text("Qor::Dir");
        served.take(hostileFrame(0, above, 258, 1, 151,
                                 text("d") + number(0, 1) + number(id, 8) +
                                     number(chain.size(), 4) + chain + text("d")));
        above = id;
    }
    EXPECT_EQ(served.closed(), "entities more than 64 deep");
}

}  // namespace
