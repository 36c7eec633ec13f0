// How adapters are found, made and removed.
#include "Peers.h"
#include "Records.h"

#include <vgw/attrlog/BackupManager.h>
#include <vgw/attrlog/HwVtepOvsdb.h>
#include <vgw/attrlog/LogicalSwitch.h>
#include <vgw/attrlog/PhysicalSwitch.h>

#include <gtest/gtest.h>

namespace {

using Qor::make;
using Qor::Name;
using Qor::AdapterState::Bits;
using Qor::AdapterState::flag;

using Row = Vgw::LogicalSwitch;
using RowAdapter = Row::QorNboAttrLogSa;

class Adapter : public testing::Test {
  protected:
    Qor::Ptr<Qor::NboAttrLog::Out const> reader() const { return peer.outPtr(); }

    Peer peer{Peer::Demuxer::Side::connecting};
    Qor::Ptr<Row> row = make<Row>(Name("ls"));
};

TEST_F(Adapter, IsMadeOnceForAnOut) {
    EXPECT_EQ(row->qorNboAttrLogSa(reader()), nullptr);
    auto const made = row->qorNboAttrLogSaIs(Bits(), 1, peer.outPtr(), nullptr);
    EXPECT_EQ(row->qorNboAttrLogSaIs(Bits(), 1, peer.outPtr(), nullptr), made);
    EXPECT_EQ(row->qorNboAttrLogSa(reader()), made.ptr());
    EXPECT_EQ(row->notifierList().count(), 1U);
    EXPECT_TRUE(made->hasNotificationActive());
    EXPECT_TRUE(made->companion()->hasNotificationActive());
    EXPECT_FALSE(made->isRegisteredNotifiee());
    EXPECT_TRUE(made->companion()->isRegisteredNotifiee());
}

TEST_F(Adapter, NullOutIsRefused) {
    try {
        row->qorNboAttrLogSaIs(Bits(), 1, nullptr, nullptr);
        ADD_FAILURE() << "was not refused";
    } catch (Qor::RangeException const& refusal) {
        EXPECT_EQ(refusal.message(), "null ValidPtr");
    }
}

TEST_F(Adapter, FlagsThatAreSetAlreadyLeaveTheWordUntouched) {
    auto const made = row->qorNboAttrLogSaIs(Bits(4), 1, peer.outPtr(), nullptr);
    made->flagIs(flag(20) | flag(26), true);
    auto const word = made->state();
    row->qorNboAttrLogSaIs(Bits(4), 1, peer.outPtr(), nullptr);
    EXPECT_EQ(made->state(), word);
}

TEST_F(Adapter, OtherFlagsReplaceAllButTheRunTimeState) {
    auto const made = row->qorNboAttrLogSaIs(Bits(4), 1, peer.outPtr(), nullptr);
    made->flagIs(flag(20) | flag(21) | flag(22) | flag(24) | flag(26) | flag(5), true);
    row->qorNboAttrLogSaIs(Bits(8), 1, peer.outPtr(), nullptr);
    EXPECT_EQ(made->state().word(), 8U | flag(20) | flag(21) | flag(22) | flag(24) | flag(26));
    EXPECT_EQ(Bits::notificationBitMask().word(), 0xFA8FFFFFU);
}

TEST_F(Adapter, StandsAtTheHeadOfTheListTheLastFirst) {
    struct Listener : Vgw::LogicalSwitch::NotifieeConst {};
    auto const listener = make<Listener>();
    listener->notifierIs(row);
    auto const first = peer.attach(row);
    Peer other(Peer::Demuxer::Side::connecting);
    auto const second = other.attach(row);
    auto* const head = row->notifierList().head();
    EXPECT_EQ(head, second->companion());
    EXPECT_EQ(Qor::ListRawGeneric::next(*head), first->companion());
}

TEST_F(Adapter, IsFoundForEachOfSeveralOuts) {
    auto const first = peer.attach(row);
    Peer other(Peer::Demuxer::Side::connecting);
    auto const second = other.attach(row);
    EXPECT_EQ(row->qorNboAttrLogSa(reader()), first.ptr());
    EXPECT_EQ(row->qorNboAttrLogSa(Qor::Ptr<Qor::NboAttrLog::Out const>(other.outPtr())),
              second.ptr());
}

TEST_F(Adapter, OnAnOutWithoutAnInIsFoundBehindOthers) {
    auto const out = make<Qor::NboAttrLog::Out>();
    auto const made = row->qorNboAttrLogSaIs(Bits(), 1, out, nullptr);
    auto const other = peer.attach(row);
    EXPECT_EQ(row->qorNboAttrLogSa(Qor::Ptr<Qor::NboAttrLog::Out const>(out)), made.ptr());
    EXPECT_EQ(row->qorNboAttrLogSaIs(Bits(), 1, out, nullptr), made);
    EXPECT_EQ(row->notifierList().count(), 2U);
    auto const stranger = make<Qor::NboAttrLog::Out>();
    EXPECT_EQ(row->qorNboAttrLogSa(Qor::Ptr<Qor::NboAttrLog::Out const>(stranger)), nullptr);
}

TEST_F(Adapter, IsFoundWithoutAnOutOnAChannelOnly) {
    auto const made = peer.attach(row);
    EXPECT_EQ(row->qorNboAttrLogSa(nullptr), nullptr);
    peer.out().isChannelIs(true);
    EXPECT_EQ(row->qorNboAttrLogSa(nullptr), made.ptr());
    made->entityIdIs(Qor::EntityId(8));
    EXPECT_EQ(row->qorNboAttrLogSa(nullptr), nullptr);
}

TEST_F(Adapter, IsFoundOnTheSameMessageChannel) {
    Peer other(Peer::Demuxer::Side::connecting);
    auto const mine = peer.attach(row);
    auto const its = other.attach(row);
    EXPECT_EQ(row->qorNboAttrLogSaForMsgChannel(mine), nullptr);
    other.out().isChannelIs(true);
    EXPECT_EQ(row->qorNboAttrLogSaForMsgChannel(mine), its.ptr());
    auto const entry = make<Qor::MsgChannel::Constrainer::QorEntry>();
    mine->msgChannelIs(entry.ptr());
    EXPECT_EQ(row->qorNboAttrLogSaForMsgChannel(mine), nullptr);
    its->msgChannelIs(entry.ptr());
    EXPECT_EQ(row->qorNboAttrLogSaForMsgChannel(mine), its.ptr());
}

TEST_F(Adapter, OfAnotherClassIsRemovedAndReplaced) {
    auto const manager = make<Vgw::BackupManager>(Name("m"));
    using Base = Vgw::Manager::QorNboAttrLogSa;
    auto const old =
        Base::QorNboAttrLogSaIs(Bits(), Vgw::Manager::Ptr(manager), 1, peer.outPtr(), nullptr);
    old->qorOnInit();
    auto const made = manager->qorNboAttrLogSaIs(Bits(), 1, peer.outPtr(), nullptr);
    EXPECT_TRUE(dynamic_cast<Vgw::BackupManager::QorNboAttrLogSa*>(made.ptr()));
    EXPECT_EQ(peer.demuxer->adapter(old->entityId()), nullptr);
}

TEST_F(Adapter, IsRemovedAndHandedOver) {
    auto made = peer.attach(row);
    auto const gone = row->qorNboAttrLogSaDel(reader());
    EXPECT_EQ(gone, made);
    EXPECT_EQ(peer.demuxer->adapters(), 0U);
    EXPECT_FALSE(row->qorNboAttrLogSaDel(reader()));
}

TEST_F(Adapter, HandedOverOutlivesItsDemuxer) {
    Qor::Ptr<Qor::Entity::QorNboAttrLogSa> gone;
    {
        Peer other(Peer::Demuxer::Side::connecting);
        auto const made = other.attach(row);
        gone = row->qorNboAttrLogSaDel(Qor::Ptr<Qor::NboAttrLog::Out const>(other.outPtr()));
        ASSERT_EQ(gone, made);
        EXPECT_EQ(gone->streamDemuxer(), nullptr);
        EXPECT_FALSE(gone->nboAttrLogOut());
        row->tunnelKeyIs(6);
        EXPECT_EQ(takeBytes(other.out()), "");
    }
    row->tunnelKeyIs(7);
    gone->doNotification(388, nullptr);
    EXPECT_EQ(row->notifierList().count(), 1U);
    gone = nullptr;
    EXPECT_EQ(row->notifierList().count(), 0U);
}

TEST_F(Adapter, NeverEnteredOutlivesItsDemuxer) {
    Qor::Ptr<Qor::Entity::QorNboAttrLogSa> made;
    {
        Peer other(Peer::Demuxer::Side::connecting);
        made = row->qorNboAttrLogSaIs(Bits(), 1, other.outPtr(), nullptr);
        EXPECT_EQ(made->streamDemuxer(), other.demuxer.ptr());
    }
    EXPECT_EQ(made->streamDemuxer(), nullptr);
    row->tunnelKeyIs(7);
    EXPECT_EQ(made->audit(), 0U);
    made = nullptr;
    EXPECT_EQ(row->notifierList().count(), 0U);
}

TEST_F(Adapter, WhoseIdIsRefusedOutlivesItsDemuxer) {
    Qor::Ptr<Qor::Entity::QorNboAttrLogSa> made;
    {
        Peer other(Peer::Demuxer::Side::connecting);
        made = row->qorNboAttrLogSaIs(Bits(), 1, other.outPtr(), nullptr);
        EXPECT_THROW(made->doEntityIdIs(Qor::EntityId(3), other.demuxer, true),
                     Qor::AttrLogRecordException);
    }
    row->tunnelKeyIs(7);
    EXPECT_EQ(made->streamDemuxer(), nullptr);
}

TEST_F(Adapter, OnAnOutWithoutAnInIsNotRemoved) {
    auto const out = make<Qor::NboAttrLog::Out>();
    auto const made = row->qorNboAttrLogSaIs(Bits(), 1, out, nullptr);
    EXPECT_FALSE(row->qorNboAttrLogSaDel(Qor::Ptr<Qor::NboAttrLog::Out const>(out)));
    EXPECT_EQ(row->notifierList().count(), 1U);
}

TEST_F(Adapter, MayHaveASecondCompanionOfItsClass) {
    using Companion = RowAdapter::QorNboAttrLogSaAdapter_;
    auto const made = peer.attach(row);
    auto const second = Companion::QorNboAttrLogSaAdapter_Is(row, made);
    EXPECT_EQ(second->qorReactorAdapter(), made.ptr());
    EXPECT_TRUE(second->hasNotificationActive());
    EXPECT_TRUE(second->isRegisteredNotifiee());
    EXPECT_EQ(row->notifierList().head(), second.ptr());
    row->tunnelKeyIs(7);
    auto const once = record(3, 388, "00000007");
    EXPECT_EQ(hex(takeBytes(peer.out())), once + once);
    auto const unattached = Companion::QorNboAttrLogSaAdapter_Is(nullptr, made);
    EXPECT_FALSE(unattached->qorNotifier());
    second->qorReactorAdapterIs(nullptr);
    unattached->qorReactorAdapterIs(nullptr);
}

TEST_F(Adapter, IsTheDemuxersOfItsConnectionByEitherName) {
    EXPECT_EQ(Qor::demuxFor(peer.demuxer->in()), peer.demuxer.ptr());
    EXPECT_EQ(Qor::demuxFor(nullptr), nullptr);
    static_assert(std::is_same_v<RowAdapter::FlowOut::QorDirtyBitSet1, Qor::U32>);
    static_assert(
        std::is_same_v<Vgw::OvsdbDataModel::QorNboAttrLogSa::FlowOut::QorDirtyBitSet0, Qor::U32>);
}

TEST_F(Adapter, AnchorClearsTheMarkWhateverHappens) {
    auto const made = peer.attach(row);
    made->flagIs(Qor::AdapterState::isActive, true);
    try {
        Qor::ClearIsActiveAnchor const anchor(*made);
        EXPECT_TRUE(made->isActive());
        throw 1;
    } catch (int) {
    }
    EXPECT_FALSE(made->isActive());
}

TEST_F(Adapter, PassesNotificationActiveToItsCompanionAndBack) {
    auto const made = peer.attach(row);
    made->hasNotificationActiveIs(false);
    EXPECT_FALSE(made->companion()->hasNotificationActive());
    made->companion()->hasNotificationActiveIs(true);
    EXPECT_TRUE(made->hasNotificationActive());
    made->hasNotificationActiveIs(true);
    EXPECT_TRUE(made->companion()->hasNotificationActive());
}

// Each is turned off behind the other's back, which nothing but this test does.
TEST_F(Adapter, NotificationActiveAsItIsDoesNothingAtEitherLevel) {
    auto const made = peer.attach(row);
    auto* const companion = made->companion();
    companion->Qor::PtrInterface::NotifieeConst::hasNotificationActiveIs(false);
    made->hasNotificationActiveIs(true);
    EXPECT_FALSE(companion->hasNotificationActive());
    companion->Qor::PtrInterface::NotifieeConst::hasNotificationActiveIs(true);
    made->Qor::PtrInterface::NotifieeConst::hasNotificationActiveIs(false);
    companion->hasNotificationActiveIs(true);
    EXPECT_FALSE(made->hasNotificationActive());
}

TEST_F(Adapter, MarkedForDeletionIsNotCalledByItsCompanion) {
    auto const made = peer.attach(row);
    made->qorDoZombieReactors(true);
    EXPECT_TRUE(made->qorMarkedForDeletion());
    EXPECT_TRUE(made->companion()->qorMarkedForDeletion());
    EXPECT_FALSE(made->companion()->hasNotificationActive());
    row->tunnelKeyIs(7);
    EXPECT_EQ(hex(takeBytes(peer.out())), "");
    made->companion()->hasNotificationActiveIs(true);
    EXPECT_FALSE(made->hasNotificationActive());
    made->qorDoZombieReactors(false);
    row->tunnelKeyIs(8);
    EXPECT_EQ(hex(takeBytes(peer.out())), record(3, 388, "00000008"));
}

TEST_F(Adapter, WeakOneEndsWithItsEntity) {
    auto made = peer.attach(row);
    Qor::EntityId const id = made->entityId();
    made = nullptr;
    row = nullptr;
    EXPECT_EQ(peer.demuxer->adapter(id), nullptr);
    EXPECT_EQ(peer.demuxer->adapters(), 0U);
}

TEST_F(Adapter, StrongOneKeepsItsEntity) {
    auto made = peer.attach(row, 0);
    Row* const raw = row.ptr();
    row = nullptr;
    EXPECT_EQ(made->qorNotifierEntity(), raw);
    peer.demuxer->reactorDel(made->entityId());
    made = nullptr;
}

TEST_F(Adapter, EntityMayEndWhileItsFlowIsOwed) {
    Peer small(Peer::Demuxer::Side::connecting, 1);
    small.attach(row);
    row->tunnelKeyIs(1);
    row->tunnelKeyIs(2);
    EXPECT_EQ(small.demuxer->flows(), 1U);
    row = nullptr;
    EXPECT_EQ(small.demuxer->flows(), 0U);
    EXPECT_FALSE(small.demuxer->serveFlows(1000));
}

TEST_F(Adapter, ClosedConnectionLeavesTheEntityAlone) {
    auto const made = peer.attach(row);
    peer.demuxer->close();
    row->tunnelKeyIs(7);
    EXPECT_EQ(hex(takeBytes(peer.out())), "");
    EXPECT_EQ(peer.demuxer->adapters(), 0U);
}

TEST_F(Adapter, OfAParentIsRemountedByTakingDownItsChildren) {
    auto const ovsdb = make<Vgw::HwVtepOvsdb>(Name("db"));
    auto const a = peer.attach(ovsdb);
    auto const sw = ovsdb->physicalSwitchRawIs(Name("s"));
    auto const ls = ovsdb->logicalSwitchIs(Name("l"));
    EXPECT_EQ(peer.demuxer->adapters(), 3U);
    a->doRemountSelf(peer.outPtr());
    EXPECT_EQ(peer.demuxer->adapters(), 1U);
    EXPECT_EQ(ls->notifierList().count(), 0U);
}

TEST_F(Adapter, InstantiatingAnnouncesTheChildrenAgain) {
    auto const ovsdb = make<Vgw::HwVtepOvsdb>(Name("db"));
    ovsdb->logicalSwitchIs(Name("l"));
    ovsdb->rootIs(Name("r"));
    auto const a = peer.attach(ovsdb);
    a->qorInstantiateSerialize();
    EXPECT_EQ(hex(takeBytes(peer.out())), record(3, 258, "00000001720000000000000005", 1, 151) +
                                              record(3, 263, "000000016c0000000000000007", 1, 151));
}

TEST_F(Adapter, ReplaysAChangeById) {
    auto const sw = make<Vgw::PhysicalSwitch>(Name("s"));
    sw->portIs("p", true);
    sw->descIs("d");
    auto const a = peer.attach(sw);
    a->doNotification(387, nullptr);
    EXPECT_EQ(hex(takeBytes(peer.out())), record(3, 387, "64"));
    Qor::String8 key("p");
    a->doNotification(-388, &key);
    EXPECT_EQ(hex(takeBytes(peer.out())), record(3, 388, "000000017001"));
    a->doNotification(258, nullptr);
    EXPECT_EQ(hex(takeBytes(peer.out())), record(3, 258, "00000004"));
    a->doNotification(999, nullptr);
    EXPECT_EQ(hex(takeBytes(peer.out())), "");
}

TEST_F(Adapter, PeerWithoutMarkersGetsLocalSnapshots) {
    auto const sw = make<Vgw::PhysicalSwitch>(Name("s"));
    sw->portIs("p", true);
    auto const a = peer.attach(sw);
    a->flagIs(Qor::AdapterState::isActive, true);
    a->syncModeIs(Qor::StreamAdapter::resync);
    EXPECT_FALSE(Vgw::PhysicalSwitch::QorPortIterator(*sw).member()->qorMarkedForDeletion());
    peer.demuxer->protocolIs(1);
    a->flagIs(Qor::AdapterState::isActive, true);
    a->syncModeIs(Qor::StreamAdapter::resync);
    EXPECT_TRUE(Vgw::PhysicalSwitch::QorPortIterator(*sw).member()->qorMarkedForDeletion());
    a->flagIs(Qor::AdapterState::isActive, true);
    a->syncModeIs(Qor::StreamAdapter::live);
    EXPECT_EQ(sw->ports(), 0U);
}

TEST_F(Adapter, EntityWithoutAttributeLogHasNone) {
    auto const plain = make<Qor::Entity>(Name("e"));
    EXPECT_EQ(plain->qorNboAttrLogSa(reader()), nullptr);
    EXPECT_THROW(plain->qorNboAttrLogSaIs(Bits(), 1, peer.outPtr(), nullptr),
                 Qor::InternalException);
}

}  // namespace
