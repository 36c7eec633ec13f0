#ifndef VGWD_WATCH_VALUE_TEXT_H
#define VGWD_WATCH_VALUE_TEXT_H

// Values of attributes as --watch prints them: texts between quotes, keys without, seconds to the
// millisecond.

#include <vgw/VgwTypes.h>

#include <string>
#include <type_traits>

namespace Vgwd {

std::string textOf(Qor::String8 const& text);
std::string textOf(Kelp::IpAddr address);
std::string textOf(Kelp::EthAddr const& address);
std::string textOf(Vxlan::Vni vni);
std::string textOf(bool flag);
std::string textOf(Qor::Seconds seconds);
std::string textOf(Vgw::SessionState state);
std::string textOf(Vgw::VtepListType type);
std::string textOf(Vgw::PhysicalLocatorKey const& key);
std::string textOf(Vgw::MacVniPair const& pair);
template <class N>
requires std::is_unsigned_v<N> std::string textOf(N number) { return std::to_string(number); }

inline std::string keyText(Qor::String8 const& key) { return std::string(key.view()); }
template <class K>
std::string keyText(K const& key) {
    return textOf(key);
}

}  // namespace Vgwd

#endif
