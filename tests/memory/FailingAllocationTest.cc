// Memory fails at each request of a script in turn: the script completes, or says so, and with
// memory there again everything works and comes to the same end.
#include "CountingNew.h"
#include "Pair.h"

#include <vgw/agent/Status.h>
#include <vgw/tables/UcastMacsLocal.h>

#include <gtest/gtest.h>

#include <functional>
#include <new>
#include <optional>

namespace {

using Memory::Pair;
using Qor::make;
using Qor::Name;

struct World {
    Qor::Ptr<Qor::Dir> root = make<Qor::Dir>(Name("vgw"));
    Qor::Ptr<Qor::Dir> macs = make<Qor::Dir>(Name("macs"));
    Vgw::Status::Ptr original = Vgw::statusFactory(Name("status"));
    Vgw::Status::Ptr copy = Vgw::statusFactory(Name("status"));
    Qor::Ptr<Qor::Dir> macsCopy = make<Qor::Dir>(Name("macs"));
    std::optional<Pair> pair;
    std::size_t room = ~std::size_t{0};  // on the way to the reader, while the script runs

    World() {
        root->entryIs(Name("status"), original);
        root->entryIs(Name("macs"), macs);
    }
    void connect() {
        pair.emplace(root, true);
        pair->near.roomIs(room);
        pair->reader->mount("/vgw/status", true, copy);
        pair->reader->mount("/vgw/macs", true, macsCopy);
    }
};

void fill(Vgw::Status& status) {
    auto const db = status.ovsdbIs(Name("db"));
    status.runningIs(true);
    db->logicalSwitchIs(Name("ls"))->descIs(Qor::String8(std::string(70000, 'd').c_str()));
    auto const leaf = db->physicalSwitchRawIs(Name("leaf"));
    leaf->portIs("p", true);
    db->physicalSwitchIs("leaf", leaf);
    db->physicalPortIs(Name("p"))->vlanBindingIs(7, "ls");
    db->physicalLocatorRawIs(Name("l"))->bfdIs("enable", "true");
}

// What a copy has to hold in the end; text alone, so that comparing fails nowhere.
std::string held(Vgw::Status const& status, Qor::Dir const& macs) {
    std::string text = status.running() ? "running " : "";
    if (auto const db = status.ovsdb()) {
        for (auto at = db->logicalSwitchIterator(); at; ++at) {
            text +=
                std::string(at.key().view()) + " " + std::to_string(at.value()->desc().length());
            text += " " + std::to_string(at.value()->tunnelKey());
        }
        for (auto at = db->physicalSwitchIterator(); at; ++at) {
            text += " " + std::string(at.key().view()) + std::to_string(at.value()->ports());
        }
        for (auto at = db->physicalPortIterator(); at; ++at) {
            text += " " + std::string(at.value()->vlanBinding(7).view());
        }
        text += " " + std::to_string(db->physicalLocatorRaws());
    }
    return text + " " + std::to_string(macs.entrys());
}

// The script's steps; what is raised to a caller ends the step and not the script.
class Steps {
  public:
    void operator()(std::function<void()> const& step) {
        try {
            step();
        } catch (std::bad_alloc const&) {
            isTold_ = true;
        } catch (Qor::Exception const&) {
            isTold_ = true;
        }
    }
    // Whether a caller was told that something was not done.
    bool isTold() const { return isTold_; }

  private:
    bool isTold_ = false;
};

// Whether a caller was told of a failure.
bool play(World& world) {
    Steps attempt;
    auto const settle = [&] {
        if (world.pair) world.pair->settle();
    };
    attempt([&] { world.connect(); });
    attempt(settle);
    attempt([&] { fill(*world.original); });
    attempt(settle);
    attempt([&] {
        world.macs->entryIs(Name("m"),
                            make<Vgw::UcastMacsLocal>(Kelp::EthAddr("00:00:5e:00:53:01")));
    });
    attempt([&] {
        if (world.pair) world.pair->turn();
    });
    attempt([&] {
        auto const db = world.original->ovsdb();
        if (db) db->logicalSwitchDel(Name("ls"));
        if (db) db->logicalSwitchIs(Name("other"))->tunnelKeyIs(5);
    });
    attempt(settle);
    return attempt.isTold();
}

// The same over a copy that holds something already, with another writer at the reader.
bool playAgain(World& world) {
    bool isTold = play(world);
    Steps attempt;
    attempt([&] {
        if (auto const db = world.copy->ovsdb()) db->logicalSwitchIs(Name("far"))->descIs("x");
    });
    attempt([&] { world.connect(); });
    attempt([&] {
        if (world.pair) world.pair->settle();
    });
    return isTold || attempt.isTold();
}

// Ends the session if it has not ended, takes a new one, and completes what may have been left out.
void recover(World& world) {
    world.pair.reset();
    world.room = ~std::size_t{0};
    fill(*world.original);
    world.macs->entryIs(Name("m"), make<Vgw::UcastMacsLocal>(Kelp::EthAddr("00:00:5e:00:53:01")));
    world.original->ovsdb()->logicalSwitchIs(Name("other"))->tunnelKeyIs(5);
    world.connect();
    ASSERT_TRUE(world.pair->settle());
    ASSERT_TRUE(world.pair->isOpen())
        << world.pair->agent->closed().charPtr() << " / " << world.pair->reader->closed().charPtr();
    ASSERT_EQ(held(*world.copy, *world.macsCopy), held(*world.original, *world.macs));
}

// A session that did not end has done all that was asked.
void expectDoneOrSaid(World& world) {
    if (!world.pair || !world.pair->isOpen()) return;
    world.pair->near.roomIs(~std::size_t{0});
    EXPECT_TRUE(world.pair->settle());
    if (!world.pair->isOpen()) return;
    EXPECT_EQ(held(*world.copy, *world.macsCopy), held(*world.original, *world.macs));
}

using Script = bool (*)(World& world);

// How many requests of the script failed, one a run.
std::uint64_t failEach(Script script, std::size_t room) {
    {
        World warm;
        script(warm);
        recover(warm);
    }
    for (std::uint64_t nth = 1;; ++nth) {
        SCOPED_TRACE("request " + std::to_string(nth));
        std::size_t const before = Memory::heldBlocks();
        bool hasFailed = false;
        {
            World world;
            world.room = room;
            Memory::failAt(nth);
            bool const isTold = script(world);
            hasFailed = Memory::hasFailed();
            Memory::failAt(0);
            if (!isTold) expectDoneOrSaid(world);
            recover(world);
        }
        EXPECT_LE(Memory::heldBlocks(), before + 2) << "something is kept";
        if (!hasFailed || testing::Test::HasFailure()) return nth - 1;
    }
}

TEST(FailingAllocation, EachRequestOfAScriptMayFail) {
    EXPECT_GT(failEach(play, ~std::size_t{0}), 100U);
}

TEST(FailingAllocation, EachRequestMayFailWhileTheReaderIsSlow) {
    EXPECT_GT(failEach(play, 700), 100U);
    EXPECT_GT(failEach(play, 0), 50U);
}

TEST(FailingAllocation, EachRequestMayFailAtASecondMountOfACopy) {
    EXPECT_GT(failEach(playAgain, ~std::size_t{0}), 150U);
}

// A transport whose nth call ends the connection.
class FailingTransport : public Qor::NboAttrLog::Transport {
  public:
    FailingTransport(Memory::MemoryTransport& inner, std::uint64_t& calls, std::uint64_t nth)
        : inner_(inner), calls_(calls), nth_(nth) {}
    std::size_t write(std::string_view bytes) override {
        count();
        return inner_.write(bytes);
    }
    std::size_t read(std::span<unsigned char> room) override {
        count();
        return inner_.read(room);
    }
    Qor::String8 closed() const override { return inner_.closed(); }

  private:
    void count() {
        if (++calls_ == nth_) inner_.cut();
    }
    Memory::MemoryTransport& inner_;
    std::uint64_t& calls_;
    std::uint64_t const nth_;
};

// The script with a connection that ends at the nth read or write; how many there were.
std::uint64_t cutAt(World& world, std::uint64_t nth) {
    std::uint64_t calls = 0;
    Memory::MemoryTransport near;
    Memory::MemoryTransport far;
    Memory::MemoryTransport::connect(near, far);
    near.roomIs(5000);
    FailingTransport one(near, calls, nth);
    FailingTransport other(far, calls, nth);
    Memory::Session::Config config;
    config.peerMayWrite = true;
    Memory::Session reader(config, one, nullptr);
    config.side = Qor::NboAttrLog::Demuxer::Side::accepting;
    Memory::Session agent(config, other, world.root);
    reader.mount("/vgw/status", true, world.copy);
    reader.mount("/vgw/macs", true, world.macsCopy);
    for (int turn = 0; turn < 60; ++turn) {
        if (turn == 3) fill(*world.original);
        agent.service(3000);
        reader.service(3000);
    }
    bool const isCut = nth <= calls;
    if (isCut) agent.service();
    EXPECT_EQ(isCut, agent.closed().length() != 0);
    EXPECT_EQ(isCut, reader.closed().length() != 0);
    return calls;
}

TEST(FailingTransport, EachReadAndWriteMayEndTheConnection) {
    for (std::uint64_t nth = 1;; ++nth) {
        SCOPED_TRACE("call " + std::to_string(nth));
        World world;
        std::uint64_t const calls = cutAt(world, nth);
        recover(world);
        ASSERT_FALSE(HasFailure());
        if (nth > calls) break;
    }
}

}  // namespace
