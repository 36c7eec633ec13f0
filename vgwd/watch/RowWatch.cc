#include <vgwd/watch/RowWatch.h>

#include <vgw/OvsdbDataTypes.h>
#include <vgwd/watch/EntityWatch.h>

namespace Vgwd {
namespace {

// What the row classes' watches share.
template <class X>
class Watch : public EntityWatch<X> {
  public:
    using EntityWatch<X>::EntityWatch;

    void onInvalidAttrib(Qor::String8 key) override {
        this->keyed("invalidAttrib", key, row().invalidAttribIteratorConst());
    }

  protected:
    X const& row() const { return this->entity(); }
};

template <class X>
class RowWatch;

template <>
class RowWatch<Vgw::Global> final : public Watch<Vgw::Global> {
  public:
    using Watch::Watch;
    void onPSwitch(Qor::String8 key) override {
        keyed("pSwitch", key, row().pSwitchIteratorConst());
    }
    void onManager(Qor::String8 key) override {
        keyed("manager", key, row().managerIteratorConst());
    }
};

template <>
class RowWatch<Vgw::Manager> final : public Watch<Vgw::Manager> {
  public:
    using Watch::Watch;
    void onTarget() override { scalar("target", row().target()); }
};

template <>
class RowWatch<Vgw::PhysicalSwitch> final : public Watch<Vgw::PhysicalSwitch> {
  public:
    using Watch::Watch;
    void onDisplayName() override { scalar("displayName", row().displayName()); }
    void onDesc() override { scalar("desc", row().desc()); }
    void onPort(Qor::String8 key) override { keyed("port", key, row().portIteratorConst()); }
    void onMgmtIp(Kelp::IpAddr key) override { keyed("mgmtIp", key, row().mgmtIpIteratorConst()); }
    void onTunnelIp(Kelp::IpAddr key) override {
        keyed("tunnelIp", key, row().tunnelIpIteratorConst());
    }
    void onFault(Qor::String8 key) override { keyed("fault", key, row().faultIteratorConst()); }
};

template <>
class RowWatch<Vgw::PhysicalPort> final : public Watch<Vgw::PhysicalPort> {
  public:
    using Watch::Watch;
    void onDisplayName() override { scalar("displayName", row().displayName()); }
    void onDesc() override { scalar("desc", row().desc()); }
    void onVlanBinding(Qor::U16 key) override {
        keyed("vlanBinding", key, row().vlanBindingIteratorConst());
    }
    void onVlanStat(Qor::U32 key) override {
        keyed("vlanStat", key, row().vlanStatIteratorConst());
    }
    void onFault(Qor::String8 key) override { keyed("fault", key, row().faultIteratorConst()); }
};

template <>
class RowWatch<Vgw::LogicalBindingStats> final : public Watch<Vgw::LogicalBindingStats> {
  public:
    using Watch::Watch;
    void onInBytes() override { scalar("inBytes", row().inBytes()); }
    void onInPackets() override { scalar("inPackets", row().inPackets()); }
    void onOutBytes() override { scalar("outBytes", row().outBytes()); }
    void onOutPackets() override { scalar("outPackets", row().outPackets()); }
};

template <>
class RowWatch<Vgw::LogicalSwitch> final : public Watch<Vgw::LogicalSwitch> {
  public:
    using Watch::Watch;
    void onDisplayName() override { scalar("displayName", row().displayName()); }
    void onDesc() override { scalar("desc", row().desc()); }
    void onTunnelKey() override { scalar("tunnelKey", row().tunnelKey()); }
};

template <>
class RowWatch<Vgw::PhysicalLocator> final : public Watch<Vgw::PhysicalLocator> {
  public:
    using Watch::Watch;
    void onKey() override { scalar("key", row().key()); }
    void onBfd(Qor::String8 key) override { keyed("bfd", key, row().bfdIteratorConst()); }
    void onBfdStatus(Qor::String8 key) override {
        keyed("bfdStatus", key, row().bfdStatusIteratorConst());
    }
    void onUcastMacRef(Vgw::MacVniPair const& key) override {
        keyed("ucastMacRef", key, row().ucastMacRefIteratorConst(key));
    }
    void onMcastMacRef(Vgw::MacVniPair const& key) override {
        keyed("mcastMacRef", key, row().mcastMacRefIteratorConst(key));
    }
};

template <>
class RowWatch<Vgw::PhysicalLocatorSet> final : public Watch<Vgw::PhysicalLocatorSet> {
  public:
    using Watch::Watch;
    void onLocator(Qor::String8 key) override {
        keyed("locator", key, row().locatorIteratorConst());
    }
};

template <>
class RowWatch<Vgw::UcastMacsLocal> final : public Watch<Vgw::UcastMacsLocal> {
  public:
    using Watch::Watch;
    void onVtepIp() override { scalar("vtepIp", row().vtepIp()); }
    void onUuid() override { scalar("uuid", row().uuid()); }
    void onVni() override { scalar("vni", row().vni()); }
    void onLogicalSwitch() override { scalar("logicalSwitch", row().logicalSwitch()); }
};

template <>
class RowWatch<Vgw::McastMacsLocal> final : public Watch<Vgw::McastMacsLocal> {
  public:
    using Watch::Watch;
    void onVtepIp(Kelp::IpAddr key) override { keyed("vtepIp", key, row().vtepIpIteratorConst()); }
    void onUuid() override { scalar("uuid", row().uuid()); }
    void onVni() override { scalar("vni", row().vni()); }
    void onPhysicalLocatorSet() override {
        scalar("physicalLocatorSet", row().physicalLocatorSet());
    }
    void onLogicalSwitch() override { scalar("logicalSwitch", row().logicalSwitch()); }
};

template <>
class RowWatch<Vgw::UcastMacsRemote> final : public Watch<Vgw::UcastMacsRemote> {
  public:
    using Watch::Watch;
    void onMac() override { scalar("mac", row().mac()); }
    void onLogicalSwitch() override { scalar("logicalSwitch", row().logicalSwitch()); }
    void onPhysicalLocator() override { scalar("physicalLocator", row().physicalLocator()); }
    void onIpAddr() override { scalar("ipAddr", row().ipAddr()); }
};

template <>
class RowWatch<Vgw::McastMacsRemote> final : public Watch<Vgw::McastMacsRemote> {
  public:
    using Watch::Watch;
    void onMac() override { scalar("mac", row().mac()); }
    void onLogicalSwitch() override { scalar("logicalSwitch", row().logicalSwitch()); }
    void onPhysicalLocatorSet() override {
        scalar("physicalLocatorSet", row().physicalLocatorSet());
    }
    void onIpAddr() override { scalar("ipAddr", row().ipAddr()); }
};

// A watch if the row is of that class.
template <class X>
bool tryWatch(Qor::Ptr<Qor::Entity const> const& row, std::string const& path,
              ChangePrinter& printer, Qor::Entity::NotifieeConst::Ptr& made) {
    Qor::Ptr<X const> const mine = Qor::dynamicCast<X const>(row);
    if (!mine) return false;
    made = Qor::make<RowWatch<X>>(path, printer);
    made->notifierIs(mine);
    return true;
}

template <class... Xs>
Qor::Entity::NotifieeConst::Ptr watchAnyOf(Qor::Ptr<Qor::Entity const> const& row,
                                           std::string const& path, ChangePrinter& printer) {
    Qor::Entity::NotifieeConst::Ptr made;
    static_cast<void>((tryWatch<Xs>(row, path, printer, made) || ...));
    return made;
}

}  // namespace

Qor::Entity::NotifieeConst::Ptr watchRow(Qor::Ptr<Qor::Entity const> const& row, std::string path,
                                         ChangePrinter& printer) {
    using namespace Vgw;
    return watchAnyOf<UcastMacsRemote, McastMacsRemote, UcastMacsLocal, McastMacsLocal,
                      PhysicalLocator, PhysicalLocatorSet, LogicalBindingStats, LogicalSwitch,
                      PhysicalPort, PhysicalSwitch, Global, Vgw::Manager>(row, path, printer);
}

}  // namespace Vgwd
