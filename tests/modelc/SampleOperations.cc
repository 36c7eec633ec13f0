// The operations of the sample description, which are defined by hand.
#include <acme/entities/Bench.h>
#include <acme/entities/EntityWithALongNameOfItsOwn.h>
#include <acme/entities/Meter.h>

namespace Acme {

void Device::copy(PtrConst const& rhs) { labelIs(rhs->label()); }

void Meter::copy(Device::PtrConst const& rhs) { labelIs(Qor::String8("meter ") + rhs->label()); }

double Meter::average(Qor::Seconds const& from, Qor::Seconds const& to) const {
    return (from + to) / 2;
}

Qor::String8 Meter::unitOf(DeviceKind kind) { return kind == DeviceKind::meter ? "V" : "-"; }

void Bench::clear() { meterDelAll(); }

void EntityWithALongNameOfItsOwn::operationWithALongName(Qor::String8 first,
                                                         ValueWithALongNameOfItsOwn const&) {
    attributeWithALongNameIs(first);
}

}  // namespace Acme
