// A session that takes types, against a peer that is played by hand.
#include "Tree.h"

#include <qor/attrlog/session/Session.h>
#include <qor/dynamic/DynamicEntity.h>
#include <qor/tree/Dir.h>

#include <gtest/gtest.h>

namespace {

using Qor::EntityId;
using Qor::make;
using Qor::Name;
using Qor::String8;
using Qor::U32;
using Qor::U8;
using Qor::NboAttrLog::MountId;
using Qor::NboAttrLog::Out;
using Qor::NboAttrLog::Session;
using Token = Out::TransactToken;

struct Heard : Qor::NboAttrLog::SessionListener {
    void onMounted(MountId, Qor::Ptr<Qor::Entity> const&) override { ++mounted; }
    void onRefused(MountId, String8 const& reason) override { refused = reason; }
    String8 refused;
    void onSynced(MountId) override { ++synced; }
    int mounted = 0;
    int synced = 0;
};

class SessionTypes : public testing::Test {
  protected:
    SessionTypes() {
        Qor::NboAttrLog::MemoryTransport::connect(near, far);
        Session::Config config;
        config.takesTypes = true;
        reader = std::make_unique<Session>(config, near, nullptr);
        reader->listenerIs(&heard);
    }

    template <class... Field>
    void link(U8 op, Field const&... field) {
        out->beginFrame(Qor::NboAttrLog::FrameKind::link, {});
        out << Token::begin << op;
        (static_cast<void>(out << field), ...);
        out << Token::end;
    }
    void hello() { link(1, U32{0x514F524C}, U32{2}, U32{1 << 20}); }
    void describe(U32 number, Qor::TypeDescription const& description) {
        out->beginFrame(Qor::NboAttrLog::FrameKind::link, {});
        out << Token::begin << U8{11} << number;
        description.put(out);
        out << Token::end;
    }
    void orphanDir(MountId mount, EntityId const& id) { orphan(mount, id, "Qor::Dir"); }
    void orphan(MountId mount, EntityId const& id, char const* type) {
        link(3, mount, id);
        out->nextHeaderIs({Qor::orphanEntityId, 136});
        out << Token::begin;
        out->currentPayloadSectionIs(Qor::NboAttrLog::PayloadSection::typeChain);
        out << String8(type);
        out->currentPayloadSectionIs(Qor::NboAttrLog::PayloadSection::name);
        out << String8("dir");
        out->currentPayloadSectionIs(Qor::NboAttrLog::PayloadSection::entityId);
        out << id << Token::end;
    }
    // Of a class, and perhaps one above it.
    void entry(EntityId const& dir, char const* key, EntityId const& id, char const* type,
               char const* base = nullptr) {
        Qor::NboAttrLog::MsgHeader header{dir, 258};
        header.headerWordB = 151;
        out->nextHeaderIs(header);
        String8 const chain(type);
        String8 const above(base != nullptr ? base : "");
        U32 const length = chain.length() + 4 + (base != nullptr ? above.length() + 4 : 0);
        out << Token::begin << String8(key) << U8{0} << id << length << chain;
        if (base != nullptr) out << above;
        out << String8(key) << Token::end;
    }

    // Lets the reader work, and gives the link messages that it sends as words.
    std::vector<std::string> turn() {
        while (!out->unsent().empty()) out->sentInc(far.write(out->unsent()));
        reader->service();
        std::vector<std::string> result;
        for (;;) {
            in->receivedInc(far.read(in->room()));
            Qor::NboAttrLog::Frame frame;
            if (!in->nextFrame(frame)) return result;
            if (frame.kind == Qor::NboAttrLog::FrameKind::link) result.push_back(words());
            in->frameDone(frame);
        }
    }
    std::string words() {
        U8 const op = in->nextU8();
        auto const number = [this] { return " " + std::to_string(in->nextU32()); };
        auto const text = [this] { return " " + std::string(in->nextString().view()); };
        switch (op) {
            case 1:
                return "hello";
            case 2: {
                std::string const mount = "mount" + number();
                in->nextbool();
                return mount + text();
            }
            case 6:
                return "unmount" + number();
            case 7:
                return "error" + text();
            case 10: {
                std::string const asked = "describe" + number();
                return asked + text();
            }
            default:
                return std::to_string(op);
        }
    }

    using Said = std::vector<std::string>;
    Qor::NboAttrLog::MemoryTransport near;
    Qor::NboAttrLog::MemoryTransport far;
    Qor::Ptr<Out> const out = make<Out>();
    Qor::Ptr<Qor::NboAttrLog::In> const in = make<Qor::NboAttrLog::In>();
    Heard heard;
    std::unique_ptr<Session> reader;
    static constexpr Qor::U64 peers = Qor::U64{1} << 63;
    EntityId const dirId{peers | 5};
    EntityId const laterDirId{peers | 9};
};

Qor::TypeDescription lamp(char const* name) {
    Qor::TypeDescription result;
    result.fullName = Name(name);
    result.base = Name("Qor::Entity");
    result.kind = Qor::TypeDescription::Kind::entity;
    result.constructorArgs = {{"name", "Qor::Name"}};
    result.attributes = {{258,
                          Name("level"),
                          Name("U32"),
                          Name(),
                          Qor::FlagClasses::scalar.flags,
                          Qor::FlagClasses::scalar.introspection,
                          Name(),
                          {}}};
    result.initials = {{258, "100"}};
    return result;
}

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
    EXPECT_EQ(turn(), (Said{"unmount 1", "mount 1 /dir"}));
    orphanDir(mount, laterDirId);
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
    EXPECT_EQ(turn(), (Said{"unmount 1", "mount 1 /dir"}));
    orphanDir(mount, laterDirId);
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
    EXPECT_EQ(turn(), (Said{"mount 1 /lamp"}));
    orphan(mount, EntityId(peers | 23), "T::LateRoot");
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
    EXPECT_EQ(turn(), (Said{"mount 1 /lamp"}));
    orphan(mount, EntityId(peers | 23), "T::Never");
    EXPECT_EQ(turn(), (Said{"unmount 1"}));
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
