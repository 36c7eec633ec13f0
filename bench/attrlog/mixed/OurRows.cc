#include "OurRows.h"

#include <stdexcept>

namespace Bench {

namespace {

Qor::String8 text(std::string_view of) { return Qor::String8(of); }

Vgw::MacVniPair pairOf(MixedRecord const& record) {
    return {Kelp::EthAddr::fromNumber(record.number), Vxlan::Vni(record.second)};
}

}  // namespace

// The classes stand in the order of Mixture::Class, so that the ids come as it says.
OurRows::OurRows(Mixture const& mixture) {
    add<Vgw::LogicalBindingStats>(Mixture::bindingStats);
    add<Vgw::UcastMacsRemote>(Mixture::remoteMac);
    add<Vgw::LogicalSwitch>(Mixture::logicalSwitch);
    add<Vgw::CliConfig>(Mixture::config);
    add<Vgw::OvsdbSessionStatus>(Mixture::sessionStatus);
    add<Vgw::PhysicalSwitch>(Mixture::physicalSwitch);
    add<Vgw::PhysicalLocator>(Mixture::locator);
    add<Vgw::PhysicalPort>(Mixture::physicalPort);
    add<Vgw::HwVtepOvsdb>(Mixture::database);
    for (std::size_t member = 0; member < Mixture::members; ++member) {
        options_.push_back(text(Mixture::option(member)));
    }
    for (std::size_t index = 0; index < Mixture::rows; ++index) {
        fill(index, mixture);
        for (std::size_t member = 0; member < Mixture::members; ++member) {
            keys_.push_back(text(mixture.uuid(index, member)));
            missing_.push_back(text(mixture.missing(index, member)));
            fillMembers(index, member, mixture);
        }
    }
}

template <class X>
void OurRows::add(Mixture::Class of) {
    using Adapter = typename X::QorNboAttrLogSa;
    for (std::size_t index = 0; index < Mixture::rows; ++index) {
        auto const entity = Qor::make<X>(Qor::Name("row"));
        Qor::AdapterState::Bits const bits(Qor::AdapterState::weakNotifier);
        auto const adapter = Adapter::QorNboAttrLogSaIs(bits, entity, 1, out_, nullptr);
        adapter->qorOnInit();
        if (adapter->entityId().value() != Mixture::entityId(of, index)) {
            throw std::logic_error("an id is not the mixture's");
        }
        std::get<All<X>>(all_).push_back({entity, adapter});
    }
}

void OurRows::fill(std::size_t index, Mixture const& mixture) {
    auto const number = static_cast<std::uint32_t>(index);
    row<Vgw::LogicalBindingStats>(index).entity->inBytesIs(1'000'000'007ULL * (number + 1));
    auto& mac = *row<Vgw::UcastMacsRemote>(index).entity;
    mac.macIs(Kelp::EthAddr::fromNumber(Mixture::macOf(index, 0)));
    mac.ipAddrIs(Kelp::IpAddr::fromHostOrder(0xC0000200U + number));
    mac.logicalSwitchIs(text(mixture.uuid(index, 0)));
    mac.physicalLocatorIs(text(mixture.uuid(index, 1)));
    auto& logicalSwitch = *row<Vgw::LogicalSwitch>(index).entity;
    logicalSwitch.descIs(text(mixture.word(index)));
    logicalSwitch.tunnelKeyIs(5000U + number);
    auto& config = *row<Vgw::CliConfig>(index).entity;
    config.managerPortIs(static_cast<Qor::U16>(6632U + number));
    config.enableAgentIs(index % 2 != 0);
    row<Vgw::OvsdbSessionStatus>(index).entity->sessionStateIs(
        static_cast<Vgw::SessionState>(index % 4));
    row<Vgw::HwVtepOvsdb>(index).entity->physicalLocatorIs(
        Kelp::IpAddr::fromHostOrder(0xC0000200U + number), row<Vgw::PhysicalLocator>(index).entity);
}

void OurRows::fillMembers(std::size_t index, std::size_t member, Mixture const& mixture) {
    row<Vgw::PhysicalSwitch>(index).entity->portIs(keys_.back(), true);
    auto& locator = *row<Vgw::PhysicalLocator>(index).entity;
    auto const mac = Kelp::EthAddr::fromNumber(Mixture::macOf(index, member));
    locator.ucastMacRefIs(Vgw::MacVniPair(mac, Vxlan::Vni(5000)), true);
    locator.bfdStatusIs(options_[member], text(mixture.word(index)));
    row<Vgw::PhysicalPort>(index).entity->vlanBindingIs(static_cast<Qor::U16>(member + 100),
                                                        keys_.back());
}

void OurRows::send(MixedRecord const& record) {
    switch (record.what) {
        case What::portRow:
        case What::portRowGone:
        case What::pair:
        case What::pairGone:
        case What::binding:
        case What::word:
        case What::reference:
            return sendMember(record);
        default:
            return sendValue(record);
    }
}

inline void OurRows::sendValue(MixedRecord const& record) {
    switch (record.what) {
        case What::counter:
            return row<Vgw::LogicalBindingStats>(record.row).adapter->onInBytes();
        case What::mac:
            return row<Vgw::UcastMacsRemote>(record.row).adapter->onMac();
        case What::address:
            return row<Vgw::UcastMacsRemote>(record.row).adapter->onIpAddr();
        case What::rowText:
            return row<Vgw::UcastMacsRemote>(record.row).adapter->onLogicalSwitch();
        case What::otherRowText:
            return row<Vgw::UcastMacsRemote>(record.row).adapter->onPhysicalLocator();
        case What::shortText:
            return row<Vgw::LogicalSwitch>(record.row).adapter->onDesc();
        case What::tunnelKey:
            return row<Vgw::LogicalSwitch>(record.row).adapter->onTunnelKey();
        case What::port:
            return row<Vgw::CliConfig>(record.row).adapter->onManagerPort();
        case What::flag:
            return row<Vgw::CliConfig>(record.row).adapter->onEnableAgent();
        case What::state:
            return row<Vgw::OvsdbSessionStatus>(record.row).adapter->onSessionState();
        default:
            return;
    }
}

// Who tells a change of a member hands its key on.
inline void OurRows::sendMember(MixedRecord const& record) {
    std::size_t const member = record.row * Mixture::members + record.member;
    switch (record.what) {
        case What::portRow:
            return row<Vgw::PhysicalSwitch>(record.row).adapter->onPort(keys_[member]);
        case What::portRowGone:
            return row<Vgw::PhysicalSwitch>(record.row).adapter->onPort(missing_[member]);
        case What::pair:
        case What::pairGone:
            return row<Vgw::PhysicalLocator>(record.row).adapter->onUcastMacRef(pairOf(record));
        case What::binding:
            return row<Vgw::PhysicalPort>(record.row)
                .adapter->onVlanBinding(static_cast<Qor::U16>(record.second));
        case What::word:
            return row<Vgw::PhysicalLocator>(record.row)
                .adapter->onBfdStatus(options_[record.member]);
        case What::reference:
            return row<Vgw::HwVtepOvsdb>(record.row)
                .adapter->onPhysicalLocator(Kelp::IpAddr::fromHostOrder(record.second));
        default:
            return;
    }
}

}  // namespace Bench
