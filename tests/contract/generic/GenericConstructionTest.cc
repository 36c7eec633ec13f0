// Instances out of nothing but a type's record: from a list of arguments, from a name, from a text,
// from a stream.
#include <set>

#include <qor/attrlog/NboAttrLogIn.h>
#include <qor/attrlog/NboAttrLogOut.h>
#include <qor/tree/EntityPath.h>
#include <vgw/OvsdbDataTypes.h>

#include "EveryWrapper.h"

namespace Contract {
namespace {

Wrapper made(char const* type, Wrapper const& list) {
    return Qor::QorType::type(type)->genericIf(list.ptr(), false);
}

char const* const factories[] = {
    "Vgw::UcastMacsRemote", "Vgw::McastMacsRemote", "Vgw::HwVtepOvsdb", "Vgw::OvsdbSessionStatus",
    "Vgw::Status",          "Vgw::Config",          "Vgw::CliConfig"};

std::string shortName(std::string const& fullName) {
    return fullName.substr(std::string("Vgw::").size());
}

class EveryFactory : public testing::TestWithParam<char const*> {
  protected:
    Wrapper const name_ = valueOf("Qor::Name", "'n'");
};
struct FactoryName {
    std::string operator()(testing::TestParamInfo<char const*> const& info) const {
        return shortName(info.param);
    }
};
INSTANTIATE_TEST_SUITE_P(Factories, EveryFactory, testing::ValuesIn(factories), FactoryName());

TEST_P(EveryFactory, MakesAnInstanceThatMayBeWritten) {
    Wrapper const wrapper = made(GetParam(), listOf({name_}));
    ASSERT_TRUE(wrapper);
    EXPECT_FALSE(wrapper->isConst());
    EXPECT_EQ(wrapper->fwkType()->fullName(), GetParam());
    EXPECT_EQ(wrapper->entity()->name(), "n");
    EXPECT_FALSE(wrapper->entity()->parent());
}

TEST_P(EveryFactory, RefusesWhatIsNoListOfOneName) {
    EXPECT_EQ(raised([&] { made(GetParam(), nullptr); }), "type List");
    EXPECT_EQ(raised([&] { made(GetParam(), name_); }), "type Qor::GenericIf::List_");
    EXPECT_EQ(raised([&] { made(GetParam(), listOf({})); }), "type name");
    EXPECT_EQ(raised([&] { made(GetParam(), listOf({nullptr})); }), "type name");
    EXPECT_EQ(raised([&] { made(GetParam(), listOf({valueOf("U16", "7")})); }), "type U16");
    EXPECT_EQ(raised([&] {
                  made(GetParam(), listOf({name_, name_}));
              }),
              "surplus " + shortName(GetParam()));
}

TEST(GenericConstruction, MakesNothingOfAnyOtherEntityClass) {
    std::set<std::string> const known(std::begin(factories), std::end(factories));
    Wrapper const list = listOf({valueOf("Qor::Name", "'n'")});
    for (EntityClass const* const entityClass : entityClasses()) {
        std::string const refusal = raised([&] { made(entityClass->name.c_str(), list); });
        EXPECT_EQ(refusal.starts_with("range "), !known.contains(entityClass->name))
            << entityClass->name << ": " << refusal;
    }
}

// The remote MAC rows are made by their factories, but not by a directory from a name alone.
TEST(GenericConstruction, MakesFromANameAloneWhatStandsDirectlyUnderTheFramework) {
    for (EntityClass const* const entityClass : entityClasses()) {
        Qor::QorType* const type = Qor::QorType::type(entityClass->name.c_str());
        EntityPtr entity;
        std::string const refusal = raised([&] { entity = type->newEntity("n", nullptr); });
        bool const isMade =
            entityClass->base == "Qor::Entity" && entityClass->name != "Vgw::OvsdbDataModel";
        EXPECT_EQ(entity != nullptr, isMade) << entityClass->name << ": " << refusal;
        if (entity) {
            EXPECT_EQ(entity->name(), "n");
            EXPECT_EQ(entity->fwkType(), type);
            EXPECT_EQ(entity->qorRefs(), 1U);
        }
    }
}

TEST(GenericConstruction, MakesAPairOfMacAndVni) {
    Wrapper const mac = valueOf("Kelp::EthAddr", "'00:00:5e:00:53:01'");
    Wrapper const vni = valueOf("Vxlan::Vni", "5000");
    char const* const type = "Vgw::MacVniPair";
    Wrapper const pair = made(type, listOf({mac, vni}));
    EXPECT_EQ(pair->strRep(),
              valueToStrep(Vgw::MacVniPair(Kelp::EthAddr("00:00:5e:00:53:01"), Vxlan::Vni(5000))));
    EXPECT_FALSE(pair->isConst());
    EXPECT_EQ(raised([&] { made(type, nullptr); }), "type List");
    EXPECT_EQ(raised([&] { made(type, mac); }), "type Qor::GenericIf::List_");
    EXPECT_EQ(raised([&] { made(type, listOf({})); }), "type mac");
    EXPECT_EQ(raised([&] { made(type, listOf({mac})); }), "type vni");
    EXPECT_EQ(raised([&] { made(type, listOf({mac, nullptr})); }), "type vni");
    EXPECT_EQ(raised([&] { made(type, listOf({vni, mac})); }), "type Vni");
    EXPECT_EQ(raised([&] { made(type, listOf({mac, vni, vni})); }), "surplus MacVniPair");
}

TEST(GenericConstruction, MakesALocatorsKey) {
    Wrapper const encapType = valueOf("Vgw::EncapsulationType", "'unknownEncapType'");
    Wrapper const dstIp = valueOf("Kelp::IpAddr", "'192.0.2.1'");
    char const* const type = "Vgw::PhysicalLocatorKey";
    Wrapper const key = made(type, listOf({encapType, dstIp}));
    EXPECT_EQ(key->strRep(), valueToStrep(Vgw::PhysicalLocatorKey(Vgw::unknownEncapType,
                                                                  Kelp::IpAddr("192.0.2.1"))));
    EXPECT_EQ(raised([&] { made(type, listOf({})); }), "type encapType");
    EXPECT_EQ(raised([&] { made(type, listOf({encapType})); }), "type dstIp");
    EXPECT_EQ(raised([&] {
                  made(type, listOf({encapType, dstIp, dstIp}));
              }),
              "surplus PhysicalLocatorKey");
}

TEST(GenericConstruction, MakesDefaultsOfAnEmptyListAlone) {
    char const* const type = "Vgw::CliDefaults";
    EXPECT_EQ(made(type, listOf({}))->fwkType()->fullName(), type);
    EXPECT_EQ(raised([&] { made(type, nullptr); }), "type List");
    EXPECT_EQ(raised([&] { made(type, listOf({valueOf("U16", "7")})); }), "surplus CliDefaults");
}

TEST(GenericConstruction, NullGivesTheDefaultValue) {
    auto const ofNull = [](char const* type) {
        return Qor::QorType::type(type)->genericIf(static_cast<void const*>(nullptr), false);
    };
    EXPECT_EQ(ofNull("Vgw::MacVniPair")->strRep(), valueToStrep(Vgw::MacVniPair()));
    EXPECT_EQ(ofNull("Vgw::PhysicalLocatorKey")->strRep(), valueToStrep(Vgw::PhysicalLocatorKey()));
    EXPECT_EQ(ofNull("Vgw::SessionState")->strRep(), "'stateUnknown'");
}

class EveryEntityFound : public EveryWrapper {
  protected:
    EveryEntityFound() {
        root_->entryIs("row", entity_);
        Qor::rootDirIs(root_);
    }
    ~EveryEntityFound() override { Qor::rootDirIs(nullptr); }

    /// A stream that holds what the class's constructor takes.
    Qor::Ptr<Qor::NboAttrLog::In> streamed() const {
        auto const out = Qor::make<Qor::NboAttrLog::Out>();
        if (class_.hasName) {
            out << Qor::String8("streamed");
        } else {
            out << Kelp::EthAddr("00:00:5e:00:53:07");
        }
        auto const in = Qor::make<Qor::NboAttrLog::In>();
        in->receive(out->unsent());
        return in;
    }

    Qor::Dir::Ptr const root_ = Qor::make<Qor::Dir>("top");
};
INSTANTIATE_TEST_SUITE_P(Models, EveryEntityFound, testing::ValuesIn(entityClasses()), ClassName());

TEST_P(EveryEntityFound, ByTheTextOfAReference) {
    EXPECT_EQ(wrapper_->strRep(), Qor::valueToStrep(entity_));
    Wrapper const found = type().genericIfFromStrep(wrapper_->strRep(), true);
    EXPECT_EQ(found->entity(), entity_);
    EXPECT_TRUE(found->isConst());
    Wrapper const none = type().genericIfFromStrep("null", false);
    EXPECT_FALSE(none->entity());
    EXPECT_EQ(none->fwkType(), &type());
    EXPECT_EQ(none->strRep(), "null");
}

TEST_P(EveryEntityFound, ByNoOtherText) {
    for (char const* const text : {"", "'/top/nobody'", "null x", "/top/row", "'/top'"}) {
        EXPECT_THROW(type().genericIfFromStrep(text, false), Qor::RangeException) << text;
    }
    EXPECT_THROW(type().genericIfFromStrep(wrapper_->strRep() + " x", false), Qor::RangeException);
}

TEST_P(EveryEntityFound, MadeFromWhatAStreamHolds) {
    auto const in = streamed();
    EntityPtr const made = type().newEntity(in, {}, 0, nullptr);
    ASSERT_TRUE(made);
    EXPECT_EQ(made->fwkType(), &type());
    EXPECT_EQ(made->qorRefs(), 1U);
    EXPECT_EQ(made->name(), class_.hasName ? "streamed" : "");
    if (!class_.hasName) {
        EXPECT_EQ(wrappedText(wrapperOf(made)->attributeOp(386).ptr()), "'00:00:5e:00:53:07'");
    }
    EXPECT_EQ(in->available(), 0U) << "nothing else is read";
}

TEST(GenericConstruction, MakesNoValueFromAStreamAsAnEntity) {
    auto const in = Qor::make<Qor::NboAttrLog::In>();
    for (Qor::QorType* const type : Qor::QorType::types()) {
        if (type->isValue()) {
            EXPECT_THROW(type->newEntity(in, {}, 0, nullptr), Qor::RangeException)
                << type->fullName();
        }
    }
}

}  // namespace
}  // namespace Contract
