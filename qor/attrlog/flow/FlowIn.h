// What arrives for one entity in several records: a text in chunks, or a snapshot. Kept by the
// demuxer under the entity's id while it lasts. Iterator and key are heap copies whose type the
// attribute knows.
#ifndef QOR_ATTRLOG_FLOW_FLOWIN_H
#define QOR_ATTRLOG_FLOW_FLOWIN_H

#include <qor/attrlog/EntityId.h>
#include <qor/collections/HashMap.h>
#include <qor/core/Exception.h>
#include <qor/core/Export.h>
#include <qor/core/String8.h>

#include <memory>

namespace Qor {

namespace NboAttrLog {

class QOR_EXPORT FlowIn : public VFPtrInterface {
  public:
    using Ptr = Qor::Ptr<FlowIn>;

    explicit FlowIn(EntityId const& id) noexcept : id_(id) {}
    ~FlowIn() override;

    AttributeId aid() const noexcept { return aid_; }
    void aidIs(AttributeId aid) noexcept { aid_ = aid; }
    String8::Iterator* iter() const noexcept { return iter_.get(); }
    void iterIs(std::unique_ptr<String8::Iterator> iter) noexcept { iter_ = std::move(iter); }
    void* idx() const noexcept { return idx_; }
    void idxIs(void* idx) noexcept { idx_ = idx; }
    // How the key is freed that idx() points to.
    using IdxFree = void (*)(void* idx);
    void idxFreeIs(IdxFree free) noexcept { idxFree_ = free; }
    void idxDel();
    // The end of the snapshot of aid() is being carried out.
    bool handlingTransaction() const noexcept { return handlingTransaction_; }
    void handlingTransactionIs(bool on) noexcept { handlingTransaction_ = on; }
    // A change of the attribute here was not sent, since the text that arrives replaces it.
    bool heldBack() const noexcept { return heldBack_; }
    void heldBackIs(bool on) noexcept { heldBack_ = on; }

    // What the peer had taken of this end's frames when the snapshot began.
    U64 heardAtBegin() const noexcept { return heardAtBegin_; }
    void heardAtBeginIs(U64 frames) noexcept { heardAtBegin_ = frames; }

    // As it was made, but for another entity.
    void restart(EntityId const& id) noexcept;

    // Frees a text that was half received.
    void textDel() {
        if (!iter_) return;
        iter_.reset();
        aid_ = 0;
    }

    // Of the demuxer's table.
    EntityId const& fwkKey() const noexcept { return id_; }
    U32 fwkHash() const noexcept { return HashMapKey<EntityId>::hash(id_); }
    FlowIn* fwkHmNext() const noexcept { return fwkHmNext_; }
    void fwkHmNextIs(FlowIn* next) noexcept { fwkHmNext_ = next; }

  private:
    EntityId id_;
    U64 heardAtBegin_ = 0;
    AttributeId aid_ = 0;
    bool handlingTransaction_ = false;
    bool heldBack_ = false;
    std::unique_ptr<String8::Iterator> iter_;
    void* idx_ = nullptr;
    IdxFree idxFree_ = nullptr;
    FlowIn* fwkHmNext_ = nullptr;
};

// The stored iterator; without one, and with `peek` false, it makes one and stores it with `aid`.
// Raises AttrLogRecordException where the text of another attribute has not been finished.
QOR_EXPORT String8::Iterator* qorFlowInIterator(FlowIn& rrc, AttributeId aid, bool peek);
// Stores a copy. The assertion is a fault of the caller: a stream can't bring it about.
QOR_EXPORT void qorFlowInIteratorIs(FlowIn& rrc, AttributeId aid,
                                    String8::Iterator const& iterator);

template <class K>
void qorFlowInIdxEnq(FlowIn& rsc, K const& key) {
    assertThat(!rsc.idx(), "!rsc->idx()", "Qor/NboAttrLogFlow", 195, "qorFlowInIdxEnq");
    rsc.idxIs(new K(key));
    rsc.idxFreeIs([](void* idx) { delete static_cast<K*>(idx); });
}

inline void qorFlowInIdxDeq(FlowIn& rsc) { rsc.idxDel(); }

template <class K>
bool qorFlowInIdxMatches(FlowIn const& rsc, K const& key) {
    return rsc.idx() && *static_cast<K const*>(rsc.idx()) == key;
}

}  // namespace NboAttrLog

}  // namespace Qor

#endif
