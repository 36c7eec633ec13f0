// The stream adapter of a directory. Each entry is announced with what its peer needs to make the
// entity: the chain of its classes, of which the peer takes the first that it knows, and its
// constructor's argument. The payload of an entry's record:
//
//   key:text  state:u8  id:u64  chain:u32 (bytes)  class:text...  argument
//
// and of an entry's removal, under the negated attribute: key:text. An entry of a class that the
// peer does not know is skipped there and counted.
#ifndef QOR_ATTRLOG_DIR_DIRADAPTER_H
#define QOR_ATTRLOG_DIR_DIRADAPTER_H

#include <qor/attrlog/family/MakeAdapter.h>
#include <qor/tree/Dir.h>

namespace Qor {

class QOR_EXPORT Dir::QorNboAttrLogSa : public AdapterLevel<Dir> {
  public:
    using Ptr = Qor::Ptr<QorNboAttrLogSa>;
    class FlowOut;
    class QorNboAttrLogSaAdapter_;
    using IsNondestructingStream = StreamNondestructing<Dir>;
    struct EntryStream;
    using QorStreamed = StreamList<IsNondestructingStream, EntryStream>;

    QorNboAttrLogSa(AdapterState::Bits bits, U32 version, Qor::Ptr<NboAttrLog::Out> const& out,
                    PtrInterface* owner);
    ~QorNboAttrLogSa() override;
    static Ptr QorNboAttrLogSaIs(AdapterState::Bits bits, Qor::Ptr<Dir> const& entity, U32 version,
                                 Qor::Ptr<NboAttrLog::Out> const& out, PtrInterface* owner);

    void onIsNondestructing() override;
    virtual void onEntry(Name key);
    void doRemountSelf(Qor::Ptr<NboAttrLog::Out> const& out) override;

    /// The chain of classes that came last, as it stands in a record, and the class that it begins
    /// with; null where that is not known.
    struct Chain {
        String8 bytes;
        QorType* type = nullptr;
        U32 publications = 0;
    };
    Chain& lastChain() noexcept { return lastChain_; }

  private:
    Chain lastChain_;
};

struct QOR_EXPORT Dir::QorNboAttrLogSa::EntryStream
    : StreamKeyed<Dir::EntryAttr, StreamKind::entry> {
    static void on(QorNboAttrLogSa& adapter, Name const& key) { adapter.onEntry(key); }
    /// Announces the entry, and lets its entity send its whole state; a null member is a removal.
    /// Whether nothing is owed for the key.
    static bool serialize(QorNboAttrLogSa& adapter, Name const& key, QorEntry* member);
    static void read(QorNboAttrLogSa& adapter, InboundRecord& record);
    static void del(Dir& dir, Name const& key) { dir.entryDel(key); }
    static void sweep(QorNboAttrLogSa& adapter, StreamAdapter::AttrTransactionType type);
};

class QOR_EXPORT Dir::QorNboAttrLogSa::FlowOut : public FlowOutLevel<QorStreamed, EntityFlowOut> {
  public:
    using FlowOutLevel::FlowOutLevel;
};

class QOR_EXPORT Dir::QorNboAttrLogSa::QorNboAttrLogSaAdapter_
    : public Companion<QorNboAttrLogSa, Dir::NotifieeConst> {
  public:
    using Companion::Companion;

    void onIsNondestructing() override;
    void onEntry(Name key) override;
};

extern template class AdapterLevel<Dir>;

}  // namespace Qor

#endif
