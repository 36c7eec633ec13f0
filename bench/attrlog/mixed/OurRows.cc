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

// By What. Who tells a change of a member hands its key on.
struct OurRows::Senders {
    template <class X>
    static auto& of(OurRows& rows, MixedRecord const& record) {
        return *rows.row<X>(record.row).adapter;
    }
    static std::size_t member(MixedRecord const& record) {
        return record.row * Mixture::members + record.member;
    }

    static void none(OurRows&, MixedRecord const&) {}
    static void counter(OurRows& rows, MixedRecord const& record) {
        of<Vgw::LogicalBindingStats>(rows, record).onInBytes();
    }
    static void mac(OurRows& rows, MixedRecord const& record) {
        of<Vgw::UcastMacsRemote>(rows, record).onMac();
    }
    static void address(OurRows& rows, MixedRecord const& record) {
        of<Vgw::UcastMacsRemote>(rows, record).onIpAddr();
    }
    static void rowText(OurRows& rows, MixedRecord const& record) {
        of<Vgw::UcastMacsRemote>(rows, record).onLogicalSwitch();
    }
    static void otherRowText(OurRows& rows, MixedRecord const& record) {
        of<Vgw::UcastMacsRemote>(rows, record).onPhysicalLocator();
    }
    static void shortText(OurRows& rows, MixedRecord const& record) {
        of<Vgw::LogicalSwitch>(rows, record).onDesc();
    }
    static void tunnelKey(OurRows& rows, MixedRecord const& record) {
        of<Vgw::LogicalSwitch>(rows, record).onTunnelKey();
    }
    static void port(OurRows& rows, MixedRecord const& record) {
        of<Vgw::CliConfig>(rows, record).onManagerPort();
    }
    static void flag(OurRows& rows, MixedRecord const& record) {
        of<Vgw::CliConfig>(rows, record).onEnableAgent();
    }
    static void state(OurRows& rows, MixedRecord const& record) {
        of<Vgw::OvsdbSessionStatus>(rows, record).onSessionState();
    }
    static void portRow(OurRows& rows, MixedRecord const& record) {
        of<Vgw::PhysicalSwitch>(rows, record).onPort(rows.keys_[member(record)]);
    }
    static void portRowGone(OurRows& rows, MixedRecord const& record) {
        of<Vgw::PhysicalSwitch>(rows, record).onPort(rows.missing_[member(record)]);
    }
    static void pair(OurRows& rows, MixedRecord const& record) {
        of<Vgw::PhysicalLocator>(rows, record).onUcastMacRef(pairOf(record));
    }
    static void binding(OurRows& rows, MixedRecord const& record) {
        of<Vgw::PhysicalPort>(rows, record).onVlanBinding(static_cast<Qor::U16>(record.second));
    }
    static void word(OurRows& rows, MixedRecord const& record) {
        of<Vgw::PhysicalLocator>(rows, record).onBfdStatus(rows.options_[record.member]);
    }
    static void reference(OurRows& rows, MixedRecord const& record) {
        auto const key = Kelp::IpAddr::fromHostOrder(record.second);
        of<Vgw::HwVtepOvsdb>(rows, record).onPhysicalLocator(key);
    }

    using Sender = void (*)(OurRows&, MixedRecord const&);
    static constexpr Sender all[whats] = {none,         counter,   mac,         address, rowText,
                                          otherRowText, shortText, tunnelKey,   port,    flag,
                                          state,        portRow,   portRowGone, pair,    pair,
                                          binding,      word,      reference};
};

void OurRows::send(MixedRecord const& record) {
    Senders::all[static_cast<std::size_t>(record.what)](*this, record);
}

}  // namespace Bench
