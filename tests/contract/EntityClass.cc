#include "EntityClass.h"

#include <vgw/OvsdbDataTypesList.h>
#include <vgw/VgwTypesList.h>

#include "Accessed.h"

namespace Contract {
namespace {

// A plain pointer: an owning one of each class would take the compiler as long as the class.
template <class A>
Attribute* bare() {
    if constexpr (A::kind == Kind::scalar) {
        return new AccessedScalar<A>(A::id, A::name, A::kind);
    } else if constexpr (A::kind == Kind::constField) {
        return new AccessedConstField<A>(A::id, A::name, A::kind);
    } else if constexpr (A::kind == Kind::valueMap || A::kind == Kind::refMap) {
        return new AccessedMap<A>(A::id, A::name, A::kind);
    } else if constexpr (A::kind == Kind::childMap) {
        return new AccessedOwnedMap<A>(A::id, A::name, A::kind);
    } else if constexpr (A::kind == Kind::child) {
        return new AccessedChild<A>(A::id, A::name, A::kind);
    } else {
        return new Attribute(A::id, A::name, A::kind);
    }
}

template <class A>
std::unique_ptr<Attribute const> accessed() {
    std::unique_ptr<Attribute> attribute(bare<A>());
    attribute->ownerName = A::Entity::qorTypeName;
    if constexpr (A::kind == Kind::refMap || A::kind == Kind::childMap || A::kind == Kind::child) {
        attribute->valueType = A::Target::qorTypeName;
    } else if constexpr (A::kind != Kind::operation) {
        attribute->valueType = typeName<typename A::Value>();
    }
    if constexpr (A::isKeyed) {
        attribute->keyType = typeName<typename A::Key>();
    }
    if constexpr (A::kind != Kind::operation) {
        attribute->accessorKind = Accessors<A>::kind;
    }
    return attribute;
}

template <class X>
class Compiled final : public EntityClass {
  public:
    Compiled() {
        name = X::qorTypeName;
        root = X::NotifierRoot::qorTypeName;
        hasName = std::is_constructible_v<X, Qor::Name>;
        isOwnable = requires(X const& x) { x.fwkHmNext(); };
        if constexpr (std::is_same_v<typename X::QorBase, Qor::Entity>) {
            base = "Qor::Entity";
        } else {
            base = X::QorBase::qorTypeName;
        }
        X::QorAttributes::forEach([this]<class A>() { own.push_back(accessed<A>()); });
    }

    EntityPtr make(unsigned i) const override { return numbered<Qor::Ptr<X>>(i); }
    AnyRecorder record(EntityPtr const& entity, bool isWeak) const override {
        auto const recorder = Qor::make<Recorder<X>>(entity, isWeak);
        return {recorder, recorder.ptr()};
    }
    unsigned notifiees(Qor::Entity const& entity) const override {
        return static_cast<X const&>(entity).notifierList().count();
    }
    std::pair<std::string, EntityPtr> attachNotifiee(EntityPtr const& entity) const override {
        auto const notifiee = Qor::make<typename X::Notifiee>();
        notifiee->notifierIs(entity);
        Qor::Ptr<X> const notifier = notifiee->notifier();
        return {std::string(notifiee->name().view()), notifier};
    }
    int rowKind(Qor::Entity const& entity) const override {
        auto const* const row = dynamic_cast<Vgw::OvsdbDataModel const*>(&entity);
        return row ? static_cast<int>(row->type()) : -1;
    }
};

// Classes stand behind those above them in the models, so these are known already.
void complete(EntityClass& entityClass, std::vector<EntityClass const*> const& before) {
    for (EntityClass const* const candidate : before) {
        if (candidate->name == entityClass.base) {
            entityClass.above = candidate;
            entityClass.attributes = candidate->attributes;
        }
    }
    for (auto const& attribute : entityClass.own) {
        entityClass.attributes.push_back(attribute.get());
    }
}

}  // namespace

std::vector<EntityClass const*> const& entityClasses() {
    static std::vector<EntityClass const*> const all = [] {
        std::vector<EntityClass const*> classes;
        auto const enter = [&]<class X>() {
            static Compiled<X> entityClass;
            complete(entityClass, classes);
            classes.push_back(&entityClass);
        };
        Vgw::OvsdbDataTypesEntities::forEach(enter);
        Vgw::VgwTypesEntities::forEach(enter);
        return classes;
    }();
    return all;
}

}  // namespace Contract
