#include <algorithm>
#include <vector>

#include <gtest/gtest.h>

#include <qor/core/Exception.h>
#include <qor/generic/GenericIf.h>
#include <qor/registry/Builtin.h>

namespace {

using Qor::Name;
using Qor::QorType;

// What is published is kept for good, here as everywhere.
QorType::Ptr lasting(char const* name, QorType* base = nullptr) {
    auto const type = Qor::make<QorType>(Name(name), nullptr, base, 0U);
    static auto& kept = *new std::vector<QorType::Ptr>;
    kept.push_back(type);
    return type;
}

bool isAmongTheTypes(QorType const* type) {
    auto const types = QorType::types();
    return std::count(types.begin(), types.end(), type) != 0;
}

class TypeRecord : public testing::Test {
  protected:
    QorType::Ptr const type = lasting("Lamp");
    QorType::Ptr const derived = lasting("Bulb", type.ptr());
};

TEST_F(TypeRecord, IsFoundByTheNameThatItWasPublishedUnder) {
    EXPECT_FALSE(QorType::type("Acme::Found"));
    QorType::typeNodeIs(type.ptr(), "Acme::Found");
    EXPECT_EQ(QorType::type("Acme::Found"), type);
    EXPECT_EQ(type->fullName(), "Acme::Found");
    EXPECT_EQ(type->name(), "Lamp");
    EXPECT_TRUE(isAmongTheTypes(type.ptr()));
}

TEST_F(TypeRecord, PublishedAgainStandsUnderItsLastNameAlone) {
    for (char const* const name : {"Acme::First", "Acme::First", "Acme::Second", "Acme::First"}) {
        QorType::typeNodeIs(type.ptr(), Name(std::string_view(std::string(name))));
        EXPECT_EQ(QorType::type(name), type);
    }
    EXPECT_FALSE(QorType::type("Acme::Second"));
    auto const types = QorType::types();
    EXPECT_EQ(std::count(types.begin(), types.end(), type.ptr()), 1);
}

TEST_F(TypeRecord, GivesWayToAnotherOfItsName) {
    QorType::typeNodeIs(type.ptr(), "Acme::Taken");
    QorType::typeNodeIs(derived.ptr(), "Acme::Taken");
    EXPECT_EQ(QorType::type("Acme::Taken"), derived);
    EXPECT_FALSE(isAmongTheTypes(type.ptr()));
    QorType::typeNodeIs(type.ptr(), "Acme::Elsewhere");
    EXPECT_EQ(QorType::type("Acme::Taken"), derived) << "what it gave up is not its own any more";
}

TEST_F(TypeRecord, TypesComeInTheOrderOfTheirNames) {
    QorType::typeNodeIs(derived.ptr(), "Acme::B");
    QorType::typeNodeIs(type.ptr(), "Acme::A");
    auto const types = QorType::types();
    EXPECT_TRUE(std::is_sorted(types.begin(), types.end(), [](auto const* a, auto const* b) {
        return a->fullName().view() < b->fullName().view();
    }));
}

TEST_F(TypeRecord, KnowsItselfAndWhatItStandsBelow) {
    EXPECT_TRUE(derived->isA(*derived));
    EXPECT_TRUE(derived->isA(*type));
    EXPECT_FALSE(type->isA(*derived));
    EXPECT_FALSE(type->isA(*Qor::Builtin<bool>::_fwkType()));
}

TEST_F(TypeRecord, SaysWhatItCannotDo) {
    QorType::typeNodeIs(type.ptr(), "Acme::PlainLamp");
    EXPECT_THROW(type->newEntity("x", nullptr), Qor::RangeException);
    EXPECT_THROW(type->genericIf(static_cast<void const*>(nullptr), false), Qor::RangeException);
    EXPECT_THROW(type->genericIf(static_cast<Qor::GenericIf const*>(nullptr), false),
                 Qor::RangeException);
    EXPECT_THROW(type->genericIfFromStrep("x", false), Qor::RangeException);
    EXPECT_THROW(type->genericIf_(nullptr, false), Qor::RangeException);
    try {
        type->newEntity("x", nullptr);
    } catch (Qor::RangeException const& e) {
        EXPECT_TRUE(std::string(e.what()).starts_with("Acme::PlainLamp: ")) << e.what();
    }
}

}  // namespace
