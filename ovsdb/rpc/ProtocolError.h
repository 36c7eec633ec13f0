#ifndef OVSDB_RPC_PROTOCOL_ERROR_H
#define OVSDB_RPC_PROTOCOL_ERROR_H

// What a peer sent and nobody can make sense of: the session that raised it ends, with these words
// as its one reason. It never leaves a handler of the event loop.

#include <stdexcept>

namespace Ovsdb {

class ProtocolError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

}  // namespace Ovsdb

#endif
