// All demuxers of a thread, by name. Whoever makes one enters it; it leaves at its end.
#ifndef QOR_ATTRLOG_FLOW_DEMUXERMANAGER_H
#define QOR_ATTRLOG_FLOW_DEMUXERMANAGER_H

#include <qor/collections/HashMap.h>
#include <qor/core/Export.h>
#include <qor/core/Name.h>

namespace Qor {

class QOR_EXPORT BaseDemuxer : public VFPtrInterface {
  public:
    explicit BaseDemuxer(Name name);
    ~BaseDemuxer() override;

    Name const& name() const noexcept { return name_; }

    // Of the manager's map.
    Name const& fwkKey() const noexcept { return name_; }
    U32 fwkHash() const noexcept { return rhash(name_); }
    BaseDemuxer* fwkHmNext() const noexcept { return fwkHmNext_; }
    void fwkHmNextIs(BaseDemuxer* next) noexcept { fwkHmNext_ = next; }

  private:
    Name const name_;
    BaseDemuxer* fwkHmNext_ = nullptr;
};

namespace NboAttrLog {

class QOR_EXPORT DemuxerManager {
  public:
    using Map = HashMap<BaseDemuxer, Name>;

    Map::IteratorConst nboDemuxerIterator() const { return Map::IteratorConst(&demuxers_); }
    // Keeps a demuxer until it is deleted here. REQUIRES: no other of that name
    void nboDemuxerIs(Ptr<BaseDemuxer> const& demuxer);
    void nboDemuxerDel(Name const& name) { demuxers_.memberDel(name); }
    U32 nboDemuxers() const noexcept { return demuxers_.size(); }

  private:
    Map demuxers_;
};

}  // namespace NboAttrLog

// The thread's.
QOR_EXPORT NboAttrLog::DemuxerManager& globalNboAttrLogDemuxerManager();

}  // namespace Qor

#endif
