#ifndef OVSDB_RPC_RPC_ERROR_H
#define OVSDB_RPC_RPC_ERROR_H

// Why a request failed. A server says so in one of three shapes, beside which a connection may end
// before it answers:
//
//     "error": "unknown method"                                 refused
//     "error": {"error": "unknown database", "details": "..."}  refused
//     "error": null, "result": [{}, {"error": "..."}]           one operation of a transact, or its
//                                                               commit
//
// RFC 7047 sections 4.1 and 4.1.3.

#include <cstddef>
#include <optional>
#include <string>

#include <simdjson.h>

namespace Ovsdb {

struct RpcError {
    enum class Kind {
        refused,    ///< the "error" member of the reply
        operation,  ///< operation `operation` of a transact
        commit,     ///< all operations ran, the commit failed
        lost,       ///< the connection ended first
    };

    Kind kind = Kind::refused;
    std::string error;    ///< the short text that programs compare, as "unknown method"
    std::string details;  ///< for people; may be empty
    std::size_t operation = 0;

    std::string text() const;
};

/// The "error" member of a reply; nothing when it is null.
std::optional<RpcError> replyError(simdjson::dom::element error);
/// What failed in the result of a transact of that many operations; nothing when all went well.
std::optional<RpcError> transactError(simdjson::dom::element result, std::size_t operations);

}  // namespace Ovsdb

#endif
