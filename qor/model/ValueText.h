// The text and wire forms of every composite value, from the descriptors of its fields. A field's
// descriptor has `name`, `Type` and `field(value)`; the list of them, in order, is V::QorFields,
// the full name of the type V::qorTypeName, the last part of it V::qorShortName. A value with a
// hash has the list of the fields that it is made of, in their order there, as V::QorHashed.
//
//   Value('Vgw::MacVniPair', ** {'mac': '00:00:5e:00:53:01', 'vni': 5000})
#ifndef QOR_MODEL_VALUE_TEXT_H
#define QOR_MODEL_VALUE_TEXT_H

#include <qor/attrlog/NboAttrLogIn.h>
#include <qor/attrlog/NboAttrLogOut.h>
#include <qor/attrlog/PlainForm.h>
#include <qor/core/Strep.h>
#include <qor/model/EnumText.h>

namespace Qor {

/// The fields of a value, in order.
template <class... F>
struct FieldList {
    static constexpr std::size_t size = sizeof...(F);
    template <class Visit>
    static constexpr void forEach(Visit&& visit) {
        (visit.template operator()<F>(), ...);
    }
    /// The place of a field in the list.
    template <class Wanted>
    static constexpr U32 indexOf() noexcept {
        U32 index = 0;
        static_cast<void>(((std::is_same_v<F, Wanted> ? true : (++index, false)) || ...));
        return index;
    }
};

/// Field by field in the written form; a value without fields prints as the empty text.
template <class V>
String8 valueStrep(V const& value) {
    if constexpr (V::QorFields::size == 0) {
        return {};
    } else {
        String8 text = String8("Value('") + V::qorTypeName + "', ** {";
        char const* between = "'";
        V::QorFields::forEach([&]<class F>() {
            text += between;
            text += F::name;
            text += "': ";
            text += valueToStrep(F::field(value));
            between = ", '";
        });
        text += "})";
        return text;
    }
}

// Goes over what stands in front of the fields.
QOR_EXPORT void needValueHead(String8::IteratorConst& position, String8::IteratorConst const& end,
                              char const* typeName);
// Goes to the next field and reads its name, or over the end of the value: then false.
QOR_EXPORT bool nextFieldName(String8::IteratorConst& position, String8::IteratorConst const& end,
                              char const* shortName, bool first, String8& name);
[[noreturn]] QOR_EXPORT void throwNoSuchField(char const* shortName, String8 const& name);

/// Reads the fields of `value`, which holds its defaults, from the text form. Fields may stand in
/// any order, be repeated (the last one wins) and be left out.
template <class V>
void parseValue(V& value, String8::IteratorConst& position, String8::IteratorConst const& end) {
    needValueHead(position, end, V::qorTypeName);
    String8 name;
    for (bool first = true; nextFieldName(position, end, V::qorShortName, first, name);
         first = false) {
        bool found = false;
        V::QorFields::forEach([&]<class F>() {
            if (!found && name.view() == F::name) {
                F::field(value) = deserializeAttr<typename F::Type>(position, end, name);
                found = true;
            }
        });
        if (!found) {
            throwNoSuchField(V::qorShortName, name);
        }
    }
}

/// Writes the fields in order; an enumeration as a signed 32-bit integer.
template <class V>
void writeValue(Ptr<NboAttrLog::Out> const& out, V const& value) {
    V::QorFields::forEach([&]<class F>() {
        if constexpr (std::is_enum_v<typename F::Type>) {
            out << static_cast<int>(F::field(value));
        } else {
            out << F::field(value);
        }
    });
}

/// Whether each field takes always the same number of bytes on the wire, and how many all do.
template <class List>
struct PlainFields {
    static constexpr bool areAll = false;
};
template <class... F>
requires(NboAttrLog::HasPlainForm<typename F::Type>&&...) struct PlainFields<FieldList<F...>> {
    static constexpr bool areAll = true;
    static constexpr std::size_t size = (NboAttrLog::PlainForm<typename F::Type>::size + ... + 0);
};

template <class V>
requires PlainFields<typename V::QorFields>::areAll struct NboAttrLog::PlainForm<V> {
    static constexpr std::size_t size = PlainFields<typename V::QorFields>::size;
    static void store(unsigned char* at, V const& value) noexcept {
        V::QorFields::forEach(
            [&]<class F>() { at = NboAttrLog::storeOnWire(at, F::field(value)); });
    }
};

/// Reads the fields in order. What no field can hold raises a range exception.
template <class V>
void readValue(V& value, NboAttrLog::In* in) {
    V::QorFields::forEach([&]<class F>() {
        if constexpr (std::is_enum_v<typename F::Type>) {
            F::field(value) = enumInstance<typename F::Type>(in->nextU32());
        } else {
            F::field(value) = NboAttrLog::nextValue<typename F::Type>(*in);
        }
    });
}

}  // namespace Qor

#endif
