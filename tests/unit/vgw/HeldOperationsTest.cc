// Operations of several steps, in the first of which a handler lets go of the entity or of the row
// that is copied: they go on to their last step, and what was let go ends then.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include <vgw/OvsdbDataTypes.h>
#include <vgw/VgwTypes.h>

namespace {

/// Listens without holding, and lets go of `held` at the first change.
template <class X, class Held = typename X::Ptr>
class Release : public X::NotifieeConst {
  public:
    Release(typename X::Ptr const& notifier, Held* held) : held_(held) {
        this->isWeakReferenceIs(true);
        this->notifierIs(notifier);
    }
    void onZeroReferences() override { heard("end"); }

    std::vector<std::string> told;

  protected:
    void heard(char const* what) {
        told.emplace_back(what);
        *held_ = nullptr;
    }

  private:
    Held* held_;
};

class OfDatabase : public Release<Vgw::HwVtepOvsdb> {
  public:
    using Release::Release;
    void onLogicalSwitch(Qor::Name) override { heard("logicalSwitch"); }
    void onRoot(Qor::Name) override { heard("root"); }
};

TEST(HeldOperation, ClearEmptiesADatabaseThatAHandlerLetsGo) {
    auto db = Vgw::hwVtepOvsdbFactory("db");
    db->logicalSwitchIs("ls");
    db->rootIs("g");
    auto const hearer = Qor::make<OfDatabase>(db, &db);
    db->clear();
    EXPECT_FALSE(db);
    EXPECT_EQ(hearer->told, (std::vector<std::string>{"logicalSwitch", "root", "end"}));
}

class OfConfiguration : public Release<Vgw::CliConfig> {
  public:
    using Release::Release;
    void onEnableAgent() override { heard("enableAgent"); }
    void onManagerPort() override { heard("managerPort"); }
};

TEST(HeldOperation, ResetGoesThroughAConfigurationThatAHandlerLetsGo) {
    auto cli = Qor::make<Vgw::CliConfig>("cli");
    cli->enableAgentIs(true);
    cli->managerPortIs(1);
    auto const hearer = Qor::make<OfConfiguration>(cli, &cli);
    cli->reset();
    EXPECT_FALSE(cli);
    EXPECT_EQ(hearer->told, (std::vector<std::string>{"enableAgent", "managerPort", "end"}));
}

template <class Held>
class OfPort : public Release<Vgw::PhysicalPort, Held> {
  public:
    using Release<Vgw::PhysicalPort, Held>::Release;
    void onDesc() override { this->heard("desc"); }
    void onFault(Qor::String8) override { this->heard("fault"); }
};

class HeldClone : public testing::Test {
  protected:
    HeldClone() {
        source_->descIs("uplink");
        source_->faultIs("loss", true);
    }
    Vgw::PhysicalPort::Ptr target_ = Qor::make<Vgw::PhysicalPort>("target");
    Vgw::PhysicalPort::Ptr source_ = Qor::make<Vgw::PhysicalPort>("source");
};

TEST_F(HeldClone, CopiesTheWholeOfASourceThatAHandlerLetsGo) {
    Vgw::OvsdbDataModel::PtrConst rhs = source_;
    source_ = nullptr;
    auto const hearer = Qor::make<OfPort<Vgw::OvsdbDataModel::PtrConst>>(target_, &rhs);
    target_->clone(rhs);
    EXPECT_FALSE(rhs);
    EXPECT_EQ(hearer->told, (std::vector<std::string>{"desc", "fault"}));
    EXPECT_TRUE(target_->fault("loss"));
}

TEST_F(HeldClone, GoesThroughATargetThatAHandlerLetsGo) {
    auto const hearer = Qor::make<OfPort<Vgw::PhysicalPort::Ptr>>(target_, &target_);
    target_->clone(source_);
    EXPECT_FALSE(target_);
    EXPECT_EQ(hearer->told, (std::vector<std::string>{"desc", "fault", "end"}));
}

}  // namespace
