// The writer of an attribute log in network byte order: values are put with operator<<.
#ifndef QOR_ATTRLOG_NBOATTRLOGOUT_H
#define QOR_ATTRLOG_NBOATTRLOGOUT_H

#include <qor/attrlog/ConnectionOut.h>
#include <qor/attrlog/Declarations.h>
#include <qor/core/Ptr.h>

#include <bit>
#include <concepts>

namespace Qor {

namespace NboAttrLog {

class QOR_EXPORT Out : public Connection::Out {
  public:
    using Connection::Out::Out;
    ~Out() override;
};

// A number of its own width; a truth value is one byte, 0 or 1. A template, so that nothing turns
// into a number or a truth value on the way here.
template <std::integral Number>
Ptr<Out> const& operator<<(Ptr<Out> const& out, Number const& number) {
    out->put(number);
    return out;
}

// IEEE 754 binary64, 8 bytes.
template <std::same_as<double> Number>
Ptr<Out> const& operator<<(Ptr<Out> const& out, Number const& number) {
    out->put(std::bit_cast<U64>(number));
    return out;
}

// The length in 32 bits, then the bytes.
inline Ptr<Out> const& operator<<(Ptr<Out> const& out, String8 const& text) {
    out->put(text.length());
    out->putBytes(text.view());
    return out;
}

}  // namespace NboAttrLog

}  // namespace Qor

#endif
