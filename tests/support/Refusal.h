// The words of the range exception that a call raises.
#ifndef TESTS_SUPPORT_REFUSAL_H
#define TESTS_SUPPORT_REFUSAL_H

#include <qor/core/Exception.h>

#include <string>
#include <string_view>

template <class Call>
std::string refusal(Call const& call) {
    try {
        call();
    } catch (Qor::RangeException const& exception) {
        return exception.what();
    }
    return "not refused";
}

/// Of a text that is to be a value.
template <class Value>
std::string textRefusal(std::string_view text) {
    return refusal([&] { static_cast<void>(Value(text)); });
}

#endif
