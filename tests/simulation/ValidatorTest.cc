// The validators themselves: each passes a history that is in order, and finds the violation that
// is planted into it.
#include "Tap.h"
#include "Watch.h"

#include <qor/registry/QorType.h>

#include <gtest/gtest.h>

namespace {

using Qor::make;
using Sim::announcedFirst;
using Sim::Sent;
using Sim::wellFormed;

constexpr std::uint64_t orphan = 3;
constexpr std::uint64_t child = 5;

std::string bytes(std::uint64_t number, int width) {
    std::string result;
    for (int shift = 8 * (width - 1); shift >= 0; shift -= 8) {
        result += static_cast<char>(number >> shift & 0xFF);
    }
    return result;
}

Sent orphanRecord() { return {false, 0, false, 1, 136, 0, "\4" + bytes(8, 4) + bytes(orphan, 8)}; }
Sent childRecord() {
    return {false, 0, false, orphan, 258, 151, bytes(1, 4) + "r" + bytes(child, 8)};
}
Sent entryRecord() {
    return {false,
            0,
            false,
            orphan,
            258,
            151,
            bytes(1, 4) + "r" + bytes(0, 1) + bytes(child, 8) + bytes(0, 4) + "x"};
}
Sent value(std::uint64_t entity, bool hasMore = false, std::int32_t attribute = 300) {
    return {false, 0, hasMore, entity, attribute, 0, "v"};
}
Sent marker(char type) { return {false, 1, false, orphan, 300, 0, std::string(1, type)}; }

TEST(AnnouncedFirst, PassesRecordsBehindTheirAnnouncements) {
    EXPECT_EQ(announcedFirst({orphanRecord(), value(orphan), childRecord(), value(child)}), "");
    EXPECT_EQ(announcedFirst({orphanRecord(), entryRecord(), value(child)}), "");
}

TEST(AnnouncedFirst, FindsARecordInFrontOfItsAnnouncement) {
    EXPECT_NE(announcedFirst({orphanRecord(), value(child), childRecord()}), "");
    EXPECT_NE(announcedFirst({childRecord()}), "");
}

TEST(WellFormed, PassesSnapshotsAndTextsThatEnd) {
    EXPECT_EQ(wellFormed({marker(0), value(orphan), marker(2)}), "");
    EXPECT_EQ(wellFormed({value(orphan, true), value(orphan, true), value(orphan)}), "");
}

TEST(WellFormed, FindsTheEndOfASnapshotThatHasNotBegun) {
    EXPECT_NE(wellFormed({marker(2)}), "");
    EXPECT_NE(wellFormed({marker(0), marker(2), marker(2)}), "");
}

TEST(WellFormed, FindsATextWithinAnother) {
    EXPECT_NE(wellFormed({value(orphan, true), value(orphan, true, 301)}), "");
}

TEST(FrameCutter, CutsTheDocumentedFrameAtAnyByte) {
    unsigned char const frame[] = {0, 0, 0, 0x1d, 0, 0, 0, 0, 0, 0, 0, 0, 3, 0,    0,    1, 0x84,
                                   1, 0, 0, 0,    0, 0, 0, 0, 0, 0, 1, 0, 0, 0x13, 0x88, 3};
    std::string const stream(reinterpret_cast<char const*>(frame), sizeof frame);
    for (std::size_t at = 0; at <= stream.size(); ++at) {
        Sim::FrameCutter cutter;
        std::vector<Sent> history;
        cutter.append(stream.substr(0, at), true, history);
        cutter.append(stream.substr(at), true, history);
        ASSERT_EQ(history.size(), 1U) << at;
        EXPECT_EQ(history[0].entity, orphan);
        EXPECT_EQ(history[0].attribute, 388);
        EXPECT_EQ(history[0].payload, std::string("\0\0\x13\x88", 4));
        EXPECT_TRUE(history[0].isUp);
    }
}

TEST(NameExchange, FindsNamesHoweverTheBytesCome) {
    std::string const stream = "x Vgw::Status; Dyn::Vgw, Lab::Lab::Node. Ties:: Dies::Knot\3V";
    std::string const exchanged = "x Dyn::Status; Vgw::Vgw, Dab::Dab::Node. Dies:: Ties::Knot\3";
    using Sim::Knowledge;
    Sim::NameExchange const names(Knowledge::described, Knowledge::compiled);
    EXPECT_EQ(names.exchanged(stream), exchanged + "V");
    EXPECT_EQ(names.exchanged(names.exchanged(stream)), stream);
    for (std::size_t at = 0; at <= stream.size(); ++at) {
        for (std::size_t const room : {1U, 3U, 1000U}) {
            Sim::NameExchange exchange = names;
            std::string taken;
            for (auto const& piece : {stream.substr(0, at), stream.substr(at)}) {
                exchange.append(piece);
                for (std::string more; !(more = exchange.take(room)).empty();) taken += more;
            }
            ASSERT_EQ(taken, exchanged) << at << ", " << room;
        }
    }
}

TEST(Shape, FindsACompiledEntityWhereClassesAreKnownByDescription) {
    using Sim::Knowledge;
    for (auto const knowledge : {Knowledge::compiled, Knowledge::described}) {
        for (Sim::Shape const* const shape : Sim::shapes(knowledge)) {
            auto const entity = shape->make(knowledge, "x");
            auto const other =
                knowledge == Knowledge::compiled ? Knowledge::described : Knowledge::compiled;
            EXPECT_EQ(&Sim::shapeIn(knowledge, *entity), shape);
            EXPECT_TRUE(Sim::shapeIn(other, *entity).title(*entity).starts_with("strange: "));
        }
    }
}

TEST(Shape, IsTheSameHoweverTheClassIsKnown) {
    auto const& compiled = Sim::shapes(Sim::Knowledge::compiled);
    auto const& described = Sim::shapes(Sim::Knowledge::described);
    ASSERT_EQ(compiled.size(), described.size());
    for (std::size_t i = 0; i < compiled.size(); ++i) {
        auto const one = compiled[i]->make(Sim::Knowledge::compiled, "x");
        auto const other = described[i]->make(Sim::Knowledge::described, "x");
        EXPECT_EQ(compiled[i]->title(*one), described[i]->title(*other));
        EXPECT_FALSE(one->fwkType()->isDescribed());
        EXPECT_TRUE(other->fwkType()->isDescribed());
    }
}

// A copy of which two pictures are looked at.
class WatchTest : public testing::Test {
  protected:
    WatchTest() {
        picture_.rows["/entry/a1"] = {make<Qor::Dir>(Qor::Name("a1")), &Sim::dirShape()};
        picture_.lines["/entry/a1/text"] = "#5.ff";
        plan_.set("/entry/a1/text", "#5.ff", 0);
        EXPECT_EQ(watch_.look(picture_, plan_), "");
    }

    Sim::Watch watch_{true};
    Sim::Plan plan_;
    Sim::Picture picture_;
};

TEST_F(WatchTest, PassesWhatStays) { EXPECT_EQ(watch_.look(picture_, plan_), ""); }

TEST_F(WatchTest, FindsAnEntityThatGoesWithoutARemoval) {
    picture_.rows.clear();
    EXPECT_NE(watch_.look(picture_, plan_), "");
}

TEST_F(WatchTest, PassesAnEntityThatTheSourceHasRemoved) {
    picture_.rows.clear();
    ++plan_.removals["/entry/a1"];
    EXPECT_EQ(watch_.look(picture_, plan_), "");
}

TEST_F(WatchTest, FindsAnEntityThatIsReplacedWithoutARemoval) {
    picture_.rows["/entry/a1"].entity = make<Qor::Dir>(Qor::Name("a1"));
    EXPECT_NE(watch_.look(picture_, plan_), "");
}

TEST_F(WatchTest, FindsAKeyThatGoesWithoutARemoval) {
    picture_.lines.clear();
    EXPECT_NE(watch_.look(picture_, plan_), "");
}

TEST_F(WatchTest, FindsAValueThatGoesBack) {
    picture_.lines["/entry/a1/text"] = "#4.ee";
    EXPECT_NE(watch_.look(picture_, plan_), "");
}

TEST_F(WatchTest, FindsATextOfTwoHalves) {
    picture_.lines["/entry/a1/text"] = "#6.gggff";
    EXPECT_NE(watch_.look(picture_, plan_), "");
}

TEST(Difference, FindsWhatIsMissingOtherAndTooMuch) {
    Sim::Lines const lines{{"a", "1"}, {"b", "2"}};
    EXPECT_EQ(Sim::difference(lines, lines), "");
    EXPECT_NE(Sim::difference(lines, {{"a", "1"}}), "");
    EXPECT_NE(Sim::difference(lines, {{"a", "1"}, {"b", "3"}}), "");
    EXPECT_NE(Sim::difference({{"a", "1"}}, lines), "");
}

// What a copy's author has written into its own row, and the source.
class PlanTest : public testing::Test {
  protected:
    PlanTest() {
        for (auto const& [line, text] : source_) plan_.set(line, text, 1);
    }
    std::string lost() const {
        return Sim::difference(plan_.sureOf(plan_.lines), plan_.sureOf(source_));
    }

    Sim::Lines source_{{"/entry/b1", "Lab::Node"}, {"/entry/b1/text", "#5.ff"}};
    Sim::Plan plan_;
};

TEST_F(PlanTest, PassesWhatHasArrived) { EXPECT_EQ(lost(), ""); }

TEST_F(PlanTest, FindsAChildThatNobodyHasOpposed) {
    source_.clear();
    EXPECT_NE(lost(), "");
    plan_.adopt(source_);
    EXPECT_NE(lost(), "") << "the source's word is not taken for what is sure";
}

TEST_F(PlanTest, FindsAValueBelowAChildThatHasGotLost) {
    source_["/entry/b1/text"] = "#4.ee";
    EXPECT_NE(lost(), "");
}

TEST_F(PlanTest, FindsAChildThatIsBackAfterItsRemoval) {
    plan_.eraseRow("/entry/b1");
    EXPECT_NE(lost(), "");
}

TEST_F(PlanTest, PassesWhatWasOnItsWayAtACut) {
    source_.erase("/entry/b1/text");
    plan_.cutAt(source_);
    EXPECT_EQ(lost(), "");
    plan_.adopt(source_);
    EXPECT_FALSE(plan_.lines.contains("/entry/b1/text"));
    EXPECT_TRUE(plan_.lines.contains("/entry/b1"));
}

TEST_F(PlanTest, RowThatMayBeLostTakesWhatIsBelowWithIt) {
    source_.clear();
    plan_.cutAt(source_);
    plan_.unsure.erase("/entry/b1/text");
    EXPECT_EQ(lost(), "");
}

TEST(Owner, IsTheFirstNameThatDoesNotStay) {
    EXPECT_EQ(Sim::ownerOf("/entry/s0/ovsdb/s0"), Sim::shared);
    EXPECT_EQ(Sim::ownerOf("/entry/s0/ovsdb/b1/manager/s0"), 1U);
    EXPECT_EQ(Sim::ownerOf("/entry/a0"), 0U);
}

}  // namespace
