// The words of the range exception that a call raises.
#ifndef TESTS_UNIT_VGW_REFUSAL_H
#define TESTS_UNIT_VGW_REFUSAL_H

#include <string>

#include <qor/core/Exception.h>

template <class Call>
std::string refusal(Call&& call) {
    try {
        call();
    } catch (Qor::RangeException const& exception) {
        return exception.what();
    }
    return "not refused";
}

#endif
