// The records of the types that the language and the framework have.
#include <gtest/gtest.h>

#include <limits>

#include <qor/generic/GenericException.h>
#include <qor/generic/GenericList.h>
#include <qor/generic/Wrap.h>

namespace {

using Qor::GenericIf;
using Qor::QorType;

template <class T>
void expectPublished(char const* name, T const& value, char const* text) {
    QorType* const type = QorType::type(name);
    ASSERT_TRUE(type) << name;
    EXPECT_EQ(Qor::typeOf<T>(), type);
    EXPECT_EQ(type->size(), sizeof(T)) << name;
    EXPECT_TRUE(type->isValue()) << name;
    EXPECT_FALSE(type->isEntity()) << name;
    EXPECT_FALSE(type->base()) << name;
    EXPECT_EQ(Qor::wrapped(value, false)->strRep(), text);
    GenericIf::Ptr const back = type->genericIfFromStrep(text, true);
    EXPECT_EQ(Qor::unwrapped<T>(*back), value);
}

TEST(LanguageTypes, ArePublishedWithTheirTexts) {
    expectPublished<bool>("bool", true, "true");
    expectPublished<Qor::U8>("U8", 255, "255");
    expectPublished<Qor::U16>("U16", 65535, "65535");
    expectPublished<Qor::U32>("U32", 4294967295U, "4294967295");
    expectPublished<Qor::U64>("U64", std::numeric_limits<Qor::U64>::max(), "18446744073709551615");
    expectPublished<Qor::I32>("I32", -2147483647 - 1, "-2147483648");
    expectPublished<double>("double", 0.25, "0.25");
    expectPublished<Qor::String8>("Qor::String8", "a'b", "'a\\'b'");
    expectPublished<Qor::Name>("Qor::Name", "n", "'n'");
}

TEST(LanguageTypes, NumberThatDoesNotFitIsRefused) {
    for (auto const& [type, text] : {std::pair{"U8", "256"},
                                     {"U16", "65536"},
                                     {"U32", "4294967296"},
                                     {"U16", "-1"},
                                     {"U64", "18446744073709551616"},
                                     {"I32", "2147483648"},
                                     {"bool", "maybe"}}) {
        EXPECT_THROW(QorType::type(type)->genericIfFromStrep(text, false), Qor::RangeException)
            << type << " " << text;
    }
}

TEST(LanguageTypes, TextAnswersForBothOfItsTypes) {
    GenericIf::Ptr const name = Qor::wrapped(Qor::Name("n"), false);
    EXPECT_EQ(Qor::unwrapped<Qor::String8>(*name), "n");
    GenericIf::Ptr const text = Qor::wrapped(Qor::String8("t"), false);
    EXPECT_EQ(Qor::unwrapped<Qor::Name>(*text), "t");
    EXPECT_THROW(Qor::unwrapped<bool>(*text), Qor::TypeException);
}

TEST(LanguageTypes, NumberAnswersForItsOwnWidthAlone) {
    GenericIf::Ptr const number = Qor::wrapped(Qor::U16(7), false);
    EXPECT_EQ(Qor::unwrapped<Qor::U16>(*number), 7);
    EXPECT_THROW(Qor::unwrapped<Qor::U32>(*number), Qor::TypeException);
    EXPECT_THROW(Qor::unwrapped<bool>(*number), Qor::TypeException);
}

TEST(LanguageTypes, NoResultHasNeitherValuesNorWrappers) {
    QorType* const type = QorType::type("void*");
    ASSERT_TRUE(type);
    EXPECT_EQ(Qor::Builtin<void*>::_fwkType(), type);
    EXPECT_THROW(type->genericIf(static_cast<void const*>(nullptr), false), Qor::RangeException);
    EXPECT_THROW(type->genericIfFromStrep("null", false), Qor::RangeException);
}

TEST(LanguageTypes, ListIsReadByItsRecord) {
    GenericIf::Ptr const one = Qor::wrapped(Qor::U16(7), false);
    auto const list = Qor::make<GenericIf::List_>();
    list->enq(one);
    list->enq(nullptr);
    auto const& queue = *static_cast<GenericIf::List::Queue const*>(
        list->genericValue(GenericIf::List::_fwkType()));
    EXPECT_EQ(queue.size(), 2U);
    EXPECT_EQ(*queue.begin(), one);
    EXPECT_EQ(QorType::type("Qor::GenericIf::List"), list->fwkType());
    auto const copy = list->genericClone();
    list->enq(one);
    EXPECT_EQ(
        static_cast<GenericIf::List::Queue const*>(copy->genericValue(GenericIf::List::_fwkType()))
            ->size(),
        2U);
    EXPECT_THROW(list->genericValue(Qor::typeOf<bool>()), Qor::TypeException);
}

TEST(LanguageTypes, EntityStandsBelowWhatIsCounted) {
    QorType* const entity = Qor::Entity::_fwkType();
    EXPECT_EQ(entity->fullName(), "Qor::Entity");
    EXPECT_EQ(entity->base(), Qor::PtrInterface::_fwkType());
    EXPECT_TRUE(entity->attr(Qor::Name("isNondestructing")));
    EXPECT_TRUE(entity->attr(Qor::Name("qorHasAttrLogInterface")));
    EXPECT_TRUE(entity->attr(Qor::Name("qorNboAttrLogSaForMsgChannel")));
    EXPECT_TRUE(entity->attr(Qor::Name("name")));
}

TEST(LanguageTypes, EntityOfNoClassOfItsOwnIsWrappedAsOne) {
    auto const entity = Qor::make<Qor::Entity>("e");
    GenericIf::Ptr const wrapper = Qor::Entity::_fwkType()->genericIf_(entity.ptr(), false);
    EXPECT_EQ(wrapper->entity(), entity);
    EXPECT_EQ(wrapper->attributeOp(wrapper->attributeId("name"))->strRep(), "'e'");
    EXPECT_EQ(wrapper->attributeOp(wrapper->attributeId("uriPath"))->strRep(), "'/e'");
    EXPECT_EQ(wrapper->attributeOp(154)->strRep(), "false") << "nothing of it is streamed";
    EXPECT_EQ(wrapper->attributeString(31000), "unknown");
}

}  // namespace
