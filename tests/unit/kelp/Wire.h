// A value put into a stream, as bytes, and bytes as a stream to read from.
#ifndef TESTS_UNIT_KELP_WIRE_H
#define TESTS_UNIT_KELP_WIRE_H

#include <qor/attrlog/NboAttrLogIn.h>
#include <qor/attrlog/NboAttrLogOut.h>

#include <string>
#include <string_view>

template <class Value>
std::string wireOf(Value const& value) {
    Qor::Ptr<Qor::NboAttrLog::Out> const out = Qor::make<Qor::NboAttrLog::Out>();
    out << value;
    return std::string(out->unsent());
}

inline Qor::Ptr<Qor::NboAttrLog::In> reading(std::string_view bytes) {
    auto in = Qor::make<Qor::NboAttrLog::In>();
    in->receive(bytes);
    return in;
}

#endif
