// Whatever a handler or a call of a session's listener lets go of, at any step of a mount: its
// session, the entity that it hears of, that one's parent, or the other end. Nothing is touched
// afterwards, and the rest goes on.
#include <tests/memory/Pair.h>

#include <vgw/agent/Status.h>

#include <gtest/gtest.h>

#include <functional>
#include <optional>
#include <vector>

namespace {

using Memory::Pair;
using Qor::make;
using Qor::Name;

struct World;
using Act = void (*)(World& world);

// Hears of everything below a status, and acts at the nth call.
class Watch {
  public:
    Watch(World& world, Act act, unsigned nth) : world_(world), act_(act), left_(nth) {}
    void heard() {
        ++calls;
        if (left_ != 0 && --left_ == 0) act_(world_);
    }
    void watchRow(Vgw::LogicalSwitch::Ptr const& row);
    void watchDb(Vgw::HwVtepOvsdb::Ptr const& db);
    unsigned calls = 0;

  private:
    World& world_;
    Act const act_;
    unsigned left_;
    std::vector<Qor::Ptr<Qor::Entity::NotifieeConst>> notifiees_;
};

class RowHeard : public Vgw::LogicalSwitch::NotifieeConst {
  public:
    explicit RowHeard(Watch& watch) : watch_(watch) {}
    void onDesc() override { watch_.heard(); }
    void onTunnelKey() override { watch_.heard(); }

  private:
    Watch& watch_;
};

class DbHeard : public Vgw::HwVtepOvsdb::NotifieeConst {
  public:
    explicit DbHeard(Watch& watch) : watch_(watch) {}
    void onLogicalSwitch(Name name) override {
        auto const db = const_cast<Vgw::HwVtepOvsdb*>(notifier().ptr());
        if (auto const row = db->logicalSwitch(name)) watch_.watchRow(row);
        watch_.heard();
    }
    void onPhysicalSwitch(Qor::String8) override { watch_.heard(); }
    void onPhysicalSwitchRaw(Name) override { watch_.heard(); }

  private:
    Watch& watch_;
};

class StatusHeard : public Vgw::Status::NotifieeConst {
  public:
    explicit StatusHeard(Watch& watch) : watch_(watch) {}
    void onOvsdb() override {
        auto const status = const_cast<Vgw::Status*>(notifier().ptr());
        if (auto const db = status->ovsdb()) watch_.watchDb(db);
        watch_.heard();
    }
    void onRunning() override { watch_.heard(); }

  private:
    Watch& watch_;
};

// What each end is told by its session.
class SessionHeard : public Qor::NboAttrLog::SessionListener {
  public:
    explicit SessionHeard(Watch& watch) : watch_(watch) {}
    using Entity = Qor::Entity;
    using MountId = Qor::NboAttrLog::MountId;
    using String8 = Qor::String8;
    void onMounted(MountId, Qor::Ptr<Entity> const&) override { watch_.heard(); }
    void onSynced(MountId) override { watch_.heard(); }
    void onRefused(MountId, String8 const&) override { watch_.heard(); }
    void onPong(Qor::Seconds) override { watch_.heard(); }
    void onReturned(Qor::NboAttrLog::CallId, bool, String8 const&) override { watch_.heard(); }
    void onDigested(Qor::NboAttrLog::DigestPage const&, Qor::NboAttrLog::StateDigest const&,
                    String8 const&) override {
        watch_.heard();
    }
    String8 onAsked(String8 const&, bool, Entity&) override { return heard(); }
    void onGiven(MountId, String8 const&, bool) override { watch_.heard(); }
    String8 onAskedToCall(String8 const&, String8 const&, Entity&) override { return heard(); }
    void onTakenBack(MountId) override { watch_.heard(); }
    void onWritten(Entity&, Qor::AttributeId) override { watch_.heard(); }

  private:
    String8 heard() {
        watch_.heard();
        return {};
    }

    Watch& watch_;
};

void Watch::watchRow(Vgw::LogicalSwitch::Ptr const& row) {
    auto const notifiee = make<RowHeard>(*this);
    notifiee->isWeakReferenceIs(true);
    notifiee->notifierIs(row);
    notifiees_.push_back(notifiee);
}

void Watch::watchDb(Vgw::HwVtepOvsdb::Ptr const& db) {
    auto const notifiee = make<DbHeard>(*this);
    notifiee->isWeakReferenceIs(true);
    notifiee->notifierIs(db);
    notifiees_.push_back(notifiee);
}

// A source, a copy with a notifiee on everything, and a second copy that nobody disturbs.
struct World {
    World(Act act, unsigned nth, bool mayWrite) : watch(*this, act, nth), isWritable(mayWrite) {
        root->entryIs(Name("status"), original);
        bystander.emplace(root);
        bystander->reader->mount("/vgw/status", false, other);
        pair.emplace(root, isWritable);
        pair->reader->listenerIs(&sessionHeard);
        pair->agent->listenerIs(&sessionHeard);
        statusHeard = make<StatusHeard>(watch);
        statusHeard->isWeakReferenceIs(true);
        statusHeard->notifierIs(copy);
        pair->reader->mount("/vgw/status", isWritable, copy);
    }
    void run() {
        settle();
        fill();
        settle();
        ask();
        settle();
        if (isWritable && copy) copy->runningIs(!copy->running());
        auto const db = original->ovsdbIs(Name("db"));
        db->logicalSwitchDel(Name("a"));
        db->logicalSwitchIs(Name("b"))->tunnelKeyIs(6);
        original->runningIs(false);
        settle();
        original->ovsdbDel();
        settle();
        fill();
        settle();
    }
    void fill() {
        original->runningIs(true);
        auto const db = original->ovsdbIs(Name("db"));
        db->logicalSwitchIs(Name("a"))->descIs("x");
        db->logicalSwitchIs(Name("b"))->tunnelKeyIs(5);
        db->physicalSwitchIs("s", db->physicalSwitchRawIs(Name("s")));
    }
    // All else that a session may be asked for.
    void ask() {
        if (!pair->reader) return;
        auto& reader = *pair->reader;
        reader.ping();
        reader.call("/vgw/status", "qorHasAttrLogInterface", {});
        reader.askForDigest({"/vgw/status", 0, "", 1});
        reader.mount("/vgw/none", false);
        reader.mount("/vgw", false);  // refused: one below it stands by itself
        reader.unmount(reader.mount("/vgw/status/ovsdb", false));
        reader.mount("/vgw/status", false);
    }
    // What an act has ended is let go of between turns, as a caller's loop would.
    void settle() {
        for (int turn = 0; turn < 20; ++turn) {
            if (pair) pair->turn();
            bystander->turn();
        }
    }

    Qor::Ptr<Qor::Dir> root = make<Qor::Dir>(Name("vgw"));
    Vgw::Status::Ptr original = Vgw::statusFactory(Name("status"));
    Vgw::Status::Ptr copy = Vgw::statusFactory(Name("status"));
    Vgw::Status::Ptr other = Vgw::statusFactory(Name("status"));
    Watch watch;
    bool const isWritable;
    SessionHeard sessionHeard{watch};
    Qor::Ptr<StatusHeard> statusHeard;
    std::optional<Pair> pair;
    std::optional<Pair> bystander;
};

// Runs the script with the act in each call of a handler or listener in turn.
void atEachCall(Act act, bool isWritable = false) {
    for (unsigned nth = 1;; ++nth) {
        SCOPED_TRACE("call " + std::to_string(nth));
        World world(act, nth, isWritable);
        world.run();
        ASSERT_TRUE(world.bystander->isOpen());
        ASSERT_EQ(world.other->running(), world.original->running());
        auto const there = world.other->ovsdb();
        auto const db = world.original->ovsdb();
        ASSERT_EQ(there != nullptr, db != nullptr);
        if (db) {
            ASSERT_EQ(there->logicalSwitchs(), db->logicalSwitchs());
            ASSERT_EQ(there->physicalSwitchs(), db->physicalSwitchs());
        }
        if (world.watch.calls < nth) {
            EXPECT_GT(nth, 10U);
            break;
        }
    }
}

TEST(Teardown, OfTheSessionBySayingSo) {
    atEachCall([](World& world) { world.pair->reader->close("enough"); });
}

TEST(Teardown, OfTheSessionItself) {
    for (bool const isWritable : {false, true}) {
        atEachCall([](World& world) { world.pair->reader.reset(); }, isWritable);
    }
}

TEST(Teardown, OfTheSessionThatGives) {
    for (bool const isWritable : {false, true}) {
        atEachCall([](World& world) { world.pair->agent.reset(); }, isWritable);
    }
}

TEST(Teardown, OfBothSessionsAndTheCopy) {
    atEachCall([](World& world) {
        world.copy = nullptr;
        world.pair->reader.reset();
        world.pair->agent.reset();
    });
}

TEST(Teardown, OfTheMount) {
    atEachCall([](World& world) { world.pair->reader->unmount(1); });
}

TEST(Teardown, OfAllMounts) {
    atEachCall([](World& world) {
        for (Qor::NboAttrLog::MountId mount = 1; mount < 8; ++mount) {
            world.pair->reader->unmount(mount);
        }
    });
}

TEST(Teardown, OfTheConnection) {
    atEachCall([](World& world) { world.pair->near.cut(); });
}

TEST(Teardown, OfTheOtherEnd) {
    atEachCall([](World& world) {
        world.pair->agent.reset(new Memory::Session({}, world.pair->far, nullptr));
    });
}

TEST(Teardown, OfTheContainer) {
    atEachCall([](World& world) { world.copy->ovsdbDel(); });
}

TEST(Teardown, OfEveryRow) {
    atEachCall([](World& world) {
        if (auto const db = world.copy->ovsdb()) db->clear();
    });
}

TEST(Teardown, OfTheCopy) {
    atEachCall([](World& world) { world.copy = nullptr; });
}

TEST(Teardown, OfTheAdapter) {
    atEachCall([](World& world) {
        if (!world.copy || !world.copy->ovsdb()) return;
        world.copy->ovsdb()->qorNboAttrLogSaDel(
            Qor::Ptr<Qor::NboAttrLog::Out const>(world.pair->reader->demuxer().out()));
    });
}

TEST(Teardown, OfTheSource) {
    atEachCall([](World& world) {
        auto const db = world.original->ovsdb();
        if (db) db->clear();
        world.original->ovsdbDel();
    });
}

}  // namespace
