#ifndef BENCH_ATTRLOG_PUT_RECORD_H
#define BENCH_ATTRLOG_PUT_RECORD_H

#include <qor/attrlog/NboAttrLogOut.h>
#include <qor/attrlog/PlainForm.h>
#include <qor/attrlog/family/ValueOut.h>

namespace Bench {

// As putRecord() of the handlers, without an adapter. Of each file's own, so that the compiler
// knows who calls it.
template <class... Parts>
static void putRecord(Qor::Ptr<Qor::NboAttrLog::Out> const& out,
                      Qor::NboAttrLog::MsgHeader const& header, Parts const&... parts) {
    std::size_t const size = (Qor::NboAttrLog::sizeOnWire(parts) + ...);
    if (unsigned char* at = out->claimRecord(header, size)) [[likely]] {
        static_cast<void>(((at = Qor::NboAttrLog::storeOnWire(at, parts)), ...));
        return;
    }
    using Token = Qor::NboAttrLog::Out::TransactToken;
    out->nextHeaderIs(header);
    out << Token::begin;
    (Qor::putValue(out, parts), ...);
    out << Token::end;
}

}  // namespace Bench

#endif
