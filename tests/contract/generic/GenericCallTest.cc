// Registered operations: what a call by number does is what the member function does, and what it
// gives back is its result.
#include <vgw/OvsdbDataTypes.h>
#include <vgw/VgwTypes.h>

#include "EveryWrapper.h"

namespace Contract {
namespace {

class EveryRow : public EveryWrapper {
  protected:
    bool canBeCloned() const {
        return class_.isOrIsBelow("Vgw::OvsdbDataModel") && class_.name != "Vgw::OvsdbDataModel" &&
               class_.name != "Vgw::LogicalBindingStats";
    }
    bool canBeCompared() const { return type().attr(Qor::Name("isEqualTo")) != nullptr; }
    /// A row of the class in which everything is changed, but for the marks of what is not valid.
    EntityPtr changed() const {
        EntityPtr const row = class_.make(1);
        forEachChangeable([&](Attribute const& a) {
            if (a.name != "invalidAttrib" && a.name != "type") {
                a.change(*row);
            }
        });
        return row;
    }
    Wrapper call(char const* operation, Wrapper const& list) const {
        return wrapper_->attributeOp(wrapper_->attributeId(operation), OpId::opGet, list);
    }
};
INSTANTIATE_TEST_SUITE_P(Models, EveryRow, testing::ValuesIn(entityClasses()), ClassName());

TEST_P(EveryRow, IsClonedAsByItsMemberFunction) {
    if (!canBeCloned()) {
        return;
    }
    EntityPtr const source = changed();
    for (int times = 0; times < 2; ++times) {
        EXPECT_FALSE(call("clone", listOf({wrapperOf(source, true)}))) << "no result";
        Vgw::OvsdbDataModel::PtrConst const rhs(&dynamic_cast<Vgw::OvsdbDataModel const&>(*source));
        dynamic_cast<Vgw::OvsdbDataModel&>(*twin_).clone(rhs);
        EXPECT_EQ(held(*entity_), held(*twin_));
        EXPECT_EQ(take(), twinRecorder_.take());
    }
}

TEST_P(EveryRow, IsComparedAsByItsMemberFunction) {
    if (!canBeCompared()) {
        return;
    }
    EntityPtr const other = changed();
    EXPECT_EQ(wrappedText(call("isEqualTo", listOf({wrapperOf(twin_, true)})).ptr()), "true");
    EXPECT_EQ(wrappedText(call("isEqualTo", listOf({wrapperOf(other, true)})).ptr()), "false");
    EXPECT_EQ(take(), AllTold());
}

TEST_P(EveryRow, RefusesARowOfAnotherClassWhereItsOwnIsNeeded) {
    if (!canBeCompared()) {
        return;
    }
    auto const before = held(*entity_);
    for (EntityClass const* const other : entityClasses()) {
        bool const fits = other->isOrIsBelow(
            std::string(type().attr(Qor::Name("isEqualTo"))->arguments()[0].type.view()));
        std::string const refusal = "type " + other->name.substr(std::string("Vgw::").size());
        EXPECT_EQ(raised([&] { call("isEqualTo", listOf({wrapperOf(other->make())})); }),
                  fits ? "nothing" : refusal);
    }
    EXPECT_EQ(held(*entity_), before);
}

TEST_P(EveryRow, CopiesTheListThatItIsCalledWith) {
    if (!canBeCompared()) {
        return;
    }
    Wrapper const list = listOf({wrapperOf(twin_)});
    call("isEqualTo", list);
    call("isEqualTo", list);
    auto const* const queue = static_cast<Qor::GenericIf::List::Queue const*>(
        list->genericValue(Qor::GenericIf::List::_fwkType()));
    EXPECT_EQ(queue->size(), 1U);
}

class GenericCall : public testing::Test {
  protected:
    static std::string refused(Wrapper const& wrapper, char const* operation, Wrapper list) {
        return raised(
            [&] { wrapper->attributeOp(wrapper->attributeId(operation), OpId::opGet, list); });
    }
    static std::string result(Wrapper const& wrapper, char const* operation, Wrapper list) {
        return wrappedText(
            wrapper->attributeOp(wrapper->attributeId(operation), OpId::opGet, list).ptr());
    }
};

TEST_F(GenericCall, IsEqualToWithTwoArgumentsIsOneTooMany) {
    auto const row = Qor::make<Vgw::Manager>("m");
    Wrapper const wrapper = wrapperOf(row);
    EXPECT_EQ(refused(wrapper, "isEqualTo", listOf({wrapper, wrapper})), "surplus isEqualTo");
}

TEST_F(GenericCall, ClearWithAnArgumentIsOneTooMany) {
    auto const database = Vgw::hwVtepOvsdbFactory("ovsdb");
    database->logicalSwitchIs("red");
    Wrapper const wrapper = wrapperOf(database);
    EXPECT_EQ(refused(wrapper, "clear", listOf({wrapper})), "surplus clear");
    EXPECT_EQ(database->logicalSwitchs(), 1U);
    EXPECT_EQ(result(wrapper, "clear", listOf({})), "no result");
    EXPECT_EQ(database->logicalSwitchs(), 0U);
}

TEST_F(GenericCall, ClearLeavesTheManagersAsTheMemberFunctionDoes) {
    auto const database = Vgw::hwVtepOvsdbFactory("ovsdb");
    database->managerIs("m");
    database->rootIs("r");
    result(wrapperOf(database), "clear", listOf({}));
    EXPECT_EQ(database->managers(), 1U);
    EXPECT_EQ(database->roots(), 0U);
}

TEST_F(GenericCall, ManagerTargetGivesAText) {
    auto const config = Vgw::cliConfigFactory("cliConfig");
    Wrapper const wrapper = wrapperOf(config, true);
    EXPECT_EQ(result(wrapper, "managerTarget", listOf({})), "''");
    config->managerIpIs(Kelp::IpAddr("192.0.2.9"));
    EXPECT_EQ(result(wrapper, "managerTarget", listOf({})), "'ssl:192.0.2.9:6632'");
    EXPECT_EQ(wrapper->attributeOp(wrapper->attributeId("managerTarget"), OpId::opGet, listOf({}))
                  ->fwkType(),
              Qor::QorType::type("Qor::String8"));
}

TEST_F(GenericCall, ResetSetsTheDefaults) {
    auto const config = Vgw::cliConfigFactory("cliConfig");
    config->managerPortIs(1);
    EXPECT_EQ(result(wrapperOf(config), "reset", listOf({})), "no result");
    EXPECT_EQ(config->managerPort(), 6632);
}

TEST_F(GenericCall, ToDisplayMsgTakesItsArgumentAndGivesAText) {
    Wrapper const wrapper = wrapperOf(Vgw::ovsdbSessionStatusFactory("session"));
    for (char const* const name :
         {"transactRequestType", "cancelRequestType", "monitorRequestType"}) {
        auto const type = Vgw::OvsdbRequestTypeInstance(Qor::String8(name));
        Wrapper const argument = valueOf("Vgw::OvsdbRequestType", "'" + std::string(name) + "'");
        EXPECT_EQ(result(wrapper, "toDisplayMsg", listOf({argument})),
                  textOf(Vgw::OvsdbSessionStatus::toDisplayMsg(type)));
    }
    EXPECT_EQ(refused(wrapper, "toDisplayMsg", listOf({nullptr})), "type requestType");
    EXPECT_EQ(refused(wrapper, "toDisplayMsg", listOf({})), "type requestType");
}

// To call is opGet, whatever the operation does: a wrapper for reading keeps nobody from it.
TEST_F(GenericCall, ConstWrapperCallsOperations) {
    auto const config = Vgw::cliConfigFactory("cliConfig");
    config->managerPortIs(1);
    EXPECT_EQ(result(wrapperOf(config, true), "reset", listOf({})), "no result");
    EXPECT_EQ(config->managerPort(), 6632);
}

TEST_F(GenericCall, ValueGivenToACallIsIgnored) {
    auto const config = Vgw::cliConfigFactory("cliConfig");
    Wrapper const wrapper = wrapperOf(config);
    EXPECT_EQ(wrappedText(wrapper
                              ->attributeOp(wrapper->attributeId("managerTarget"), OpId::opGet,
                                            listOf({}), valueOf("U16", "7"))
                              .ptr()),
              "''");
}

TEST(GenericCallDeathTest, NullRowIsHandedToCloneWhichStopsAtIt) {
    Wrapper const wrapper = wrapperOf(Qor::make<Vgw::Global>("g"));
    EXPECT_DEATH(wrapper->attributeOp(260, OpId::opGet, listOf({nullptr})),
                 "rhs && \"Dynamic_cast failed.\"");
}

TEST(GenericCallDeathTest, RowOfAnotherClassIsHandedToCloneWhichStopsAtIt) {
    Wrapper const wrapper = wrapperOf(Qor::make<Vgw::Global>("g"));
    Wrapper const other = wrapperOf(Qor::make<Vgw::Manager>("m"));
    EXPECT_DEATH(wrapper->attributeOp(260, OpId::opGet, listOf({other})),
                 "rhs && \"Dynamic_cast failed.\"");
}

TEST(GenericBackupManager, HandsEverythingToItsBase) {
    auto const row = Qor::make<Vgw::BackupManager>("b");
    Wrapper const wrapper = wrapperOf(row);
    EXPECT_EQ(wrapper->attributeId("target"), 386);
    EXPECT_EQ(wrapper->attributeId("isEqualTo"), 387);
    EXPECT_EQ(wrapper->attributeId("clone"), 260);
    EXPECT_EQ(wrapper->attributeId("fwkKey"), 0);
    wrapper->attributeOp(386, OpId::opSet, nullptr, valueOf("Qor::String8", "'ssl:192.0.2.1'"));
    EXPECT_EQ(row->target(), "ssl:192.0.2.1");
    auto const manager = Qor::make<Vgw::Manager>("m");
    wrapper->attributeOp(260, OpId::opGet, listOf({wrapperOf(manager)}));
    EXPECT_EQ(row->target(), "") << "a manager and its stand-in are copied into each other";
    EXPECT_EQ(
        wrappedText(wrapper->attributeOp(387, OpId::opGet, listOf({wrapperOf(manager)})).ptr()),
        "true");
}

TEST(GenericChild, KeyOnMakingAChildIsRefused) {
    auto const database = Vgw::hwVtepOvsdbFactory("ovsdb");
    Wrapper const wrapper = wrapperOf(database);
    Wrapper const key = valueOf("Qor::Name", "'r'");
    EXPECT_EQ(raised([&] {
                  wrapper->attributeOp(wrapper->attributeId("root"), OpId::opSet, key,
                                       listOf({key}));
              }),
              "no key root");
    EXPECT_EQ(database->roots(), 0U);
}

TEST(GenericCount, ReturnsWhenAMemberHasComeAndGoneWhileTheVersionDoesNot) {
    auto const row = Qor::make<Vgw::Global>("g");
    Wrapper const wrapper = wrapperOf(row);
    auto const read = [&](OpId op) { return wrappedText(wrapper->attributeOp(386, op).ptr()); };
    std::string const version = read(OpId::opVersion);
    Wrapper const key = valueOf("Qor::String8", "'u'");
    wrapper->attributeOp(386, OpId::opSet, key, valueOf("bool", "true"));
    EXPECT_EQ(read(OpId::opCount), "1");
    wrapper->attributeOp(386, OpId::opDel, key);
    EXPECT_EQ(read(OpId::opCount), "0");
    EXPECT_NE(read(OpId::opVersion), version);
}

}  // namespace
}  // namespace Contract
