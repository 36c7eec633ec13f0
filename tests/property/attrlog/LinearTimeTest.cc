// What a peer sends is taken in time that grows with its bytes: twice the input takes at most 2.3
// times as long. And nothing that it nests goes deeper than 64.
#include "../../unit/dynamic/Described.h"

#include <fuzz/HostilePeer.h>

#include <qor/attrlog/session/Session.h>
#include <qor/tree/Dir.h>
#include <vgw/agent/Status.h>

#include <tests/support/Settings.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <ctime>

namespace {

using Qor::make;
using Qor::Name;
using Qor::NboAttrLog::MemoryTransport;
using Qor::NboAttrLog::Session;

constexpr std::uint64_t statusId = 0x8000000000000003;
constexpr std::uint64_t dbId = statusId + 2;
constexpr std::uint64_t switchId = statusId + 4;
constexpr std::uint64_t leafId = statusId + 6;

std::string number(std::uint64_t value, int width) {
    std::string result;
    for (int shift = 8 * (width - 1); shift >= 0; shift -= 8) {
        result += static_cast<char>(value >> shift & 0xFF);
    }
    return result;
}
std::string text(std::string const& value) { return number(value.size(), 4) + value; }
std::string mount(std::string const& path, std::uint32_t as = 1) {
    return hostileFrame(2, 0, 0, 1, 0, "\2" + number(as, 4) + "\1" + text(path));
}
std::string marker(std::uint64_t entity, std::uint32_t attribute, char type) {
    return hostileFrame(1, entity, attribute, 1, 0, std::string(1, type) + number(0, 4));
}

// A session of an agent's whose peer is bytes.
class Served {
  public:
    explicit Served(std::string const& path) {
        root_->entryIs(Name("status"), status);
        root_->entryIs(Name("dir"), make<Qor::Dir>(Name("dir")));
        auto const db = status->ovsdbIs(Name("db"));
        db->logicalSwitchIs(Name("ls"));
        db->physicalSwitchRawIs(Name("leaf"));
        MemoryTransport::connect(peer_, own_);
        Session::Config config;
        config.side = Qor::NboAttrLog::Demuxer::Side::accepting;
        config.peerMayWrite = true;
        session_ = std::make_unique<Session>(config, own_, root_);
        take(HostilePeer::hello() + mount(path));
    }
    // Bytes of the peer's; what the session sends is thrown away.
    void take(std::string const& bytes) {
        for (std::size_t at = 0; at < bytes.size(); at += 32768) {
            peer_.write(std::string_view(bytes).substr(at, 32768));
            session_->service();
            unsigned char sink[4096];
            while (peer_.read(sink) != 0) {
            }
        }
    }
    // One more tree to mount.
    Vgw::Status::Ptr newTree(char const* name) {
        auto const tree = Vgw::statusFactory(Name(name));
        root_->entryIs(Name(name), tree);
        return tree;
    }
    // Everything that is owed is sent.
    void drain() {
        unsigned char sink[49152];
        do {
            session_->service();
        } while (peer_.read(sink) != 0);
    }
    // Ends the session; how many entities it had given.
    std::size_t end() {
        std::size_t const given = session_->demuxer().adapters();
        session_.reset();
        return given;
    }
    std::string closed() const { return std::string(session_->closed().view()); }

    Vgw::Status::Ptr status = Vgw::statusFactory(Name("status"));

  private:
    Qor::Ptr<Qor::Dir> root_ = make<Qor::Dir>(Name("vgw"));
    MemoryTransport peer_;
    MemoryTransport own_;
    std::unique_ptr<Session> session_;
};

// This thread's time for some work, in seconds.
template <class Work>
double timeOf(Work const& work) {
    auto const now = [] {
        timespec at{};
        ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &at);
        return static_cast<double>(at.tv_sec) + static_cast<double>(at.tv_nsec) * 1e-9;
    };
    double const start = now();
    work();
    return now() - start;
}

// The machine is shared: what counts is the best of several, and of several tries.
template <class Cost>
void expectLinearCost(std::size_t count, Cost const& cost) {
    constexpr double most = 2.3;
    double ratio = 0;
    for (int tries = 0; tries < 6; ++tries) {
        double once = 1e9;
        double twice = 1e9;
        for (int round = 0; round < 5; ++round) {
            once = std::min(once, cost(count));
            twice = std::min(twice, cost(2 * count));
        }
        ratio = twice / once;
        if (ratio <= most) return;
    }
    ADD_FAILURE() << "twice the input takes " << ratio << " times as long";
}

void expectLinear(std::size_t count, std::string (*input)(std::size_t count)) {
    expectLinearCost(count, [input](std::size_t size) {
        std::string const bytes = input(size);
        Served served("/vgw/status");
        double const time = timeOf([&] { served.take(bytes); });
        EXPECT_EQ(served.closed(), "");
        return time;
    });
}

constexpr std::size_t unit = Settings::volume(10000, 500, 500);

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
