#include <vgwd/write/RowMembers.h>

#include <ovsdb/mirror/Values.h>
#include <ovsdb/store/Uuid.h>
#include <vgw/tables/PhysicalPort.h>
#include <vgw/tables/PhysicalSwitch.h>
#include <vgwd/write/WrittenValue.h>

#include <utility>

namespace Vgwd {
namespace {

using Vgw::PhysicalPort;
using Vgw::PhysicalSwitch;

WrittenMember faultMember(char const* column, Qor::String8 const& key, bool isThere) {
    std::string const text(key.view());
    return {column, text, {isThere, {}}, whyNotText("fault", text)};
}

WrittenMember addressMember(char const* column, Kelp::IpAddr key, bool isThere) {
    return {column, std::string(key.stringValue().view()), {isThere, {}}, {}};
}

class PortWatch final : public PhysicalPort::NotifieeConst {
  public:
    explicit PortWatch(MemberHandler handler) : handler_(std::move(handler)) {}
    void onFault(Qor::String8 key) override {
        handler_(faultMember("port_fault_status", key, notifier()->fault(key)));
    }
    void onVlanStat(Qor::U32 key) override {
        std::string const text(notifier()->vlanStat(key).view());
        handler_({"vlan_stats", key, {!text.empty(), text}, {}});
    }

  private:
    MemberHandler const handler_;
};

class SwitchWatch final : public PhysicalSwitch::NotifieeConst {
  public:
    explicit SwitchWatch(MemberHandler handler) : handler_(std::move(handler)) {}
    void onFault(Qor::String8 key) override {
        handler_(faultMember("switch_fault_status", key, notifier()->fault(key)));
    }
    void onMgmtIp(Kelp::IpAddr key) override {
        handler_(addressMember("management_ips", key, notifier()->mgmtIp(key)));
    }
    void onTunnelIp(Kelp::IpAddr key) override {
        handler_(addressMember("tunnel_ips", key, notifier()->tunnelIp(key)));
    }

  private:
    MemberHandler const handler_;
};

class VtepWatch final : public Vgw::McastMacsLocal::NotifieeConst {
  public:
    using Handler = std::function<void(Kelp::IpAddr, bool)>;

    explicit VtepWatch(Handler handler) : handler_(std::move(handler)) {}
    void onVtepIp(Kelp::IpAddr key) override { handler_(key, notifier()->vtepIp(key)); }

  private:
    Handler const handler_;
};

template <class Watch, class Handler>
Qor::Ptr<Watch> watchOf(Qor::Entity& row, Handler handler) {
    auto watch = Qor::make<Watch>(std::move(handler));
    watch->isWeakReferenceIs(true);
    watch->notifierIs(Qor::Ptr<Qor::PtrInterface const>(&row));
    return watch;
}

void putFault(auto& row, nlohmann::json const& key, Member const& member) {
    Qor::String8 const fault = std::string_view(key.get_ref<std::string const&>());
    if (member.isThere)
        row.faultIs(fault, true);
    else
        row.faultDel(fault);
}

void putStatistics(PhysicalPort& port, Qor::U32 vlan, Member const& member, bool isUnderWay) {
    bool const isMade = member.isThere && !Ovsdb::Uuid::parse(member.text);
    if (isMade && isUnderWay && !port.vlanStat(vlan).empty()) return;
    if (member.isThere)
        port.vlanStatIs(vlan, std::string_view(member.text));
    else
        port.vlanStatDel(vlan);
}

void putAddress(PhysicalSwitch& device, bool isTunnel, nlohmann::json const& key,
                Member const& member) {
    Kelp::IpAddr const address = *Ovsdb::ipv4Of(key.get_ref<std::string const&>());
    if (isTunnel && member.isThere)
        device.tunnelIpIs(address, true);
    else if (isTunnel)
        device.tunnelIpDel(address);
    else if (member.isThere)
        device.mgmtIpIs(address, true);
    else
        device.mgmtIpDel(address);
}

void put(PhysicalPort& port, std::string const& column, nlohmann::json const& key,
         Member const& member, bool isUnderWay) {
    if (column == "vlan_stats")
        putStatistics(port, key.get<Qor::U32>(), member, isUnderWay);
    else
        putFault(port, key, member);
}

void put(PhysicalSwitch& device, std::string const& column, nlohmann::json const& key,
         Member const& member, bool) {
    if (column == "switch_fault_status")
        putFault(device, key, member);
    else
        putAddress(device, column == "tunnel_ips", key, member);
}

void putAll(auto& row, MemberChanges const& changes, bool isUnderWay) {
    for (auto const& [column, members] : changes)
        for (auto const& [key, member] : members) put(row, column, key, member, isUnderWay);
}

}  // namespace

Qor::PtrInterface::NotifieeConst::Ptr watchMembers(Qor::Entity& row, MemberHandler handler) {
    if (dynamic_cast<PhysicalPort*>(&row)) return watchOf<PortWatch>(row, std::move(handler));
    if (dynamic_cast<PhysicalSwitch*>(&row)) return watchOf<SwitchWatch>(row, std::move(handler));
    return nullptr;
}

Qor::PtrInterface::NotifieeConst::Ptr watchVteps(Vgw::McastMacsLocal& row,
                                                 std::function<void(Kelp::IpAddr, bool)> handler) {
    return watchOf<VtepWatch>(row, std::move(handler));
}

void putMembers(Qor::Entity& row, MemberChanges const& changes, bool isUnderWay) {
    if (auto* const port = dynamic_cast<PhysicalPort*>(&row))
        putAll(*port, changes, isUnderWay);
    else if (auto* const device = dynamic_cast<PhysicalSwitch*>(&row))
        putAll(*device, changes, isUnderWay);
}

}  // namespace Vgwd
