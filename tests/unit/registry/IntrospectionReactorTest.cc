#include <gtest/gtest.h>

#include <vector>

#include <qor/registry/Builtin.h>
#include <qor/registry/IntrospectionReactor.h>

namespace {

using Qor::IntrospectionReactor;
using Qor::QorType;

class Reactor : public testing::Test {
  protected:
    ~Reactor() override { reactor->isOnIs(true); }
    static void describe(void* unit) { static_cast<std::vector<int>*>(unit)->push_back(1); }
    QorType::Ptr newType() const {
        return Qor::make<QorType>(Qor::Name("Lamp"), nullptr, nullptr, 0U);
    }

    IntrospectionReactor::Ptr const reactor = IntrospectionReactor::global();
    std::vector<int> first;
    std::vector<int> second;
};

TEST_F(Reactor, IsOnUnlessSwitchedOff) {
    EXPECT_TRUE(reactor->isOn());
    EXPECT_EQ(IntrospectionReactor::global(), reactor);
    reactor->isOnIs(false);
    EXPECT_FALSE(reactor->isOn());
}

TEST_F(Reactor, CallsWhoLeftWordOnceWhenSwitchedOn) {
    reactor->isOnIs(false);
    reactor->describeLaterIs(&describe, &first);
    reactor->describeLaterIs(&describe, &first);
    reactor->describeLaterIs(&describe, &second);
    EXPECT_TRUE(first.empty());
    reactor->isOnIs(true);
    EXPECT_EQ(first.size(), 1U);
    EXPECT_EQ(second.size(), 1U);
    reactor->isOnIs(false);
    reactor->isOnIs(true);
    EXPECT_EQ(first.size(), 1U);
}

TEST_F(Reactor, DefinesAnAttributeInOneStep) {
    auto const type = newType();
    auto const heard = reactor->attributesHeard();
    reactor->handleNameSpace("Acme");
    reactor->handleType(type, nullptr);
    auto const record = reactor->defNoninstantiatingAttr(
        type.ptr(), "level", Qor::Builtin<Qor::U8>::_fwkType(), Qor::Name::_fwkType(),
        Qor::FlagClasses::valueMap.flags, Qor::FlagClasses::valueMap.introspection, 258);
    EXPECT_EQ(reactor->depth(), 2U);
    reactor->handleScopeExit();
    reactor->handleScopeExit();
    EXPECT_EQ(reactor->depth(), 0U);
    EXPECT_EQ(reactor->attributesHeard(), heard + 1);
    ASSERT_EQ(type->attributes().size(), 1U);
    EXPECT_EQ(type->attributes()[0], record);
    EXPECT_EQ(type->attr(Qor::Name("level")), record);
    EXPECT_EQ(record->keyType(), Qor::Name::_fwkType());
    EXPECT_EQ(record->introspection(), Qor::FlagClasses::valueMap.introspection);
    type->attributeQDel(record);
    EXPECT_TRUE(type->attributes().empty());
}

using ReactorDeathTest = Reactor;

TEST_F(ReactorDeathTest, ScopeThatWasNotOpenedCannotBeClosed) {
    EXPECT_DEATH(reactor->handleScopeExit(), "the scope that was opened last is closed");
    EXPECT_DEATH(reactor->handleAttrContextExit(), "the scope that was opened last is closed");
}

TEST_F(ReactorDeathTest, AttributeStandsInATypeAlone) {
    auto const type = newType();
    auto const record = type->typeAttr().attrIs("level", Qor::Builtin<bool>::_fwkType(), nullptr,
                                                nullptr, Qor::FlagClasses::scalar.flags, 258);
    EXPECT_DEATH(reactor->handleAttr(record), "a scope is opened where it may stand");
    EXPECT_DEATH(
        {
            reactor->handleNameSpace("Acme");
            reactor->handleAttr(record);
        },
        "a scope is opened where it may stand");
    EXPECT_DEATH(
        {
            reactor->handleType(type, nullptr);
            reactor->handleAttr(record);
            reactor->handleType(type, nullptr);
        },
        "a scope is opened where it may stand");
    EXPECT_DEATH(
        {
            reactor->handleType(type, nullptr);
            reactor->handleAttr(record);
            reactor->handleScopeExit();
        },
        "the scope that was opened last is closed");
}

}  // namespace
