#include <qor/attrlog/family/SyncModeIn.h>

#include <qor/tree/Dir.h>

namespace Qor {

namespace {

void applyTo(Entity::QorNboAttrLogSa& adapter, StreamAdapter::SyncMode mode) {
    adapter.flagIs(AdapterState::syncModeFanOut, true);
    adapter.syncModeIs(mode);
    adapter.flagIs(AdapterState::syncModeFanOut, false);
}

void fanOut(Entity::QorNboAttrLogSa& adapter, StreamAdapter::SyncMode mode) {
    for (auto at = globalNboAttrLogDemuxerManager().nboDemuxerIterator(); at; ++at) {
        auto* const demuxer = dynamic_cast<NboAttrLog::Demuxer*>(at.member().ptr());
        auto* const known = demuxer ? demuxer->adapter(adapter.entityId()) : nullptr;
        bool const isSame = known && known->qorNotifierEntity() == adapter.qorNotifierEntity();
        if (isSame && adapter.hasUnifiedEntityId()) applyTo(*known, mode);
    }
}

// The source has let the entity go: its directory says so.
void releaseEntry(Entity::QorNboAttrLogSa& adapter) {
    Entity& entity = *adapter.qorNotifierEntity();
    auto* const dir = dynamic_cast<Dir*>(entity.qorParent());
    if (!dir) return;
    adapter.flagIs(AdapterState::isActive, false);
    if (dir->entry(entity.name()) == &entity) {
        dir->entryStateIs(entity.name(), Dir::EntryState::released);
    }
}

}  // namespace

void readSyncMode(Entity::QorNboAttrLogSa& adapter, NboAttrLog::In& in) {
    auto const mode = StreamAdapter::SyncModeInstance(in.nextU32());
    fanOut(adapter, mode);
    channelModeIs(adapter, MsgChannel::Mode::syncMode);
    if (mode == StreamAdapter::released) releaseEntry(adapter);
}

}  // namespace Qor
