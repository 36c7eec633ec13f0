// The two ways to what an entity holds. Both take the descriptor S of a streamed attribute of the
// compiled class, or A of a constant one, and talk in its C++ types. `Compiled` uses the class;
// `Described` the id alone, by the generic interface of an entity whose class was described.
#ifndef TESTS_SIMULATION_ACCESS_H
#define TESTS_SIMULATION_ACCESS_H

#include "Shape.h"

#include <qor/attrlog/family/MakeAdapter.h>
#include <qor/core/Strep.h>
#include <qor/generic/GenericIf.h>
#include <qor/generic/GenericList.h>
#include <qor/generic/Wrap.h>
#include <qor/model/EnumText.h>
#include <qor/model/ValueText.h>

#include <type_traits>

namespace Sim {

struct Compiled {
    template <class X>
    static X const& as(Qor::Entity const& entity) {
        return static_cast<X const&>(entity);
    }
    template <class X>
    static X& as(Qor::Entity& entity) {
        return static_cast<X&>(entity);
    }

    static std::string className(Qor::Entity const& entity) {
        return std::string(entity.fwkType()->fullName().view());
    }
    static constexpr Knowledge first = Knowledge::compiled;
    template <class X, class Argument>
    static EntityPtr make(Knowledge, Argument const& argument) {
        return Qor::make<X>(argument);
    }
    template <class X, class A>
    static decltype(auto) constant(Qor::Entity const& entity) {
        return A::field(as<X>(entity));
    }

    template <class S>
    static typename S::Value value(Qor::Entity const& entity) {
        return S::get(as<typename S::Entity>(entity));
    }
    template <class S>
    static void valueIs(Qor::Entity& entity, typename S::Value const& value) {
        S::set(as<typename S::Entity>(entity), value);
    }

    template <class S, class Visit>
    static void forEachMember(Qor::Entity const& entity, Visit const& visit) {
        auto const& owner = as<typename S::Entity>(entity);
        for (typename S::Attr::Map::IteratorConst at(&S::Attr::map(owner)); at; ++at) {
            visit(at.key(), *at.member());
        }
    }
    template <class S, class Visit>
    static void forEachValue(Qor::Entity const& entity, Visit const& visit) {
        forEachMember<S>(entity, [&](auto const& key, typename S::Member const& member) {
            visit(key, S::Attr::valueOf(member));
        });
    }
    template <class S, class Visit>
    static void forEachTarget(Qor::Entity const& entity, Visit const& visit) {
        forEachMember<S>(entity, [&](auto const& key, typename S::Member const& member) {
            visit(key, EntityPtr(S::Attr::valueOf(member)));
        });
    }
    template <class S, class Visit>
    static void forEachChild(Qor::Entity const& entity, Visit const& visit) {
        auto const& owner = as<typename S::Entity>(entity);
        for (typename S::Attr::Map::IteratorConst at(&S::Attr::map(owner)); at; ++at) {
            visit(at.key(), EntityPtr(at.member()));
        }
    }
    template <class S>
    static void memberIs(Qor::Entity& entity, typename S::Key const& key,
                         typename S::Value const& value) {
        S::set(as<typename S::Entity>(entity), key, value);
    }
    template <class S>
    static void memberDel(Qor::Entity& entity, typename S::Key const& key) {
        S::del(as<typename S::Entity>(entity), key);
    }

    template <class S>
    static bool mayRefer(Qor::Entity const& target) {
        return dynamic_cast<typename S::Target const*>(&target) != nullptr;
    }
    template <class S>
    static void refer(Qor::Entity& entity, typename S::Key const& key, Qor::Entity& target) {
        using Target = typename S::Target;
        S::set(as<typename S::Entity>(entity), key, Qor::Ptr<Target>(&as<Target>(target)));
    }

    template <class S>
    static EntityPtr childMemberIs(Qor::Entity& entity, Qor::Name const& name) {
        auto& owner = as<typename S::Entity>(entity);
        S::set(owner, name);
        return EntityPtr(S::Attr::map(owner).member(name));
    }
    template <class S>
    static EntityPtr child(Qor::Entity const& entity) {
        return EntityPtr(S::get(as<typename S::Entity>(entity)));
    }
    template <class S>
    static EntityPtr childIs(Qor::Entity& entity, Qor::Name const& name) {
        S::set(as<typename S::Entity>(entity), name);
        return child<S>(entity);
    }
    template <class S>
    static void childDel(Qor::Entity& entity) {
        S::del(as<typename S::Entity>(entity));
    }
};

class Described {
  public:
    static std::string className(Qor::Entity const& entity) {
        return compiledNames(std::string(entity.fwkType()->fullName().view()));
    }
    static constexpr Knowledge first = Knowledge::described;
    template <class X, class Argument>
    static EntityPtr make(Knowledge knowledge, Argument const& argument) {
        return made(namesFor(knowledge, X::qorTypeName), Qor::wrapped(argument, false));
    }
    template <class X, class A>
    static auto constant(Qor::Entity const& entity) {
        using Value = std::remove_cvref_t<decltype(A::field(std::declval<X const&>()))>;
        return plain<Value>(*got(entity, A::id));
    }

    template <class S>
    static typename S::Value value(Qor::Entity const& entity) {
        return plain<typename S::Value>(*got(entity, S::id));
    }
    template <class S>
    static void valueIs(Qor::Entity& entity, typename S::Value const& value) {
        set(entity, S::id, nullptr, wrapped(valueType(entity, S::id), value));
    }

    template <class S, class Visit>
    static void forEachValue(Qor::Entity const& entity, Visit const& visit) {
        forEach<S>(entity, [&](auto const& key, Wrapper const& value) {
            visit(key, plain<typename S::Value>(*value));
        });
    }
    template <class S, class Visit>
    static void forEachTarget(Qor::Entity const& entity, Visit const& visit) {
        forEach<S>(entity,
                   [&](auto const& key, Wrapper const& value) { visit(key, value->entity()); });
    }
    template <class S, class Visit>
    static void forEachChild(Qor::Entity const& entity, Visit const& visit) {
        forEachTarget<S>(entity, visit);
    }
    template <class S>
    static void memberIs(Qor::Entity& entity, typename S::Key const& key,
                         typename S::Value const& value) {
        set(entity, S::id, keyOf<S>(entity, key), wrapped(valueType(entity, S::id), value));
    }
    template <class S>
    static void memberDel(Qor::Entity& entity, typename S::Key const& key) {
        del(entity, S::id, keyOf<S>(entity, key));
    }

    template <class S>
    static bool mayRefer(Qor::Entity const& target) {
        return isA(target, S::Target::qorTypeName);
    }
    template <class S>
    static void refer(Qor::Entity& entity, typename S::Key const& key, Qor::Entity& target) {
        set(entity, S::id, keyOf<S>(entity, key), wrapper(target));
    }

    template <class S>
    static EntityPtr childMemberIs(Qor::Entity& entity, Qor::Name const& name) {
        set(entity, S::id, nullptr, listOf(Qor::wrapped(name, false)));
        return got(entity, S::id, Qor::wrapped(name, false))->entity();
    }
    template <class S>
    static EntityPtr child(Qor::Entity const& entity) {
        return got(entity, S::id)->entity();
    }
    template <class S>
    static EntityPtr childIs(Qor::Entity& entity, Qor::Name const& name) {
        set(entity, S::id, nullptr, listOf(Qor::wrapped(name, false)));
        return child<S>(entity);
    }
    template <class S>
    static void childDel(Qor::Entity& entity) {
        del(entity, S::id, nullptr);
    }

  private:
    using Wrapper = Qor::GenericIf::Ptr;

    static Wrapper wrapper(Qor::Entity const& entity);
    static Wrapper got(Qor::Entity const& entity, Qor::AttributeId id,
                       Wrapper const& key = nullptr);
    static void set(Qor::Entity& entity, Qor::AttributeId id, Wrapper const& key,
                    Wrapper const& value);
    static void del(Qor::Entity& entity, Qor::AttributeId id, Wrapper const& key);
    static Wrapper listOf(Wrapper const& argument);
    static EntityPtr made(std::string const& fullName, Wrapper const& argument);
    static bool isA(Qor::Entity const& entity, std::string_view compiledName);
    static Qor::QorType& valueType(Qor::Entity const& entity, Qor::AttributeId id);
    static Qor::QorType& keyType(Qor::Entity const& entity, Qor::AttributeId id);

    // Enumerations and composite values are described as classes are, and go as texts.
    template <class T>
    static T plain(Qor::GenericIf const& wrapper) {
        if constexpr (std::is_enum_v<T> || requires { typename T::QorFields; }) {
            auto const text = compiledNames(std::string(wrapper.strRep().view()));
            return Qor::strepToValue<T>(Qor::String8(std::string_view(text)));
        } else {
            return Qor::unwrapped<T>(wrapper);
        }
    }
    template <class T>
    static Wrapper wrapped(Qor::QorType& type, T const& value) {
        if constexpr (std::is_enum_v<T> || requires { typename T::QorFields; }) {
            using Qor::valueToStrep;
            auto const text =
                namesLike(type.fullName().view(), std::string(valueToStrep(value).view()));
            return type.genericIfFromStrep(Qor::String8(std::string_view(text)), false);
        } else {
            return Qor::wrapped(value, false);
        }
    }
    template <class S>
    static Wrapper keyOf(Qor::Entity const& entity, typename S::Key const& key) {
        return wrapped(keyType(entity, S::id), key);
    }
    template <class S, class Visit>
    static void forEach(Qor::Entity const& entity, Visit const& visit) {
        for (auto at = wrapper(entity)->attributeIteratorConst(S::id); at; ++at) {
            visit(plain<typename S::Key>(*at.key()), at.value());
        }
    }
};

}  // namespace Sim

#endif
