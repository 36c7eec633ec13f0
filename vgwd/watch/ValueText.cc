#include <vgwd/watch/ValueText.h>

#include <array>
#include <cstdio>

namespace Vgwd {

std::string textOf(Qor::String8 const& text) { return "\"" + std::string(text.view()) + "\""; }

std::string textOf(Kelp::IpAddr address) { return std::string(address.stringValue().view()); }

std::string textOf(Kelp::EthAddr const& address) {
    return std::string(address.stringValue().view());
}

std::string textOf(Vxlan::Vni vni) { return std::to_string(vni.value()); }

std::string textOf(bool flag) { return flag ? "true" : "false"; }

std::string textOf(Qor::Seconds seconds) {
    std::array<char, 48> text{};
    std::snprintf(text.data(), text.size(), "%.3f", seconds);
    return text.data();
}

std::string textOf(Vgw::SessionState state) { return std::string(Vgw::stringValue(state).view()); }

std::string textOf(Vgw::VtepListType type) { return std::string(Vgw::stringValue(type).view()); }

std::string textOf(Vgw::PhysicalLocatorKey const& key) {
    return std::string(Vgw::stringValue(key.encapType()).view()) + " " + textOf(key.dstIp());
}

std::string textOf(Vgw::MacVniPair const& pair) {
    return textOf(pair.mac()) + " " + textOf(pair.vni());
}

}  // namespace Vgwd
