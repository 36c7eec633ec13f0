// What a session tells and asks of types, against a peer that is played by hand.
#include "PlayedPeer.h"

namespace {

using namespace Played;
using SessionTypes = Played::Peer;

TEST_F(SessionTypes, AsksForAllAtOnceAndHoldsMountsBackUntilTheyAreThere) {
    MountId const mount = reader->mount("/dir", false);
    EXPECT_EQ(turn(), (Said{"hello", "describe 1 "}));
    hello();
    describe(1, lamp("T::Early"));
    EXPECT_EQ(turn(), Said{});
    EXPECT_FALSE(Qor::QorType::type("T::Early"));
    link(12, U32{1}, U32{1});
    EXPECT_EQ(turn(), (Said{"mount 1 /dir"}));
    EXPECT_TRUE(Qor::QorType::type("T::Early"));
    EXPECT_EQ(mount, 1U);
}

TEST_F(SessionTypes, MountThatIsGivenUpWhileItIsHeldBackIsNeverAskedFor) {
    reader->unmount(reader->mount("/dir", false));
    hello();
    link(12, U32{1}, U32{0});
    EXPECT_EQ(turn(), (Said{"hello", "describe 1 "}));
}

TEST_F(SessionTypes, ClassThatComesLaterIsAskedForByNameAndMountedAgainQuietly) {
    hello();
    link(12, U32{1}, U32{0});
    turn();
    MountId const mount = reader->mount("/dir", false);
    orphanDir(mount, dirId);
    turn();
    auto const copy = Qor::dynamicCast<Qor::Dir>(reader->mounted(mount));
    ASSERT_TRUE(copy);
    entry(dirId, "early", EntityId(peers | 7), "Qor::Dir");
    entry(dirId, "late", EntityId(peers | 11), "T::Late");
    EXPECT_EQ(turn(), (Said{"describe 2 T::Late"}));
    auto const early = copy->entry(Name("early"));
    EXPECT_TRUE(early);
    entry(dirId, "later", EntityId(peers | 13), "T::Late");
    EXPECT_EQ(turn(), Said{}) << "a name is asked for once";

    describe(2, lamp("T::Late"));
    link(12, U32{2}, U32{1});
    EXPECT_EQ(turn(), (Said{"unmount 1", "mount 2 /dir"}));
    orphanDir(2, laterDirId);
    entry(laterDirId, "early", EntityId(peers | 15), "Qor::Dir");
    entry(laterDirId, "late", EntityId(peers | 17), "T::Late");
    turn();
    EXPECT_EQ(reader->closed(), String8());
    EXPECT_EQ(reader->mounted(mount), copy);
    EXPECT_EQ(copy->entry(Name("early")), early);
    auto const late = copy->entry(Name("late"));
    ASSERT_TRUE(late);
    EXPECT_TRUE(Qor::dynamicCast<Qor::DynamicEntity>(late));
    EXPECT_EQ(Tree::wrapperOf(late)->attributeOp(258)->strRep(), "100");
    EXPECT_EQ(heard.mounted, 1);
}

// It stood as one of its base for ever, without what it has beside that.
TEST_F(SessionTypes, ClassWhoseBaseAloneIsKnownIsAskedForByName) {
    hello();
    describe(1, lamp("T::Base"));
    link(12, U32{1}, U32{1});
    turn();
    MountId const mount = reader->mount("/dir", false);
    orphanDir(mount, dirId);
    turn();
    entry(dirId, "x", EntityId(peers | 31), "T::Derived", "T::Base");
    EXPECT_EQ(turn(), (Said{"describe 2 T::Derived"}));
    auto const copy = Qor::dynamicCast<Qor::Dir>(reader->mounted(mount));
    ASSERT_TRUE(copy && copy->entry(Name("x")));
    EXPECT_EQ(copy->entry(Name("x"))->fwkType()->fullName(), "T::Base");
    EXPECT_EQ(reader->demuxer().counters().unknownClasses, 0U);
    auto derived = lamp("T::Derived");
    derived.base = Name("T::Base");
    derived.attributes[0].id = 386;
    derived.attributes[0].name = Name("glow");
    derived.initials = {{258, "100"}, {386, "7"}};
    describe(2, derived);
    link(12, U32{2}, U32{1});
    EXPECT_EQ(turn(), (Said{"unmount 1", "mount 2 /dir"}));
    orphanDir(2, laterDirId);
    entry(laterDirId, "x", EntityId(peers | 33), "T::Derived", "T::Base");
    turn();
    EXPECT_EQ(reader->closed(), String8());
    ASSERT_TRUE(copy->entry(Name("x")));
    EXPECT_EQ(copy->entry(Name("x"))->fwkType()->fullName(), "T::Derived");
    EXPECT_EQ(Tree::wrapperOf(copy->entry(Name("x")))->attributeOp(386)->strRep(), "7");
}

TEST_F(SessionTypes, MountOfAClassThatCameLaterWaitsForItsDescription) {
    hello();
    link(12, U32{1}, U32{0});
    turn();
    MountId const mount = reader->mount("/lamp", false);
    orphan(mount, EntityId(peers | 21), "T::LateRoot");
    EXPECT_EQ(turn(), (Said{"mount 1 /lamp", "describe 2 T::LateRoot", "unmount 1"}));
    describe(2, lamp("T::LateRoot"));
    link(12, U32{2}, U32{1});
    EXPECT_EQ(turn(), (Said{"mount 2 /lamp"}));
    orphan(2, EntityId(peers | 23), "T::LateRoot");
    turn();
    ASSERT_TRUE(reader->mounted(mount));
    EXPECT_EQ(reader->mounted(mount)->fwkType()->fullName(), "T::LateRoot");
    EXPECT_EQ(heard.mounted, 1);
}

TEST_F(SessionTypes, MountOfAClassThatThePeerCantDescribeIsRefused) {
    hello();
    link(12, U32{1}, U32{0});
    turn();
    MountId const mount = reader->mount("/lamp", false);
    orphan(mount, EntityId(peers | 21), "T::Never");
    turn();
    link(12, U32{2}, U32{0});
    EXPECT_EQ(turn(), (Said{"mount 2 /lamp"}));
    orphan(2, EntityId(peers | 23), "T::Never");
    EXPECT_EQ(turn(), (Said{"unmount 2"}));
    EXPECT_EQ(heard.refused, "the class T::Never is not known here");
    EXPECT_EQ(reader->closed(), String8());
}

TEST_F(SessionTypes, EntryThatIsBuiltFromWhatCantBeReadHereIsSkippedAndCounted) {
    hello();
    Qor::TypeDescription color;
    color.fullName = Name("T::Color");
    auto colored = lamp("T::Colored");
    colored.constructorArgs = {{"color", "T::Color"}};
    colored.attributes.push_back({259,
                                  Name("color"),
                                  Name("T::Color"),
                                  Name(),
                                  Qor::FlagClasses::constField.flags,
                                  Qor::FlagClasses::constField.introspection,
                                  Name(),
                                  {}});
    describe(1, color);
    describe(1, colored);
    link(12, U32{1}, U32{2});
    turn();
    MountId const mount = reader->mount("/dir", false);
    orphanDir(mount, dirId);
    entry(dirId, "colored", EntityId(peers | 7), "T::Colored");
    entry(dirId, "early", EntityId(peers | 11), "Qor::Dir");
    turn();
    EXPECT_EQ(reader->closed(), String8());
    auto const copy = Qor::dynamicCast<Qor::Dir>(reader->mounted(mount));
    ASSERT_TRUE(copy);
    EXPECT_FALSE(copy->entry(Name("colored")));
    EXPECT_TRUE(copy->entry(Name("early")));
    EXPECT_EQ(reader->demuxer().counters().unknownClasses, 1U);
}

TEST_F(SessionTypes, RefusedDescriptionEndsTheConnectionByName) {
    hello();
    auto odd = lamp("T::Odd");
    odd.base = Name("T::Odd");
    describe(1, odd);
    link(12, U32{1}, U32{1});
    turn();
    EXPECT_EQ(reader->closed(),
              "the description of T::Odd: its bases go round in a circle, or do not end");
    EXPECT_FALSE(Qor::QorType::type("T::Odd"));
}

TEST_F(SessionTypes, DescriptionThatNobodyAskedForEndsTheConnection) {
    hello();
    link(12, U32{1}, U32{0});
    describe(2, lamp("T::Unasked"));
    turn();
    EXPECT_EQ(reader->closed(), "a description that nobody asked for");
    EXPECT_FALSE(Qor::QorType::type("T::Unasked"));
}

TEST_F(SessionTypes, EndOfDescriptionsThatAreNotAllThereEndsTheConnection) {
    hello();
    describe(1, lamp("T::Short"));
    link(12, U32{1}, U32{2});
    turn();
    EXPECT_EQ(reader->closed(), "an end of descriptions that are not all there");
    EXPECT_FALSE(Qor::QorType::type("T::Short"));
}

TEST_F(SessionTypes, PeerThatAsksForTooMuchAtATimeIsRefused) {
    hello();
    for (U32 i = 1; i <= 17; ++i) link(10, i, String8());
    turn();
    EXPECT_EQ(reader->closed(), "more than 16 descriptions asked for at a time");
}

TEST_F(SessionTypes, AnswersByNameWithAllThatTheTypeNeeds) {
    hello();
    link(10, U32{1}, String8("Qor::Dir"));
    link(10, U32{2}, String8("T::Nothing"));
    EXPECT_EQ(turn(),
              (Said{"hello", "describe 1 ", "11", "11", "11", "11", "11", "11", "12", "12"}))
        << "Qor::Dir, Qor::Entity, Qor::Name, Qor::PtrInterface, Qor::String8, bool";
}

}  // namespace
