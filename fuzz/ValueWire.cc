// Any bytes, read as a sequence of values from a ring: each is read whole, or refused by name and
// the position stays within what has arrived.
#include <fuzz/FuzzInput.h>
#include <kelp/EthAddr.h>
#include <kelp/Vni.h>
#include <qor/attrlog/NboAttrLogIn.h>
#include <vgw/values/MacVniPair.h>
#include <vgw/values/PhysicalLocatorKey.h>

namespace {

void readOne(Qor::NboAttrLog::In& in, unsigned kind) {
    switch (kind % 7) {
        case 0:
            static_cast<void>(in.nextbool());
            break;
        case 1:
            static_cast<void>(in.nextU64());
            break;
        case 2:
            static_cast<void>(in.nextString());
            break;
        case 3:
            static_cast<void>(Vgw::MacVniPair(&in, Qor::StreamBogon()));
            break;
        case 4:
            static_cast<void>(Vgw::PhysicalLocatorKey(&in, Qor::StreamBogon()));
            break;
        case 5:
            static_cast<void>(Vxlan::Vni(&in, Qor::StreamBogon()));
            break;
        default:
            static_cast<void>(in.nextSeconds());
            break;
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    auto const in = Qor::make<Qor::NboAttrLog::In>();
    std::string_view rest = textOf(data, size);
    std::size_t const arrived = in->receive(rest);
    must(arrived <= size);
    try {
        while (in->available() > 0) {
            readOne(*in, in->nextU8());
        }
    } catch (Qor::RangeException const&) {
    } catch (Qor::AttrLogRecordException const&) {
    }
    must(in->readPosition() <= in->received());
    return 0;
}
