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

constexpr Qor::AttributeId remoteLocators = 268;

// Two have one hash, and stand in the order of their insertion.
Vgw::HwVtepOvsdb::Ptr databaseWith(std::initializer_list<char const*> addresses) {
    auto const database = make<Vgw::HwVtepOvsdb>(Name("ovsdb"));
    auto const row = database->physicalLocatorRawIs(Name("l"));
    for (char const* const address : addresses) {
        Vgw::PhysicalLocatorKey const key(Vgw::vxlan_over_ipv4, Kelp::IpAddr(address));
        database->remoteLocatorIs(key, row);
    }
    return database;
}

TEST(DigestOfTies, IsTheSameInWhateverOrderTheyWereInserted) {
    auto const one = databaseWith({"10.1.19.59", "10.0.237.115", "192.0.2.1"});
    auto const other = databaseWith({"192.0.2.1", "10.0.237.115", "10.1.19.59"});
    EXPECT_EQ(stateDigest(*one, {"", remoteLocators, "", 100}).value,
              stateDigest(*other, {"", remoteLocators, "", 100}).value);
    EXPECT_EQ(stateDigest(*one, {"", 0, "", 1}).value, stateDigest(*other, {"", 0, "", 1}).value);
    auto const less = databaseWith({"192.0.2.1", "10.0.237.115"});
    EXPECT_NE(stateDigest(*one, {"", remoteLocators, "", 100}).value,
              stateDigest(*less, {"", remoteLocators, "", 100}).value);
}

TEST(DigestOfTies, PageThatBeginsWithinATieIsTheSame) {
    auto const one = databaseWith({"10.1.19.59", "10.0.237.115", "192.0.2.1"});
    auto const other = databaseWith({"192.0.2.1", "10.0.237.115", "10.1.19.59"});
    String8 from;
    Qor::U32 rows = 0;
    do {
        auto const a = stateDigest(*one, {"", remoteLocators, from, 1});
        auto const b = stateDigest(*other, {"", remoteLocators, from, 1});
        ASSERT_EQ(a.value, b.value);
        ASSERT_EQ(a.next, b.next);
        ASSERT_EQ(a.rows, 1U);
        from = a.next;
    } while (++rows < 9 && !from.empty());
    EXPECT_EQ(rows, 3U);
}

TEST(DigestOfTies, PageThatBeginsWithATiedKeyThatHasGoneHoldsWhatIsBehindIt) {
    auto const one = databaseWith({"10.1.19.59", "10.0.237.115"});
    auto const next = stateDigest(*one, {"", remoteLocators, "", 1}).next;
    ASSERT_NE(next.view().find("10.1.19.59"), std::string_view::npos);
    auto const first = databaseWith({"10.0.237.115"});
    EXPECT_EQ(stateDigest(*first, {"", remoteLocators, next, 9}).rows, 0U);
    auto const last = databaseWith({"10.1.19.59"});
    auto const gone = stateDigest(*first, {"", remoteLocators, "", 9}).next;
    EXPECT_EQ(gone, "");
    EXPECT_EQ(stateDigest(*last, {"", remoteLocators, next, 9}).rows, 1U);
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
