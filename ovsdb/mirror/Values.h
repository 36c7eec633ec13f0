#ifndef OVSDB_MIRROR_VALUES_H
#define OVSDB_MIRROR_VALUES_H

// The database's texts and numbers as values of the model. The schema checks next to nothing, so
// each of these may find that there is no such value; the caller then tells that it was lost.

#include <kelp/EthAddr.h>
#include <kelp/IpAddr.h>
#include <kelp/Vni.h>
#include <ovsdb/store/Uuid.h>
#include <qor/core/String8.h>

#include <cstdint>
#include <optional>
#include <string_view>

namespace Ovsdb {

/// What a row is called, and what refers to it.
Qor::String8 textOf(Uuid const& uuid);

/// Four decimal numbers up to 255 without leading zeros. IPv6 has no value in the model.
std::optional<Kelp::IpAddr> ipv4Of(std::string_view text);
/// Six pairs of hexadecimal digits of either case, parted by colons.
std::optional<Kelp::EthAddr> macOf(std::string_view text);
/// The same; "unknown-dst" (vtep(5), Mcast_Macs_Remote) is the all-zero address, which no real
/// multicast address is.
std::optional<Kelp::EthAddr> multicastMacOf(std::string_view text);
/// A VXLAN network identifier of 24 bits (RFC 7348 section 5).
std::optional<Vxlan::Vni> vniOf(std::optional<std::int64_t> key);

}  // namespace Ovsdb

#endif
