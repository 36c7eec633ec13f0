// Any text, given to the parser of every value: it is refused with a range exception, or what it
// gave prints to a text that gives the same value again.
#include <fuzz/FuzzInput.h>
#include <kelp/EthAddr.h>
#include <kelp/IpAddr.h>
#include <kelp/Vni.h>
#include <qor/core/Strep.h>
#include <vgw/values/EncapsulationType.h>
#include <vgw/values/MacVniPair.h>
#include <vgw/values/OvsdbDataType.h>
#include <vgw/values/PhysicalLocatorKey.h>

namespace {

template <class Value>
void parse(Qor::String8 const& text) {
    using Qor::valueToStrep;
    try {
        Value const value = Qor::strepToValue<Value>(text);
        must(Qor::strepToValue<Value>(valueToStrep(value)) == value);
    } catch (Qor::RangeException const&) {
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    Qor::String8 const text(textOf(data, size));
    parse<Qor::String8>(text);
    parse<Qor::U32>(text);
    parse<Qor::U64>(text);
    parse<bool>(text);
    parse<Kelp::IpAddr>(text);
    parse<Kelp::EthAddr>(text);
    parse<Vxlan::Vni>(text);
    parse<Vgw::EncapsulationType>(text);
    parse<Vgw::OvsdbDataType>(text);
    parse<Vgw::MacVniPair>(text);
    parse<Vgw::PhysicalLocatorKey>(text);
    return 0;
}
