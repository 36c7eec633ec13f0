// Values of every type that an attribute, a key or a field can have.
#ifndef TESTS_CONTRACT_SAMPLES_H
#define TESTS_CONTRACT_SAMPLES_H

#include <algorithm>
#include <concepts>
#include <limits>
#include <string>
#include <type_traits>
#include <vector>

#include <kelp/EthAddr.h>
#include <kelp/IpAddr.h>
#include <kelp/Vni.h>
#include <qor/core/Name.h>
#include <qor/core/Ptr.h>
#include <qor/model/EnumText.h>
#include <qor/model/ValueText.h>

namespace Contract {

template <class T>
struct Numbered;

/// The i-th value of a type. Different numbers below 100 give different values, as far as the type
/// has so many.
template <class T>
T numbered(unsigned i) {
    return Numbered<T>::value(i);
}

template <std::integral T>
struct Numbered<T> {
    static T value(unsigned i) { return static_cast<T>(i * 37 + 1); }
};

template <>
struct Numbered<bool> {
    static bool value(unsigned i) { return i % 2 == 0; }
};

template <>
struct Numbered<double> {
    static double value(unsigned i) { return 0.25 * (i + 1); }
};

template <class T>
requires std::is_enum_v<T>
struct Numbered<T> {
    static T value(unsigned i) { return static_cast<T>(i % Qor::EnumTable<T>::names.size()); }
};

template <std::derived_from<Qor::String8> T>
struct Numbered<T> {
    static T value(unsigned i) { return T(std::string_view("text " + std::to_string(i))); }
};

template <>
struct Numbered<Kelp::IpAddr> {
    static Kelp::IpAddr value(unsigned i) { return Kelp::IpAddr::fromHostOrder(0xC0000200 + i); }
};

template <>
struct Numbered<Kelp::EthAddr> {
    static Kelp::EthAddr value(unsigned i) { return Kelp::EthAddr::fromNumber(0x00005E005300 + i); }
};

template <>
struct Numbered<Vxlan::Vni> {
    static Vxlan::Vni value(unsigned i) { return Vxlan::Vni(5000 + i); }
};

template <class V, class Fields>
struct NumberedFields;

template <class V, class... F>
struct NumberedFields<V, Qor::FieldList<F...>> {
    static V value(unsigned i) { return V(numbered<typename F::Type>(i)...); }
};

template <class V>
requires requires { typename V::QorFields; }
struct Numbered<V> : NumberedFields<V, typename V::QorFields> {};

// An entity that is built from a name, or from whatever else its class is built from.
template <class X>
requires std::derived_from<X, Qor::Entity>
struct Numbered<Qor::Ptr<X>> {
    static Qor::Ptr<X> value(unsigned i) {
        if constexpr (std::is_constructible_v<X, Qor::Name>) {
            return Qor::make<X>(numbered<Qor::Name>(i));
        } else {
            return Qor::make<X>(numbered<Kelp::EthAddr>(i));
        }
    }
};

/// The values of a type at which mistakes show: the greatest, the least, halves that differ alone.
template <class T>
std::vector<T> extremes() {
    return {};
}

template <class T>
requires(std::integral<T> && !std::same_as<T, bool>) std::vector<T> extremes() {
    constexpr T half = static_cast<T>(T{1} << (4 * sizeof(T)));
    return {0, std::numeric_limits<T>::max(), half, static_cast<T>(half + 1), 1};
}

template <std::same_as<double> T>
std::vector<T> extremes() {
    return {0.0, -1.5, std::numeric_limits<double>::max(), std::numeric_limits<double>::infinity()};
}

template <std::derived_from<Qor::String8> T>
std::vector<T> extremes() {
    using namespace std::string_view_literals;
    return {T(),         T("a"),         T("a\0b"sv),
            T("a\0c"sv), T("'\\\n\xff"), T(std::string_view(std::string(5000, 'x')))};
}

template <std::same_as<Kelp::IpAddr> T>
std::vector<T> extremes() {
    return {T(), T::fromHostOrder(0xFFFFFFFF), T::fromHostOrder(1), T::fromHostOrder(0x01000000)};
}

template <std::same_as<Kelp::EthAddr> T>
std::vector<T> extremes() {
    return {T(), T::fromNumber(0xFFFFFFFFFFFF), T::fromNumber(1), T::fromNumber(0x010000000000)};
}

template <std::same_as<Vxlan::Vni> T>
std::vector<T> extremes() {
    return {T(), T(T::max), T(1)};
}

/// Some values of the type, each different from the one before it.
template <class T>
std::vector<T> samples() {
    std::vector<T> all = extremes<T>();
    for (unsigned i = 0; i < 5; ++i) {
        if (all.empty() || !(all.back() == numbered<T>(i))) {
            all.push_back(numbered<T>(i));
        }
    }
    return all;
}

/// Different values, for keys.
template <class T>
std::vector<T> distinctSamples(unsigned count) {
    std::vector<T> all = extremes<T>();
    for (unsigned i = 0; i < count; ++i) {
        T const value = numbered<T>(i);
        if (std::find(all.begin(), all.end(), value) == all.end()) {
            all.push_back(value);
        }
    }
    return all;
}

/// A value of the type that is not `value`.
template <class T>
T another(T const& value) {
    for (unsigned i = 0;; ++i) {
        if (T const other = numbered<T>(i); !(other == value)) {
            return other;
        }
    }
}

}  // namespace Contract

#endif
