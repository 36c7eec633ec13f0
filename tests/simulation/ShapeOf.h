// Shapes of classes, from the lists of what their compiled adapters stream. `How` is how a process
// reaches what an entity holds: see Access.h.
#ifndef TESTS_SIMULATION_SHAPEOF_H
#define TESTS_SIMULATION_SHAPEOF_H

#include "Access.h"
#include "Shape.h"

#include <kelp/EthAddr.h>
#include <kelp/IpAddr.h>
#include <kelp/Vni.h>
#include <qor/model/EnumText.h>
#include <qor/model/ValueText.h>

#include <concepts>
#include <optional>
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

template <class X, class How>
Shape const& shapeOf();

template <class S, class How>
class ScalarField final : public Field {
  public:
    ScalarField() : Field(S::id, S::name, FieldKind::scalar) {}
    void show(Qor::Entity const& entity, Qor::Entity const& newborn,
              FieldReader& reader) const override {
        auto const text = shown(How::template value<S>(entity));
        if (text != initial(newborn)) reader.value({}, text);
    }
    std::string put(Qor::Entity& entity, unsigned, Fresh const& fresh) const override {
        auto const value = valueFrom<typename S::Value>(fresh);
        How::template valueIs<S>(entity, value);
        return shown(value);
    }
    std::string const& initial(Qor::Entity const& newborn) const override {
        if (!initial_) initial_ = shown(How::template value<S>(newborn));
        return *initial_;
    }

  private:
    // The same of every newborn, and asked for all the time.
    mutable std::optional<std::string> initial_;
};

template <class S, class How>
class KeyedField : public Field {
  public:
    using Field::Field;
    std::string keyText(unsigned key) const override {
        return shown(keyFrom<typename S::Key>(key));
    }
    void erase(Qor::Entity& entity, unsigned key) const override {
        How::template memberDel<S>(entity, keyFrom<typename S::Key>(key));
    }
};

template <class S, class How>
class ValuesField final : public KeyedField<S, How> {
  public:
    ValuesField()
        : KeyedField<S, How>(
              S::id, S::name,
              S::kind == Qor::StreamKind::flagMember ? FieldKind::flags : FieldKind::texts) {}
    void show(Qor::Entity const& entity, Qor::Entity const&, FieldReader& reader) const override {
        How::template forEachValue<S>(
            entity, [&](typename S::Key const& key, typename S::Value const& value) {
                reader.value(shown(key), shown(value));
            });
    }
    std::string put(Qor::Entity& entity, unsigned key, Fresh const& fresh) const override {
        auto const value = valueFrom<typename S::Value>(fresh);
        How::template memberIs<S>(entity, keyFrom<typename S::Key>(key), value);
        return shown(value);
    }
};

template <class S, class How>
class ReferenceField final : public KeyedField<S, How> {
  public:
    ReferenceField() : KeyedField<S, How>(S::id, S::name, FieldKind::references) {}
    void show(Qor::Entity const& entity, Qor::Entity const&, FieldReader& reader) const override {
        How::template forEachTarget<S>(entity,
                                       [&](typename S::Key const& key, EntityPtr const& target) {
                                           reader.reference(shown(key), target);
                                       });
    }
    bool mayRefer(Qor::Entity const& target) const override {
        return How::template mayRefer<S>(target);
    }
    void refer(Qor::Entity& entity, unsigned key, Qor::Entity& target) const override {
        How::template refer<S>(entity, keyFrom<typename S::Key>(key), target);
    }
};

template <class S, class How>
class ChildrenField final : public KeyedField<S, How> {
  public:
    ChildrenField() : KeyedField<S, How>(S::id, S::name, FieldKind::children) {}
    void show(Qor::Entity const& entity, Qor::Entity const&, FieldReader& reader) const override {
        How::template forEachChild<S>(
            entity, [&](typename S::Key const& key, EntityPtr const& child) {
                reader.owned(shown(key), child, shapeOf<typename S::Target, How>());
            });
    }
    EntityPtr own(Qor::Entity& entity, std::string const& child, unsigned) const override {
        return How::template childMemberIs<S>(entity, nameOf(child));
    }
    void disown(Qor::Entity& entity, std::string const& child) const override {
        How::template memberDel<S>(entity, nameOf(child));
    }
};

template <class S, class How>
class ChildField final : public Field {
  public:
    ChildField() : Field(S::id, S::name, FieldKind::child) {}
    void show(Qor::Entity const& entity, Qor::Entity const&, FieldReader& reader) const override {
        if (auto const child = How::template child<S>(entity)) {
            reader.owned(shown(child->qorName()), child, shapeOf<typename S::Target, How>());
        }
    }
    EntityPtr own(Qor::Entity& entity, std::string const& child, unsigned) const override {
        return How::template childIs<S>(entity, nameOf(child));
    }
    void disown(Qor::Entity& entity, std::string const&) const override {
        How::template childDel<S>(entity);
    }
};

// Not in a smart pointer of its own class: for so many those are a third of what the compiler does.
template <class S, class How>
Field const* newField() {
    if constexpr (S::id == Qor::isNondestructingId) {
        return nullptr;
    } else if constexpr (S::kind == Qor::StreamKind::scalar || S::kind == Qor::StreamKind::text) {
        return new ScalarField<S, How>;
    } else if constexpr (S::kind == Qor::StreamKind::reference) {
        return new ReferenceField<S, How>;
    } else if constexpr (S::kind == Qor::StreamKind::childMember) {
        return new ChildrenField<S, How>;
    } else if constexpr (S::kind == Qor::StreamKind::child) {
        return new ChildField<S, How>;
    } else {
        return new ValuesField<S, How>;
    }
}

template <class X, class How>
void addFields(std::vector<std::unique_ptr<Field const>>& fields) {
    if constexpr (!std::is_same_v<typename X::QorBase, Qor::Entity>) {
        addFields<typename X::QorBase, How>(fields);
    }
    X::QorNboAttrLogSa::QorStreamed::forEach([&]<class S>() {
        if (Field const* const field = newField<S, How>()) fields.emplace_back(field);
    });
}

template <class X, class How>
class ClassShape final : public Shape {
  public:
    ClassShape() {
        name = X::qorTypeName;
        knowledge = How::first;
        addFields<X, How>(fields);
    }
    std::string title(Qor::Entity const& entity) const override {
        std::string result = How::className(entity);
        X::QorAttributes::forEach([&]<class A>() {
            if constexpr (A::kind == Qor::AttributeKind::constField) {
                result += " " + shown(How::template constant<X, A>(entity));
            }
        });
        return result;
    }
    EntityPtr make(Knowledge by, std::string const& text) const override {
        if constexpr (std::is_constructible_v<X, Qor::Name>) {
            return How::template make<X>(by, nameOf(text));
        } else {
            // What has no name is built from an address.
            return How::template make<X>(by, valueFrom<Kelp::EthAddr>({text.size(), {}}));
        }
    }
};

template <class X, class How>
Shape const& shapeOf() {
    static ClassShape<X, How> const shape;
    return shape;
}

template <class X>
Shape const& shapeOf(Knowledge knowledge) {
    return knowledge == Knowledge::compiled ? shapeOf<X, Compiled>() : shapeOf<X, Described>();
}

}  // namespace Sim

#endif
