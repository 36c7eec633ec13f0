// A VXLAN network identifier (RFC 7348, section 5): 24 bits. A plain value; the default is 0. A Vni
// that stands is in range, since nothing else can be built.
#ifndef KELP_VNI_H
#define KELP_VNI_H

#include <kelp/Export.h>
#include <qor/attrlog/Declarations.h>
#include <qor/attrlog/PlainForm.h>
#include <qor/core/String8.h>
#include <qor/core/Types.h>

#include <compare>
#include <iosfwd>

namespace Vxlan {

class KELP_EXPORT Vni {
  public:
    static constexpr Qor::U32 min = 0;
    static constexpr Qor::U32 max = 0xFFFFFF;

    /// The record of this type in the registry; never null.
    static Qor::QorType* _fwkType();

    constexpr Vni() noexcept = default;

    // A number over max raises Qor::RangeException.
    constexpr explicit Vni(Qor::U32 value) : value_(value <= max ? value : refuse()) {}

    // Reads plain decimal digits at the position and leaves the position behind them.
    Vni(Qor::String8::IteratorConst& position, Qor::String8::IteratorConst const& end);

    // Reads what operator<< on the stream wrote.
    Vni(Qor::NboAttrLog::In* in, Qor::StreamBogon);

    constexpr Qor::U32 value() const noexcept { return value_; }
    constexpr Qor::U32 hash() const noexcept { return value_; }
    Qor::String8 stringValue() const;

    friend constexpr bool operator==(Vni, Vni) noexcept = default;
    friend constexpr std::strong_ordering operator<=>(Vni, Vni) noexcept = default;

  private:
    [[noreturn]] static Qor::U32 refuse();

    Qor::U32 value_ = min;
};

// Plain decimal digits, without quotes.
KELP_EXPORT Qor::String8 valueToStrep(Vni vni);
KELP_EXPORT Vni sequenceToValue(Qor::String8::IteratorConst& position,
                                Qor::String8::IteratorConst const& end, Vni* selector);

KELP_EXPORT std::ostream& operator<<(std::ostream& stream, Vni vni);

// On the wire: an unsigned 32-bit number in network byte order.
KELP_EXPORT Qor::Ptr<Qor::NboAttrLog::Out> const& operator<<(
    Qor::Ptr<Qor::NboAttrLog::Out> const& out, Vni vni);

}  // namespace Vxlan

template <>
struct std::hash<Vxlan::Vni> {
    std::size_t operator()(Vxlan::Vni vni) const noexcept { return vni.hash(); }
};

template <>
struct Qor::NboAttrLog::PlainForm<Vxlan::Vni> {
    static constexpr std::size_t size = sizeof(U32);
    static void store(unsigned char* at, Vxlan::Vni vni) noexcept {
        storeNetworkOrder(at, vni.value());
    }
};

#endif
