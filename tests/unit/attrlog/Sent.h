// What stands in a ring to be sent.
#ifndef TESTS_UNIT_ATTRLOG_SENT_H
#define TESTS_UNIT_ATTRLOG_SENT_H

#include <qor/attrlog/ConnectionOut.h>

#include <string>

/// All bytes that were put, fetched piece by piece.
inline std::string takeAll(Qor::Connection::Out& out) {
    std::string bytes;
    while (!out.unsent().empty()) {
        auto const piece = out.unsent();
        bytes += piece;
        out.sentInc(piece.size());
    }
    return bytes;
}

#endif
