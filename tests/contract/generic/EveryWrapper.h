// The fixture of the suites over the wrappers of all entity classes: two entities that start alike,
// one for the generic interface and one for compiled code. What holds afterwards, and what was told
// on the way, must be the same.
//
// The samples' texts are the only road from a sample to a generic value, as for a tool that knows
// no class.
#ifndef TESTS_CONTRACT_GENERIC_EVERY_WRAPPER_H
#define TESTS_CONTRACT_GENERIC_EVERY_WRAPPER_H

#include <qor/generic/GenericException.h>
#include <qor/generic/GenericList.h>

#include "EveryClass.h"

namespace Contract {

using Wrapper = Qor::GenericIf::Ptr;
using WrapperConst = Qor::GenericIf::PtrConst;
using OpId = Qor::GenericIf::AttributeOp::OpId;
using Iterator = Qor::GenericIf::AttributeIteratorConst;

/// A wrapper over an entity, by the record of its class.
inline Wrapper wrapperOf(EntityPtr const& entity, bool isConst = false) {
    return entity->fwkType()->genericIf_(entity.ptr(), isConst);
}

/// A value by its type's full name and its text.
inline Wrapper valueOf(char const* type, std::string const& text) {
    return Qor::QorType::type(type)->genericIfFromStrep(text.c_str(), false);
}

/// A list of arguments.
inline Wrapper listOf(std::initializer_list<Wrapper> arguments) {
    return Qor::make<Qor::GenericIf::List_>(Qor::GenericIf::List::Queue(arguments));
}

/// What a wrapper wraps, as the samples tell it.
inline std::string wrappedText(Qor::GenericIf const* wrapper) {
    if (!wrapper) {
        return "no result";
    }
    return wrapper->fwkType()->isEntity() ? textOf(wrapper->entityConst())
                                          : std::string(wrapper->strRep().view());
}

class EveryWrapper : public EveryClass {
  protected:
    EntityPtr const twin_ = class_.make();
    AnyRecorder const twinRecorder_ = class_.record(twin_);
    Wrapper const wrapper_ = wrapperOf(entity_);
    Wrapper const twinWrapper_ = wrapperOf(twin_);

    Qor::QorType& type() const { return *wrapper_->fwkType(); }

    Wrapper op(Attribute const& a, OpId id, WrapperConst const& key = nullptr,
               Wrapper const& value = nullptr) const {
        return wrapper_->attributeOp({a.id, id}, key, value);
    }
    std::string read(Attribute const& a, WrapperConst const& key = nullptr) const {
        return wrappedText(op(a, OpId::opGet, key).ptr());
    }
    std::string read(Attribute const& a, OpId id, WrapperConst const& key = nullptr) const {
        return wrappedText(op(a, id, key).ptr());
    }
    Wrapper value(Attribute const& a, std::string const& text) const {
        return type().attr(a.id)->valueType()->genericIfFromStrep(text.c_str(), false);
    }
    /// The i-th sample of a keyed attribute's value: a text's value, or the entity referred to.
    Wrapper value(Mapped const& a, unsigned i) const {
        auto const target = a.target(i);
        return target ? wrapperOf(target) : value(a, a.value(i));
    }
    Wrapper key(Keyed const& a, unsigned i) const {
        return type().attr(a.id)->keyType()->genericIfFromStrep(a.key(i).c_str(), false);
    }
    /// The i-th name of a single child.
    static Wrapper nameValue(unsigned i) {
        return valueOf("Qor::Name", "'text " + std::to_string(i) + "'");
    }

    /// The same was told on both sides.
    void expectToldAlike() const { EXPECT_EQ(take(), twinRecorder_.take()); }
    /// Both doors have led to the same.
    void expectAlike() const {
        for (Attribute const* const attribute : class_.attributes) {
            EXPECT_TRUE(attribute->held(*entity_) == attribute->held(*twin_)) << attribute->name;
        }
        expectToldAlike();
    }
    /// Fills a collection of any kind with every `step`-th sample key, on both sides.
    void fill(Keyed const& a, unsigned step) const {
        for (unsigned i = 0; i < a.keys(); i += step) {
            if (auto const* const mapped = dynamic_cast<Mapped const*>(&a)) {
                mapped->set(*entity_, i, i % 2);
                mapped->set(*twin_, i, i % 2);
            } else {
                dynamic_cast<OwnedMap const&>(a).set(*entity_, i);
                dynamic_cast<OwnedMap const&>(a).set(*twin_, i);
            }
        }
        expectAlike();
    }
};

/// What a call of what stands at an address raised.
inline std::string raisedBy(void (*call)(void const*), void const* called) {
    try {
        call(called);
    } catch (Qor::ConstException const& e) {
        return "const " + std::string(e.subject().view());
    } catch (Qor::TypeException const& e) {
        return "type " + std::string(e.subject().view());
    } catch (Qor::BadIndexAttrException const& e) {
        return "no key " + std::string(e.subject().view());
    } catch (Qor::UnknownAttrException const& e) {
        return "unknown attribute " + std::string(e.subject().view());
    } catch (Qor::UnknownArgException const& e) {
        return "surplus " + std::string(e.subject().view());
    } catch (Qor::OpNotSupportedException const& e) {
        return "operation " + std::to_string(e.opId()) + " of " + std::string(e.subject().view());
    } catch (Qor::RangeException const& e) {
        return "range " + std::string(e.what());
    }
    return "nothing";
}

/// What a call raised: the sort of the failure and the name in it, or "nothing".
template <class Call>
std::string raised(Call const& call) {
    return raisedBy([](void const* called) { (*static_cast<Call const*>(called))(); }, &call);
}

}  // namespace Contract

#endif
