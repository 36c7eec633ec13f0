#include <algorithm>

#include <gtest/gtest.h>

#include <qor/core/Exception.h>
#include <qor/registry/Builtin.h>
#include <qor/registry/QorType.h>

namespace {

using Qor::Name;
using Qor::QorType;

class AttributeTree : public testing::Test {
  protected:
    Qor::QorAttr::Ptr make(QorType& owner, char const* name, Qor::AttributeId id) {
        return owner.typeAttr().attrIs(name, flag, nullptr, nullptr, Qor::FlagClasses::scalar.flags,
                                       id);
    }

    QorType* const flag = Qor::Builtin<bool>::_fwkType();
    QorType::Ptr const type = Qor::make<QorType>(Name("Lamp"), nullptr, nullptr, 0U);
    QorType::Ptr const derived = Qor::make<QorType>(Name("Bulb"), nullptr, type.ptr(), 0U);
};

TEST_F(AttributeTree, RecordIsFoundByItsName) {
    auto const record = make(*type, "isOn", 258);
    EXPECT_EQ(type->attr(Name("isOn")), record);
    EXPECT_EQ(record->name(), "isOn");
    EXPECT_EQ(record->id(), 258);
    EXPECT_EQ(record->valueType(), flag);
    EXPECT_EQ(record->keyType(), nullptr);
    EXPECT_EQ(record->owner(), type);
    EXPECT_EQ(record->definedBy(), type);
    EXPECT_EQ(record->flags(), Qor::FlagClasses::scalar.flags);
    EXPECT_FALSE(type->attr(Name("isOff")));
}

TEST_F(AttributeTree, RecordOnTheTreeIsNotYetInTheTypesQueue) {
    auto const record = make(*type, "isOn", 258);
    EXPECT_TRUE(type->attributes().empty());
    type->attributeQEnq(record);
    ASSERT_EQ(type->attributes().size(), 1U);
    EXPECT_EQ(type->attr(Qor::AttributeId(258)), record);
    EXPECT_EQ(std::ranges::count(flag->referringAttrs(), record.ptr()), 1);
}

TEST_F(AttributeTree, NewRecordOfANameTakesThePlaceOfTheOldOne) {
    auto const old = make(*type, "isOn", 258);
    type->attributeQEnq(old);
    auto const fresh = make(*type, "isOn", 259);
    EXPECT_EQ(type->attr(Name("isOn")), fresh);
    EXPECT_TRUE(type->attributes().empty());
    EXPECT_EQ(std::ranges::count(flag->referringAttrs(), old.ptr()), 0);
    EXPECT_EQ(old->name(), "isOn") << "who holds it still reads it";
}

TEST_F(AttributeTree, RemovalHandsTheRecordOver) {
    auto const record = make(*type, "isOn", 258);
    type->attributeQEnq(record);
    EXPECT_EQ(type->typeAttr().attrDel("isOn"), record);
    EXPECT_FALSE(type->attr(Name("isOn")));
    EXPECT_TRUE(type->attributes().empty());
    EXPECT_FALSE(type->typeAttr().attrDel("isOn"));
}

TEST_F(AttributeTree, CopyForADerivedTypeSaysTheSameOfIt) {
    auto const record = make(*type, "lamp", 258);
    record->keyTypeIs(Name::_fwkType());
    record->argumentNameIs("name");
    record->argumentTypeIs("Qor::Name");
    record->indexAttrNameIs("name");
    record->introspectionIs(Qor::AttrIntrospectionFlags::hasInternalIndex_());
    auto const copy = record->cloneFor(*derived);
    EXPECT_EQ(derived->attr(Name("lamp")), copy);
    EXPECT_EQ(type->attr(Name("lamp")), record);
    EXPECT_EQ(copy->owner(), derived);
    EXPECT_EQ(copy->definedBy(), type);
    EXPECT_EQ(copy->id(), 258);
    EXPECT_EQ(copy->keyType(), Name::_fwkType());
    ASSERT_EQ(copy->arguments().size(), 1U);
    EXPECT_EQ(copy->arguments()[0], (Qor::QorAttr::Argument{"name", "Qor::Name"}));
    EXPECT_EQ(copy->indexAttrName(), "name");
    EXPECT_EQ(copy->introspection(), Qor::AttrIntrospectionFlags::hasInternalIndex_());
    EXPECT_TRUE(derived->attributes().empty()) << "it is for the caller to append it";
}

TEST_F(AttributeTree, ArgumentsAreKeptInTheirOrder) {
    auto const record = make(*type, "mix", 258);
    for (char const* const name : {"first", "second"}) {
        record->argumentNameIs(name);
        record->argumentTypeIs("bool");
    }
    ASSERT_EQ(record->arguments().size(), 2U);
    EXPECT_EQ(record->arguments()[0].name, "first");
    EXPECT_EQ(record->arguments()[1].name, "second");
}

TEST(AttributeFlags, AnswerByTheBitsOfTheirWords) {
    namespace Classes = Qor::FlagClasses;
    EXPECT_TRUE(Classes::scalar.flags.isWritable());
    EXPECT_TRUE(Classes::scalar.flags.isStored());
    EXPECT_TRUE(Classes::scalar.flags.notifies());
    EXPECT_FALSE(Classes::scalar.flags.isCollection());
    EXPECT_TRUE(Classes::constField.flags.isConstructed());
    EXPECT_TRUE(Classes::constField.flags.isConstant());
    EXPECT_FALSE(Classes::constField.flags.isWritable());
    EXPECT_TRUE(Classes::childMap.flags.isInstantiating());
    EXPECT_TRUE(Classes::childMap.flags.isCollection());
    EXPECT_TRUE(Classes::childMap.flags.isEntity());
    EXPECT_FALSE(Classes::refMap.flags.isInstantiating());
    EXPECT_TRUE(Classes::literal.flags.isLiteral());
    EXPECT_TRUE(Classes::function.introspection.isFunction());
    EXPECT_FALSE(Classes::function.flags.isStored());
}

TEST(AttributeFlags, IntrospectionWordHasSixBits) {
    EXPECT_EQ(Qor::AttrIntrospectionFlags(0x3FU).value(), 0x3FU);
    try {
        Qor::AttrIntrospectionFlags const flags(0x40U);
        FAIL() << flags.value();
    } catch (Qor::RangeException const& e) {
        EXPECT_STREQ(e.what(), "QorAttrIntrospectionFlags::value > 0x3f not allowed");
    }
}

TEST(AttributeFlags, CombineByOr) {
    using Flags = Qor::AttrIntrospectionFlags;
    Flags const both = Flags::isFunction_() | Flags::hasInternalIndex_();
    EXPECT_TRUE(both.isFunction());
    EXPECT_TRUE(both.hasInternalIndex());
    EXPECT_FALSE(both.isIndependentDomainAttr());
}

}  // namespace
