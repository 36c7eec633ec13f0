// The records of the network values in the type registry.
#include <kelp/EthAddr.h>
#include <kelp/IpAddr.h>
#include <kelp/Vni.h>

#include <qor/generic/ClassTypes.h>

namespace {

template <class V>
using Type = Qor::ValueType<V, Qor::PlainWrapper<V>>;

constinit Qor::TypeRecord ipAddr{.fullName = "Kelp::IpAddr",
                                 .sort = Qor::TypeSort::value,
                                 .size = sizeof(Kelp::IpAddr),
                                 .self = &Kelp::IpAddr::_fwkType,
                                 .base = nullptr,
                                 .make = &Qor::makeType<Type<Kelp::IpAddr>>};
constinit Qor::TypeRecord ethAddr{.fullName = "Kelp::EthAddr",
                                  .sort = Qor::TypeSort::value,
                                  .size = sizeof(Kelp::EthAddr),
                                  .self = &Kelp::EthAddr::_fwkType,
                                  .base = nullptr,
                                  .make = &Qor::makeType<Type<Kelp::EthAddr>>};
constinit Qor::TypeRecord vni{.fullName = "Vxlan::Vni",
                              .sort = Qor::TypeSort::value,
                              .size = sizeof(Vxlan::Vni),
                              .self = &Vxlan::Vni::_fwkType,
                              .base = nullptr,
                              .make = &Qor::makeType<Type<Vxlan::Vni>>};
constinit Qor::TypeRecord* const records[] = {&ipAddr, &ethAddr, &vni};
constinit Qor::TypeUnit unit("Kelp", records, {});
Qor::TypeUnitLoader const loader(unit);

}  // namespace

namespace Kelp {

Qor::QorType* IpAddr::_fwkType() { return unit.typeOf(ipAddr); }
Qor::QorType* EthAddr::_fwkType() { return unit.typeOf(ethAddr); }

}  // namespace Kelp

namespace Vxlan {

Qor::QorType* Vni::_fwkType() { return unit.typeOf(vni); }

}  // namespace Vxlan
