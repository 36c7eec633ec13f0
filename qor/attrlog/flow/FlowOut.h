// The state of one entity's resynchronisation on one connection: what is owed, and where the
// sending stopped. It exists only while something is owed; the adapter owns it and the demuxer
// gives it turns.
//
// The levels below add what their class owes: a dirty word with a bit for each attribute, and for
// each keyed attribute a map of dirty keys. Here stands what is common: the attribute that is
// worked on, a bookmark (the key at which a walk over a collection goes on), a half sent text with
// its key, and the snapshots that are to be aborted. Bookmark, text and key are heap copies whose
// type the attribute knows; at most one of each is held.
#ifndef QOR_ATTRLOG_FLOW_FLOWOUT_H
#define QOR_ATTRLOG_FLOW_FLOWOUT_H

#include <qor/attrlog/EntityId.h>
#include <qor/collections/HashMap.h>
#include <qor/collections/Members.h>
#include <qor/core/Export.h>
#include <qor/core/String8.h>

namespace Qor {

class StreamAdapter;

namespace NboAttrLog {

class Demuxer;
class FlowQueue;

class QOR_EXPORT FlowOut : public VFPtrInterface {
  public:
    using Ptr = Qor::Ptr<FlowOut>;
    using QorPendingAbort = ValueMember<AttributeId, bool>;
    using PendingAbortIterator = HashMap<QorPendingAbort, AttributeId>::Iterator;

    // As a start attribute: nothing is owed until something is marked.
    static constexpr AttributeId owesNothing = 0x7FFFFFFF;
    // So many keys beside twice the collection's may be owed singly.
    static constexpr U32 spareMarks = 8;

    explicit FlowOut(StreamAdapter& adapter) noexcept : adapter_(&adapter) {}
    ~FlowOut() override;

    // Whether an attribute is owed, whole or in part.
    virtual bool hasDirtyAttributes() const;

    AttributeId attrId() const noexcept { return attrId_; }
    void attrIdIs(AttributeId id) noexcept { attrId_ = id; }

    void* bookmark() const noexcept { return bookmark_; }
    void bookmarkIs(void* bookmark) noexcept { bookmark_ = bookmark; }
    void* valueIter() const noexcept { return valueIter_; }
    void valueIterIs(void* iterator) noexcept { valueIter_ = iterator; }
    void* valueIterKey() const noexcept { return valueIterKey_; }
    void valueIterKeyIs(void* key) noexcept { valueIterKey_ = key; }
    U32 outstandingKeys() const noexcept { return outstandingKeys_; }
    void outstandingKeysIs(U32 count) noexcept { outstandingKeys_ = count; }
    void outstandingKeysInc(U32 count) noexcept { outstandingKeys_ += count; }

    U8 qorDataBits() const noexcept { return qorDataBits_; }
    void qorDataBitsIs(U8 bits) noexcept { qorDataBits_ = bits; }
    // The walk has passed the last key, but a text of it is half sent.
    bool walkDone() const noexcept { return (qorDataBits_ & walkDoneBit) != 0; }
    void walkDoneIs(bool on) noexcept { bitIs(walkDoneBit, on); }
    // A reference names an entity that the peer doesn't know yet.
    bool retryLater() const noexcept { return (qorDataBits_ & retryLaterBit) != 0; }
    void retryLaterIs(bool on) noexcept { bitIs(retryLaterBit, on); }

    // A reference that names what the peer doesn't know is left out: its key stays dirty, and the
    // walk goes on. So it is once a pass over all attributes has made known what it could.
    bool leavesOut() {
        bool const leaves = leavesOut_ && retryLater();
        if (leaves) retryLaterIs(false);
        return leaves;
    }

    // Attributes of which the peer has part of a text, or a snapshot, that will not be finished.
    void pendingAbortIs(AttributeId id, bool on);
    void pendingAbortDel(AttributeId id) { pendingAborts_.memberDel(id); }
    PendingAbortIterator pendingAbortIterator() { return PendingAbortIterator(&pendingAborts_); }
    U32 pendingAborts() const noexcept { return pendingAborts_.size(); }

    // It began with everything owed.
    bool isWhole() const noexcept { return isWhole_; }

    StreamAdapter& streamAdapter() const noexcept { return *adapter_; }

    // Something has become owed: a flow that waits for ids gets turns again.
    void owes() {
        if (isWaiting_) [[unlikely]] {
            wake();
        }
    }

  private:
    friend class Demuxer;
    friend class FlowQueue;
    static constexpr U8 walkDoneBit = 4;
    static constexpr U8 retryLaterBit = 16;
    void bitIs(U8 bit, bool on) noexcept {
        qorDataBits_ = static_cast<U8>(on ? qorDataBits_ | bit : qorDataBits_ & ~bit);
    }
    void wake();

    AttributeId attrId_ = 0;
    AttributeId resumeAt_ = 0;
    void* bookmark_ = nullptr;
    void* valueIter_ = nullptr;
    void* valueIterKey_ = nullptr;
    U32 outstandingKeys_ = 0;
    U8 qorDataBits_ = 0;
    bool isWaiting_ = false;  // for an id of the peer's; gets no turns
    bool hasResume_ = false;  // resumeAt_ says more than attrId_
    bool isRunning_ = false;
    bool isWhole_ = false;
    bool waits_ = false;  // in this pass, which may take several turns, something had no id
    bool leavesOut_ = false;
    HashMap<QorPendingAbort, AttributeId> pendingAborts_;
    StreamAdapter* adapter_;
    FlowQueue* queue_ = nullptr;  // the demuxer's that it stands in, with its neighbours there
    FlowOut* before_ = nullptr;
    FlowOut* next_ = nullptr;
};

}  // namespace NboAttrLog

}  // namespace Qor

#endif
