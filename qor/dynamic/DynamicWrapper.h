// The wrapper over a dynamic entity. It does what the wrappers of compiled classes do, with the
// same refusals; operations of the class are refused with NoCodeException.
#ifndef QOR_DYNAMIC_DYNAMIC_WRAPPER_H
#define QOR_DYNAMIC_DYNAMIC_WRAPPER_H

#include <qor/dynamic/DynamicRows.h>
#include <qor/generic/EntityWrapper.h>

namespace Qor {

template <>
struct GenericTable<DynamicAttributeList> {
    struct Rows {
        operator std::span<GenericAttribute const>() const noexcept {
            return DynamicScope::type().genericRows();
        }
    };
    static constexpr Rows rows{};
};

class QOR_EXPORT DynamicEntity::GenericIf_ : public EntityWrapper<DynamicEntity, GenericIfEntity> {
  public:
    class GenericIf_Adapter_;

    GenericIf_(DynamicType& type, Qor::Ptr<Entity> const& entity, bool isConst);
    ~GenericIf_() override;

    QorType* fwkType() const override;
    void notifierIs(Qor::Ptr<PtrInterface const> const& notifier) override;
    using GenericIf::attributeOp;
    GenericIf::Ptr attributeOp(AttributeOp const& op, PtrConst const& key,
                               GenericIf::Ptr const& value) override;
    void handleNotification(ActivityConfig* config) override;

    AttributeIteratorConst attributeIteratorConst(AttributeId id) override;
    AttributeIteratorConst attributeIteratorKeyConst(AttributeId id, PtrConst const& key) override;
    AttributeIteratorConst attributeIteratorHashConst(AttributeId id, PtrConst const& key) override;
    using GenericIf::attributeIterator_iterObj;
    GenericIf::Ptr attributeIterator_iterObj(AttributeIteratorConst const& iterator) override;
    GenericIf::Ptr attributeIterator_iterInc(AttributeIteratorConst const& iterator) override;
    PtrConst attributeIterator_iterKey(AttributeIteratorConst const& iterator) override;
    AttributeIteratorConst attributeIterator_iterClone(
        AttributeIteratorConst const& iterator) override;
    bool attributeIterator_nonNull(AttributeIteratorConst const& iterator) override;
    GenericIf::Ptr attributeIterator_iterDel(AttributeIteratorConst const& iterator) override;

    virtual void onAttr(AttributeId id);
    virtual void onAttrKey(AttributeId id, DynamicKey const& key);

  private:
    DynamicScope scope(AttributeId id) const noexcept {
        return DynamicScope(type_, type_.attribute(id));
    }

    DynamicType& type_;
};

class DynamicEntity::GenericIf_::GenericIf_Adapter_ final
    : public ForwardingNotifiee<DynamicEntity::Notifiee, DynamicEntity::GenericIf_> {
  public:
    using ForwardingNotifiee::ForwardingNotifiee;

    void onAttr(AttributeId id) override;
    void onAttrKey(AttributeId id, DynamicKey const& key) override;
    void qorDropPendingKeys() override;
    PendingKey<DynamicKey>& pending(DynamicAttribute const& attribute);

  private:
    std::vector<PendingKey<DynamicKey>> pending_;
};

}  // namespace Qor

#endif
