#include <vgwd/watch/RowWatch.h>

#include <vgw/OvsdbDataTypes.h>

namespace Vgwd {
namespace {

std::string quoted(Qor::String8 const& text) { return "\"" + std::string(text.view()) + "\""; }

std::string textOf(Qor::String8 const& text) { return quoted(text); }
std::string textOf(Kelp::IpAddr address) { return std::string(address.stringValue().view()); }
std::string textOf(Kelp::EthAddr const& address) {
    return std::string(address.stringValue().view());
}
std::string textOf(Vxlan::Vni vni) { return std::to_string(vni.value()); }
std::string textOf(bool flag) { return flag ? "true" : "false"; }
template <class N>
requires std::is_unsigned_v<N> std::string textOf(N number) { return std::to_string(number); }
std::string textOf(Vgw::PhysicalLocatorKey const& key) {
    return std::string(Vgw::stringValue(key.encapType()).view()) + " " + textOf(key.dstIp());
}
std::string textOf(Vgw::MacVniPair const& pair) {
    return textOf(pair.mac()) + " " + textOf(pair.vni());
}

std::string keyText(Qor::String8 const& key) { return std::string(key.view()); }
template <class K>
std::string keyText(K const& key) {
    return textOf(key);
}

// What the row classes' watches share.
template <class X>
class Watch : public X::NotifieeConst {
  public:
    Watch(std::string path, ChangePrinter& printer) : path_(std::move(path)), printer_(printer) {}

    void onInvalidAttrib(Qor::String8 key) override {
        keyed("invalidAttrib", key, row().invalidAttribIteratorConst());
    }

  protected:
    X const& row() const { return static_cast<X const&>(*this->qorNotifier()); }

    template <class V>
    void scalar(std::string_view attribute, V const& value) {
        printer_.tell(path_, attribute, textOf(value));
    }
    // A key may be gone, which its default value wouldn't tell.
    template <class K, class Walk>
    void keyed(std::string_view attribute, K const& key, Walk walk) {
        while (walk && !(walk.key() == key)) ++walk;
        printer_.tellKey(path_, attribute, keyText(key),
                         walk ? textOf(walk.value()) : ChangePrinter::removed);
    }

  private:
    std::string path_;
    ChangePrinter& printer_;
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
