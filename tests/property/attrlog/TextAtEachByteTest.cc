// A long text is cut off, overwritten or its row removed after each byte of it that has gone over:
// whoever reads the copy sees the old text or the new one, and never a part.
#include <tests/memory/Pair.h>

#include <vgw/agent/Status.h>

#include <tests/support/Settings.h>

#include <gtest/gtest.h>

#include <functional>
#include <set>

namespace {

using Memory::Pair;
using Qor::make;
using Qor::Name;
using Qor::String8;

constexpr std::size_t stride = Settings::volume(1, 61, 61);

String8 text(char letter, std::size_t length) {
    return String8(std::string_view(std::string(length, letter)));
}

String8 const before = text('o', 40);
String8 const after = text('n', 10 * 1024);
String8 const last = text('l', 2000);
String8 const longAfter = text('N', 70000);

// What the copy's rows say, each time that they are told of a change.
class RowHeard : public Vgw::LogicalSwitch::NotifieeConst {
  public:
    explicit RowHeard(std::set<std::string>& heard) : heard_(heard) {}
    void onDesc() override { heard_.insert(std::string(notifier()->desc().view())); }

  private:
    std::set<std::string>& heard_;
};

class PortHeard : public Vgw::PhysicalPort::NotifieeConst {
  public:
    explicit PortHeard(std::set<std::string>& heard) : heard_(heard) {}
    void onVlanBinding(Qor::U16 vlan) override {
        heard_.insert(std::string(notifier()->vlanBinding(vlan).view()));
    }

  private:
    std::set<std::string>& heard_;
};

// A row and a port at the source, a copy that has the old texts, and the new ones on their way.
struct World {
    World() {
        root->entryIs(Name("status"), original);
        auto const db = original->ovsdbIs(Name("db"));
        row = db->logicalSwitchIs(Name("r"));
        port = db->physicalPortIs(Name("p"));
        row->descIs(before);
        port->vlanBindingIs(7, before);
        connect();
        pair->settle();
        rowHeard->notifierIs(copy->ovsdb()->logicalSwitch(Name("r")));
        portHeard->notifierIs(copy->ovsdb()->physicalPort(Name("p")));
    }
    // Both hold what they hear of otherwise.
    ~World() {
        rowHeard->notifierIs(nullptr);
        portHeard->notifierIs(nullptr);
    }
    World(World const&) = delete;
    World& operator=(World const&) = delete;

    void connect() {
        pair = std::make_unique<Pair>(root);
        pair->agent->demuxer().out()->chunkLimitIs(1000);
        pair->reader->mount("/vgw/status", false, copy);
    }
    // So many bytes of what is sent now reach the reader.
    void deliver(std::size_t bytes) {
        pair->near.roomIs(bytes);
        pair->agent->service();
        pair->reader->service();
        pair->near.roomIs(~std::size_t{0});
    }
    String8 rowText() const {
        auto const there = copy->ovsdb()->logicalSwitch(Name("r"));
        return there ? there->desc() : String8("no row");
    }
    String8 portText() const {
        auto const there = copy->ovsdb()->physicalPort(Name("p"));
        return there ? there->vlanBinding(7) : String8("no port");
    }
    bool areWhole() const {
        for (auto const& one : heard) {
            bool const isWhole = one.empty() || one == before.view() || one == after.view() ||
                                 one == last.view() || one == longAfter.view();
            if (!isWhole) return false;
        }
        return true;
    }

    Qor::Ptr<Qor::Dir> root = make<Qor::Dir>(Name("vgw"));
    Vgw::Status::Ptr original = Vgw::statusFactory(Name("status"));
    Vgw::Status::Ptr copy = Vgw::statusFactory(Name("status"));
    Vgw::LogicalSwitch::Ptr row;
    Vgw::PhysicalPort::Ptr port;
    std::set<std::string> heard;
    Qor::Ptr<RowHeard> rowHeard = make<RowHeard>(heard);
    Qor::Ptr<PortHeard> portHeard = make<PortHeard>(heard);
    std::unique_ptr<Pair> pair;
};

using Step = std::function<void(World&)>;

// Runs `then` after each byte that `change` leads to.
void atEachByte(Step const& change, std::size_t step, Step const& then) {
    std::size_t whole = 0;
    {
        World world;
        Qor::U64 const start = world.pair->agent->counters().bytesOut;
        change(world);
        world.pair->settle();
        whole = world.pair->agent->counters().bytesOut - start;
    }
    ASSERT_GT(whole, 10U * 1024);
    for (std::size_t bytes = 0; bytes <= whole; bytes += step) {
        SCOPED_TRACE("after byte " + std::to_string(bytes));
        World world;
        change(world);
        world.deliver(bytes);
        then(world);
        ASSERT_TRUE(world.areWhole());
        ASSERT_TRUE(world.pair->isOpen());
        ASSERT_FALSE(testing::Test::HasFailure());
    }
}

void changeRow(World& world) { world.row->descIs(after); }
void changePort(World& world) { world.port->vlanBindingIs(7, longAfter); }
constexpr std::size_t rowStep = stride;
constexpr std::size_t portStep = 53 * stride;

void cutAndReconnect(World& world) {
    String8 const rowThen = world.rowText();
    String8 const portThen = world.portText();
    EXPECT_TRUE(rowThen == before || rowThen == after);
    EXPECT_TRUE(portThen == before || portThen == longAfter);
    world.pair->near.cut();
    world.pair->turn();
    EXPECT_EQ(world.rowText(), rowThen);
    EXPECT_EQ(world.portText(), portThen);
    world.connect();
    EXPECT_TRUE(world.pair->settle());
    EXPECT_EQ(world.rowText(), world.row->desc());
    EXPECT_EQ(world.portText(), world.port->vlanBinding(7));
}

TEST(TextAtEachByte, CutLeavesTheOldOrTheNewTextWhole) {
    atEachByte(changeRow, rowStep, cutAndReconnect);
    atEachByte(changePort, portStep, cutAndReconnect);
}

TEST(TextAtEachByte, OverwriteIsSeenWhole) {
    atEachByte(changeRow, rowStep, [](World& world) {
        world.row->descIs(last);
        EXPECT_TRUE(world.pair->settle());
        EXPECT_EQ(world.rowText(), last);
    });
    atEachByte(changePort, portStep, [](World& world) {
        world.port->vlanBindingIs(7, last);
        EXPECT_TRUE(world.pair->settle());
        EXPECT_EQ(world.portText(), last);
    });
}

TEST(TextAtEachByte, OverwriteWithTheOldTextIsSeenWhole) {
    atEachByte(changeRow, rowStep, [](World& world) {
        world.row->descIs(before);
        EXPECT_TRUE(world.pair->settle());
        EXPECT_EQ(world.rowText(), before);
    });
}

TEST(TextAtEachByte, RemovalTakesTheTextAlong) {
    atEachByte(changeRow, rowStep, [](World& world) {
        world.original->ovsdb()->logicalSwitchDel(Name("r"));
        EXPECT_TRUE(world.pair->settle());
        EXPECT_EQ(world.rowText(), "no row");
        EXPECT_EQ(world.pair->reader->demuxer().openText(), 0U);
    });
    atEachByte(changePort, portStep, [](World& world) {
        world.port->vlanBindingDel(7);
        EXPECT_TRUE(world.pair->settle());
        EXPECT_EQ(world.portText(), "");
        EXPECT_EQ(world.pair->reader->demuxer().openText(), 0U);
    });
}

TEST(TextAtEachByte, RemovalAndReturnUnderTheSameNameIsTheNewRow) {
    atEachByte(changeRow, rowStep, [](World& world) {
        auto const db = world.original->ovsdb();
        db->logicalSwitchDel(Name("r"));
        db->logicalSwitchIs(Name("r"))->descIs(last);
        EXPECT_TRUE(world.pair->settle());
        EXPECT_EQ(world.rowText(), last);
    });
}

}  // namespace
