// Shapes of compiled classes, from the lists of what their adapters stream.
#ifndef TESTS_SIMULATION_SHAPEOF_H
#define TESTS_SIMULATION_SHAPEOF_H

#include "Shape.h"

#include <kelp/EthAddr.h>
#include <kelp/IpAddr.h>
#include <kelp/Vni.h>
#include <qor/attrlog/family/MakeAdapter.h>
#include <qor/core/Strep.h>
#include <qor/model/EnumText.h>
#include <qor/model/ValueText.h>

#include <concepts>
#include <type_traits>

namespace Sim {

template <class T>
T valueFrom(Fresh const& fresh);

template <class V, class... F>
V composite(Fresh const& fresh, Qor::FieldList<F...>) {
    return V(valueFrom<typename F::Type>(fresh)...);
}

template <class T>
T valueFrom(Fresh const& fresh) {
    if constexpr (std::is_same_v<T, bool>) {
        return fresh.number % 2 == 0;
    } else if constexpr (std::is_enum_v<T>) {
        return static_cast<T>(fresh.number % Qor::EnumTable<T>::names.size());
    } else if constexpr (std::is_arithmetic_v<T>) {
        return static_cast<T>(fresh.number);
    } else if constexpr (std::is_same_v<T, Kelp::IpAddr>) {
        return Kelp::IpAddr::fromHostOrder(0xC0000200 + static_cast<Qor::U32>(fresh.number % 250));
    } else if constexpr (std::is_same_v<T, Kelp::EthAddr>) {
        return Kelp::EthAddr::fromNumber(0x00005E005300 + fresh.number % 250);
    } else if constexpr (std::is_same_v<T, Vxlan::Vni>) {
        return Vxlan::Vni(static_cast<Qor::U32>(fresh.number % 0xFFFFFF));
    } else if constexpr (std::is_convertible_v<T, Qor::String8>) {
        return T(std::string_view(fresh.text));
    } else {
        return composite<T>(fresh, typename T::QorFields());
    }
}

template <class T>
std::string shown(T const& value) {
    if constexpr (std::is_same_v<T, bool>) {
        return value ? "true" : "false";
    } else if constexpr (std::is_enum_v<T>) {
        return "enumerator " + std::to_string(static_cast<int>(value));
    } else if constexpr (std::is_arithmetic_v<T>) {
        auto const text = std::to_string(static_cast<std::uint64_t>(value));
        return sizeof(T) >= 4 ? "#" + text + "." : text;
    } else if constexpr (std::is_convertible_v<T, Qor::String8>) {
        return std::string(value.view());
    } else {
        using Qor::valueToStrep;
        return std::string(valueToStrep(value).view());
    }
}

template <class K>
K keyFrom(unsigned number) {
    return valueFrom<K>({number * 37 + 1, "k" + std::to_string(number)});
}

template <class S>
typename S::Entity const& as(Qor::Entity const& entity) {
    return static_cast<typename S::Entity const&>(entity);
}
template <class S>
typename S::Entity& as(Qor::Entity& entity) {
    return static_cast<typename S::Entity&>(entity);
}

template <class X>
Shape const& shapeOf();

template <class S>
class ScalarField final : public Field {
  public:
    ScalarField() : Field(S::id, S::name, FieldKind::scalar) {}
    void show(Qor::Entity const& entity, Qor::Entity const& newborn,
              FieldReader& reader) const override {
        auto const text = shown(S::get(as<S>(entity)));
        if (text != initial(newborn)) reader.value({}, text);
    }
    std::string put(Qor::Entity& entity, unsigned, Fresh const& fresh) const override {
        auto const value = valueFrom<typename S::Value>(fresh);
        S::set(as<S>(entity), value);
        return shown(value);
    }
    std::string initial(Qor::Entity const& newborn) const override {
        return shown(S::get(as<S>(newborn)));
    }
};

template <class S, class Base = Field>
class KeyedField : public Base {
  public:
    using Base::Base;
    std::string keyText(unsigned key) const override {
        return shown(keyFrom<typename S::Key>(key));
    }
    void erase(Qor::Entity& entity, unsigned key) const override {
        S::del(as<S>(entity), keyFrom<typename S::Key>(key));
    }

  protected:
    template <class Visit>
    void forEach(Qor::Entity const& entity, Visit const& visit) const {
        for (typename S::Attr::Map::IteratorConst at(&S::Attr::map(as<S>(entity))); at; ++at) {
            visit(shown(at.key()), *at.member());
        }
    }
};

template <class S>
class ValuesField final : public KeyedField<S> {
  public:
    ValuesField()
        : KeyedField<S>(
              S::id, S::name,
              S::kind == Qor::StreamKind::flagMember ? FieldKind::flags : FieldKind::texts) {}
    void show(Qor::Entity const& entity, Qor::Entity const&, FieldReader& reader) const override {
        this->forEach(entity, [&](std::string const& key, typename S::Member const& member) {
            reader.value(key, shown<typename S::Value>(S::Attr::valueOf(member)));
        });
    }
    std::string put(Qor::Entity& entity, unsigned key, Fresh const& fresh) const override {
        auto const value = valueFrom<typename S::Value>(fresh);
        S::set(as<S>(entity), keyFrom<typename S::Key>(key), value);
        return shown(value);
    }
};

template <class S>
class ReferenceField final : public KeyedField<S> {
  public:
    ReferenceField() : KeyedField<S>(S::id, S::name, FieldKind::references) {}
    void show(Qor::Entity const& entity, Qor::Entity const&, FieldReader& reader) const override {
        this->forEach(entity, [&](std::string const& key, typename S::Member const& member) {
            reader.reference(key, EntityPtr(S::Attr::valueOf(member)));
        });
    }
    bool mayRefer(Qor::Entity const& target) const override {
        return dynamic_cast<typename S::Target const*>(&target) != nullptr;
    }
    void refer(Qor::Entity& entity, unsigned key, Qor::Entity& target) const override {
        using Target = typename S::Target;
        S::set(as<S>(entity), keyFrom<typename S::Key>(key),
               Qor::Ptr<Target>(&static_cast<Target&>(target)));
    }
};

template <class S>
class ChildrenField final : public KeyedField<S> {
  public:
    ChildrenField() : KeyedField<S>(S::id, S::name, FieldKind::children) {}
    void show(Qor::Entity const& entity, Qor::Entity const&, FieldReader& reader) const override {
        for (typename S::Attr::Map::IteratorConst at(&S::Attr::map(as<S>(entity))); at; ++at) {
            EntityPtr const child(at.member());
            reader.owned(shown(at.key()), child, shapeOf<typename S::Target>());
        }
    }
    EntityPtr own(Qor::Entity& entity, std::string const& child, unsigned) const override {
        S::set(as<S>(entity), nameOf(child));
        return EntityPtr(S::Attr::map(as<S>(entity)).member(nameOf(child)));
    }
    void disown(Qor::Entity& entity, std::string const& child) const override {
        S::del(as<S>(entity), nameOf(child));
    }
};

template <class S>
class ChildField final : public Field {
  public:
    ChildField() : Field(S::id, S::name, FieldKind::child) {}
    void show(Qor::Entity const& entity, Qor::Entity const&, FieldReader& reader) const override {
        if (auto const& child = S::get(as<S>(entity))) {
            reader.owned(shown(child->name()), EntityPtr(child), shapeOf<typename S::Target>());
        }
    }
    EntityPtr own(Qor::Entity& entity, std::string const& child, unsigned) const override {
        S::set(as<S>(entity), nameOf(child));
        return EntityPtr(S::get(as<S>(entity)));
    }
    void disown(Qor::Entity& entity, std::string const&) const override { S::del(as<S>(entity)); }
};

template <class S>
std::unique_ptr<Field const> fieldOf() {
    if constexpr (S::id == Qor::isNondestructingId) {
        return nullptr;
    } else if constexpr (S::kind == Qor::StreamKind::scalar || S::kind == Qor::StreamKind::text) {
        return std::make_unique<ScalarField<S>>();
    } else if constexpr (S::kind == Qor::StreamKind::reference) {
        return std::make_unique<ReferenceField<S>>();
    } else if constexpr (S::kind == Qor::StreamKind::childMember) {
        return std::make_unique<ChildrenField<S>>();
    } else if constexpr (S::kind == Qor::StreamKind::child) {
        return std::make_unique<ChildField<S>>();
    } else {
        return std::make_unique<ValuesField<S>>();
    }
}

template <class X>
void addFields(std::vector<std::unique_ptr<Field const>>& fields) {
    if constexpr (!std::is_same_v<typename X::QorBase, Qor::Entity>) {
        addFields<typename X::QorBase>(fields);
    }
    X::QorNboAttrLogSa::QorStreamed::forEach([&]<class S>() {
        if (auto field = fieldOf<S>()) fields.push_back(std::move(field));
    });
}

template <class X>
class CompiledShape final : public Shape {
  public:
    CompiledShape() {
        name = X::qorTypeName;
        addFields<X>(fields);
    }
    std::string title(Qor::Entity const& entity) const override {
        std::string result = name;
        X::QorAttributes::forEach([&]<class A>() {
            if constexpr (A::kind == Qor::AttributeKind::constField) {
                result += " " + shown(A::field(static_cast<X const&>(entity)));
            }
        });
        return result;
    }
    EntityPtr make(std::string const& text) const override {
        if constexpr (std::is_constructible_v<X, Qor::Name>) {
            return Qor::make<X>(nameOf(text));
        } else {
            // What has no name is built from an address.
            return Qor::make<X>(valueFrom<Kelp::EthAddr>({text.size(), {}}));
        }
    }
};

template <class X>
Shape const& shapeOf() {
    static CompiledShape<X> const shape;
    return shape;
}

}  // namespace Sim

#endif
