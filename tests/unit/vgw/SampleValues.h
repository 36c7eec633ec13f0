// Values that many of these tests use.
#ifndef TESTS_UNIT_VGW_SAMPLE_VALUES_H
#define TESTS_UNIT_VGW_SAMPLE_VALUES_H

#include <kelp/IpAddr.h>
#include <vgw/values/EncapsulationType.h>

inline constexpr auto vxlan = Vgw::EncapsulationType::vxlan_over_ipv4;
inline Kelp::IpAddr const ip1("192.0.2.1");
inline Kelp::IpAddr const ip2("192.0.2.2");

#endif
