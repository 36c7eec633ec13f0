// Which member of a cluster is followed.

#include "ClientUnderTest.h"

namespace Ovsdb {
namespace {

class ClusterMemberTest : public ClientTest {
  protected:
    ClusterMemberTest() { indexIs(10); }

    // The next connection's member is that far.
    void indexIs(int index) {
        database_.serverRows = {{"Database",
                                 {{first,
                                   {{"initial",
                                     {{"name", "hardware_vtep"},
                                      {"model", "clustered"},
                                      {"connected", true},
                                      {"index", index}}}}}}}};
    }
    // The first member is followed, and its log would answer that it is at the index.
    bool startsAskedForIndex(int index) {
        options_.indexPause = milliseconds(20);
        database_.selected = {{{"rows", {{{"index", index}}}}}};
        start();
        return inStep();
    }
    // Another transaction is told, and was taken.
    void tellTransaction() {
        std::string const name = "n" + std::to_string(++told_);
        std::string const id = "72734239-c0d7-4066-8095-adae591df7d" + std::to_string(told_);
        std::size_t const steps = listener_.steps.size();
        server_.notify(
            "update3",
            {monitorId(), id, {{"Logical_Switch", {{first, {{"modify", {{"name", name}}}}}}}}});
        ASSERT_TRUE(runUntil(loop_, [&] { return listener_.steps.size() > steps; }));
    }
    bool asked() {
        return runUntil(
            loop_, [&] { return server_.received().back().value("method", "") == "transact"; });
    }
    // Whether a member that far is followed after a loss.
    bool follows(int index) {
        indexIs(index);
        std::size_t const rounds = listener_.rounds.size();
        server_.hangUp();
        bool known = false;
        return runUntil(loop_,
                        [&] {
                            known = known || client_->state() == ClientState::disconnected;
                            return listener_.rounds.size() >= rounds + 3 ||
                                   (known && client_->state() == ClientState::following);
                        }) &&
               client_->state() == ClientState::following;
    }

    int told_ = 0;
};

TEST_F(ClusterMemberTest, AMemberThatIsCutOffFromItsClusterIsSkipped) {
    database_.serverRows = {
        {"Database",
         {{first,
           {{"initial",
             {{"name", "hardware_vtep"}, {"model", "clustered"}, {"connected", false}}}}}}}};
    start();
    ASSERT_TRUE(runUntil(loop_, [&] { return !listener_.rounds.empty(); }));
    EXPECT_TRUE(logged("the server is not connected to its cluster"));
    EXPECT_TRUE(listener_.steps.empty());
}

TEST_F(ClusterMemberTest, AMemberThatFallsOutOfItsClusterIsLeft) {
    indexIs(5);
    start();
    ASSERT_TRUE(inStep());
    server_.notify("update2",
                   {"server", {{"Database", {{first, {{"modify", {{"connected", false}}}}}}}}});
    ASSERT_TRUE(runUntil(loop_, [&] { return !listener_.rounds.empty(); }));
}

TEST_F(ClusterMemberTest, AMemberBehindWhatWasSeenIsSkipped) {
    start();
    ASSERT_TRUE(inStep());
    EXPECT_FALSE(follows(9));
    EXPECT_TRUE(logged("the server is behind the cluster: its log is at 9, 10 was seen"));
    indexIs(11);
    ASSERT_TRUE(inStep());
}

TEST_F(ClusterMemberTest, AMemberThatLacksATransactionThatWasToldIsSkipped) {
    start();
    ASSERT_TRUE(inStep());
    for (int i = 0; i < 3; ++i) tellTransaction();
    EXPECT_FALSE(follows(12));
    EXPECT_TRUE(logged("its log is at 12, 13 was seen"));
    indexIs(13);
    ASSERT_TRUE(inStep());
}

TEST_F(ClusterMemberTest, TheLogIsAskedForItsIndexWhileSomethingGoesOn) {
    ASSERT_TRUE(startsAskedForIndex(40));
    // At rest nobody is asked.
    ASSERT_FALSE(runUntil(
        loop_, [&] { return server_.received().back()["method"] == "transact"; },
        milliseconds(200)));
    tellTransaction();
    ASSERT_TRUE(asked());
    EXPECT_EQ(server_.received().back()["params"],
              json::parse(R"(["_Server",{"op":"select","table":"Database",
                              "where":[["name","==","hardware_vtep"]],"columns":["index"]}])"));
    tellTransaction();
    EXPECT_FALSE(follows(39));
    EXPECT_TRUE(logged("its log is at 39, 40 was seen"));
    indexIs(40);
    ASSERT_TRUE(inStep());
}

// What was asked for may be ahead of the updates: they are not counted on top of it.
TEST_F(ClusterMemberTest, AMemberThatHasAllIsFollowed) {
    ASSERT_TRUE(startsAskedForIndex(12));
    tellTransaction();
    ASSERT_TRUE(asked());
    tellTransaction();
    EXPECT_TRUE(follows(12));
}

TEST_F(ClusterMemberTest, AnotherClusterBeginsAnew) {
    start();
    ASSERT_TRUE(inStep());
    json& columns = database_.serverRows["Database"][first]["initial"];
    columns["index"] = 2;
    columns["cid"] = json::array({"uuid", second});
    server_.hangUp();
    ASSERT_TRUE(runUntil(loop_, [&] { return server_.connections() == 2; }));
    ASSERT_TRUE(inStep());
}

}  // namespace
}  // namespace Ovsdb
