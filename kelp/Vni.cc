#include <kelp/Vni.h>

#include <qor/attrlog/NboAttrLogIn.h>
#include <qor/attrlog/NboAttrLogOut.h>
#include <qor/core/Strep.h>

#include <ostream>

namespace Vxlan {

Vni::Vni(Qor::String8::IteratorConst& position, Qor::String8::IteratorConst const& end)
    : value_(static_cast<Qor::U32>(Qor::unsignedFromText(position, end, max))) {}

Vni::Vni(Qor::NboAttrLog::In* in, Qor::StreamBogon) : Vni(in->nextU32()) {}

Qor::String8 Vni::stringValue() const { return Qor::textOfUnsigned(value_); }

Qor::U32 Vni::refuse() {
    Qor::throwRangeException("Vni::value < Vni::min or > Vni::max not allowed");
}

Qor::String8 valueToStrep(Vni vni) { return vni.stringValue(); }

Vni sequenceToValue(Qor::String8::IteratorConst& position, Qor::String8::IteratorConst const& end,
                    Vni*) {
    return Vni(position, end);
}

std::ostream& operator<<(std::ostream& stream, Vni vni) { return stream << vni.value(); }

Qor::Ptr<Qor::NboAttrLog::Out> const& operator<<(Qor::Ptr<Qor::NboAttrLog::Out> const& out,
                                                 Vni vni) {
    return out << vni.value();
}

}  // namespace Vxlan
