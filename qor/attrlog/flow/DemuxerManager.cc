#include <qor/attrlog/flow/DemuxerManager.h>

namespace Qor {

BaseDemuxer::BaseDemuxer(Name name) : name_(std::move(name)) {}

BaseDemuxer::~BaseDemuxer() = default;

namespace NboAttrLog {

void DemuxerManager::nboDemuxerIs(Ptr<BaseDemuxer> const& demuxer) {
    demuxers_.newMember(demuxer, demuxer->fwkHash());
}

}  // namespace NboAttrLog

NboAttrLog::DemuxerManager& globalNboAttrLogDemuxerManager() {
    thread_local NboAttrLog::DemuxerManager manager;
    return manager;
}

}  // namespace Qor
