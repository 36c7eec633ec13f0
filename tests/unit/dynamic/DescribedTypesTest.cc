// What the registry tells of a described type is what it tells of the class.
#include "Described.h"

#include <qor/core/Exception.h>

#include <gtest/gtest.h>

#include <sstream>

namespace {

using Qor::QorType;

// A type's record, as a tool would print it.
std::string recordOf(QorType& type) {
    std::ostringstream text;
    auto const name = [](QorType const* of) {
        return of ? Described::renamed(of->fullName().view()) : std::string("none");
    };
    text << name(&type) << " " << type.qorName().view() << " base " << name(type.base()) << " size "
         << type.size() << " value " << type.isValue() << " enum " << type.isEnumType()
         << " entity " << type.isEntity() << " generic " << type.hasGenericIfSupport() << "\n";
    for (auto const& argument : type.constructorArgs()) {
        text << "argument " << argument.name.view() << " "
             << Described::renamed(argument.type.view()) << "\n";
    }
    for (auto const& attribute : type.attributes()) {
        text << attribute->id() << " " << attribute->name().view() << " "
             << name(attribute->valueType()) << " [" << name(attribute->keyType()) << "] "
             << name(attribute->owner()) << " by " << name(attribute->definedBy()) << std::hex
             << " " << attribute->flags().low() << " " << attribute->flags().high() << " "
             << attribute->introspection().value() << std::dec << " "
             << attribute->indexAttrName().view() << " "
             << (attribute->keyAttr() ? attribute->keyAttr()->name().view() : "-");
        for (auto const& argument : attribute->arguments()) {
            text << " " << argument.name.view() << ":" << Described::renamed(argument.type.view());
        }
        text << "\n";
    }
    return text.str();
}

std::vector<QorType*> classes() {
    Described::twin("Vgw::Status");
    std::vector<QorType*> result;
    for (QorType* const type : QorType::types()) {
        if (type->fullName().view().starts_with("Vgw::")) result.push_back(type);
    }
    return result;
}

TEST(DescribedTypes, RecordsAreThoseOfTheCompiledClasses) {
    ASSERT_EQ(classes().size(), 28U);
    for (QorType* const type : classes()) {
        EXPECT_EQ(recordOf(Described::twin(*type)), recordOf(*type));
        EXPECT_TRUE(Described::twin(*type).isDescribed());
        EXPECT_FALSE(type->isDescribed());
    }
}

TEST(DescribedTypes, DescriptionOfADescriptionIsTheSame) {
    for (QorType* const type : classes()) {
        EXPECT_EQ(Qor::TypeDescription::of(Described::twin(*type)),
                  Described::renamed(Qor::TypeDescription::of(*type)))
            << type->fullName().view();
    }
}

TEST(DescribedTypes, DescribedAlikeASecondTimeStayTheSame) {
    QorType* const before = &Described::twin("Vgw::LogicalSwitch");
    Described::describeAll();
    EXPECT_EQ(QorType::type("Dyn::LogicalSwitch"), before);
}

TEST(DescribedTypes, NewInstanceBeginsAsTheClassDoes) {
    auto const ls = Described::twin("Vgw::LogicalSwitch").newInstance(Qor::Name("ls"));
    auto const wrapper = ls->fwkType()->genericIf_(ls.ptr(), true);
    EXPECT_EQ(wrapper->attributeOp(388)->strRep(), "16777216");
    EXPECT_EQ(wrapper->attributeOp(258)->strRep(), "'logicalSwitch'");
    EXPECT_EQ(ls->name(), "ls");
    auto const locator = Described::twin("Vgw::PhysicalLocator").newInstance(Qor::Name("l"));
    EXPECT_EQ(locator->fwkType()->genericIf_(locator.ptr(), true)->attributeOp(386)->strRep(),
              "Value('Dyn::PhysicalLocatorKey', ** {'encapType': 'vxlan_over_ipv4', 'dstIp': "
              "'0.0.0.0'})");
}

}  // namespace
