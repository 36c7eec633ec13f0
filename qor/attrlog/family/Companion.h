// The notifiee that hears for a stream adapter: it is on the entity's list, and passes each change
// on. It keeps neither entity nor adapter alive. The classes below add one handler an attribute,
// each of which calls the adapter's.
#ifndef QOR_ATTRLOG_FAMILY_COMPANION_H
#define QOR_ATTRLOG_FAMILY_COMPANION_H

#include <qor/attrlog/flow/EntityAdapter.h>
#include <qor/core/ValidPtr.h>

namespace Qor {

/// `Adapter` is the class's adapter, `Base` its X::NotifieeConst.
template <class Adapter, class Base>
class Companion : public Base {
  public:
    explicit Companion(Adapter* adapter) noexcept : adapter_(adapter) {}
    /// A companion that hears of the entity, if there is one, for that adapter.
    static auto QorNboAttrLogSaAdapter_Is(Qor::Ptr<typename Adapter::EntityClass> const& entity,
                                          Qor::Ptr<Adapter> const& adapter) {
        using Hearing = typename Adapter::QorNboAttrLogSaAdapter_;
        Qor::Ptr<Hearing> companion = validPtr(make<Hearing>(adapter.ptr()));
        if (entity) companion->attachWeaklyTo(*entity);
        companion->hasNotificationActiveIs(true);
        return companion;
    }

    /// The adapter, borrowed; null once it has gone.
    Adapter* qorReactorAdapter() const noexcept { return adapter_; }
    void qorReactorAdapterIs(Adapter* adapter) noexcept { adapter_ = adapter; }

    Qor::Ptr<PtrInterface const> qorReactor() const override {
        return Qor::Ptr<PtrInterface const>(adapter_);
    }
    PtrInterface const* qorRawReactor() const override { return adapter_; }
    bool isStreamAdapter() const override { return true; }
    void qorWillHear(bool hasCome) const override {
        if (!adapter_) return;
        if (!hasCome)
            expectLines<3>(adapter_);
        else if (auto const* const flow = adapter_->StreamAdapter::flowOut())
            expectLines<4>(flow);
    }

    void hasNotificationActiveIs(bool on) override {
        if (on == this->hasNotificationActive()) return;
        Base::hasNotificationActiveIs(on);
        if (adapter_ && !this->qorMarkedForDeletion()) adapter_->hasNotificationActiveIs(on);
    }
    void onZeroReferences() override {
        Qor::Ptr<Companion> const held(this);
        if (Adapter* const adapter = adapter_) {
            adapter->Qor::Entity::QorNboAttrLogSa::onZeroReferences();
        }
        hasNotificationActiveIs(false);
        // Whoever works with the adapter may still hold it: what the entity tells at its end is
        // not for it any more.
        adapter_ = nullptr;
    }
    void onNotificationException(AttributeId id) override {
        if (adapter_) adapter_->Qor::Entity::QorNboAttrLogSa::onNotificationException(id);
    }

  protected:
    /// Calls a handler of the adapter.
    template <class Level, class... Parameter, class... Key>
    void forward(void (Level::*handler)(Parameter...), Key const&... key) {
        if (adapter_ && !this->qorMarkedForDeletion()) [[likely]] {
            (adapter_->*handler)(key...);
        }
    }

  private:
    // What a mark touches stands in the first lines of either.
    template <int lines>
    static void expectLines(void const* first) noexcept {
        for (int line = 0; line < lines; ++line)
            __builtin_prefetch(static_cast<char const*>(first) + line * 64, 1);
    }

    Adapter* adapter_;
};

}  // namespace Qor

#endif
