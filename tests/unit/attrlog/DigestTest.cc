// Whether a copy is what the other end holds, found out by digests.
#include <qor/attrlog/dir/DirAdapter.h>

#include <tests/support/SessionPair.h>
#include <vgw/agent/Status.h>

#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace {

using Qor::make;
using Qor::Name;
using Qor::String8;
using namespace Qor::NboAttrLog;

constexpr Qor::AttributeId logicalSwitches = 263;

struct Comparer : SessionListener {
    void onMounted(MountId, Qor::Ptr<Qor::Entity> const& entity) override {
        copy = Qor::dynamicCast<Vgw::Status>(entity);
    }
    void onDigested(DigestPage const& page, StateDigest const& digest,
                    String8 const& reason) override {
        fault = reason;
        peers = digest;
        if (reason.empty() && copy && copy->ovsdb()) own = stateDigest(*copy->ovsdb(), page);
        ++answers;
    }
    Vgw::Status::Ptr copy;
    String8 fault;
    StateDigest peers;
    StateDigest own;
    int answers = 0;
};

class Digest : public testing::Test, protected SessionPair {
  protected:
    Digest() {
        root->entryIs(Name("status"), status);
        for (int n = 0; n < 100; ++n) {
            std::string const name = "ls" + std::to_string(n);
            database->logicalSwitchIs(name.c_str())->tunnelKeyIs(static_cast<Qor::U32>(n));
        }
        connect(root);
        reader->listenerIs(&comparer);
        reader->mount("/vgw/status", false);
        settle();
    }
    void ask(Qor::AttributeId attribute, String8 const& from, Qor::U32 most) {
        reader->askForDigest({"/vgw/status/ovsdb", attribute, from, most});
    }

    Qor::Dir::Ptr const root = make<Qor::Dir>(Name("vgw"));
    Vgw::Status::Ptr const status = make<Vgw::Status>(Name("status"));
    Vgw::HwVtepOvsdb::Ptr const database = status->ovsdbIs(Name("ovsdb"));
    Comparer comparer;
};

TEST_F(Digest, OfACopyThatIsInStepIsTheSame) {
    ask(logicalSwitches, "", 1000);
    settle();
    EXPECT_EQ(comparer.fault, "");
    EXPECT_EQ(comparer.peers.rows, 100U);
    EXPECT_EQ(comparer.own.value, comparer.peers.value);
    EXPECT_EQ(comparer.peers.next, "");
}

TEST_F(Digest, OfOtherValuesIsAnother) {
    StateDigest const before = stateDigest(*database, {"", logicalSwitches, "", 1000});
    database->logicalSwitch("ls7")->tunnelKeyIs(5000);
    StateDigest const after = stateDigest(*database, {"", logicalSwitches, "", 1000});
    EXPECT_NE(before.value, after.value);
    database->logicalSwitch("ls7")->tunnelKeyIs(7);
    EXPECT_EQ(stateDigest(*database, {"", logicalSwitches, "", 1000}).value, before.value);
}

TEST_F(Digest, GoesPageByPage) {
    String8 from;
    Qor::U32 rows = 0;
    int pages = 0;
    do {
        ask(logicalSwitches, from, 30);
        settle();
        ASSERT_EQ(comparer.own.value, comparer.peers.value);
        ASSERT_EQ(comparer.own.next, comparer.peers.next);
        rows += comparer.peers.rows;
        from = comparer.peers.next;
        ++pages;
    } while (from.length() != 0);
    EXPECT_EQ(rows, 100U);
    EXPECT_EQ(pages, 4);
}

TEST_F(Digest, IsAnsweredBehindTheChangesThatItHasSeen) {
    for (int n = 0; n < 100; ++n) {
        database->logicalSwitch("ls7")->tunnelKeyIs(static_cast<Qor::U32>(9000 + n));
        database->logicalSwitch("ls8")->descIs(std::string(40000, 'x').c_str());
        ask(logicalSwitches, "", 1000);
        int const answers = comparer.answers;
        near.roomIs(static_cast<std::size_t>(1 + n * 97));
        while (comparer.answers == answers) {
            reader->service();
            agent->service();
        }
        ASSERT_EQ(comparer.own.value, comparer.peers.value) << n;
        database->logicalSwitch("ls8")->descIs("");
    }
}

TEST_F(Digest, OfWhatIsNotThereNamesIt) {
    reader->askForDigest({"/vgw/nothing", 0, "", 1});
    settle();
    EXPECT_EQ(comparer.fault, "/vgw/nothing does not exist");
    ask(999, "", 1);
    settle();
    EXPECT_EQ(comparer.fault, "/vgw/status/ovsdb has no such collection");
    EXPECT_EQ(reader->closed(), "");
}

}  // namespace
