// Two ends of a connection over memory, and a tree that one serves and the other mounts.
#ifndef TESTS_MEMORY_PAIR_H
#define TESTS_MEMORY_PAIR_H

#include <tests/support/SessionPair.h>

namespace Memory {

using Qor::NboAttrLog::MemoryTransport;
using Qor::NboAttrLog::Session;

struct Pair : SessionPair {
    explicit Pair(Qor::Ptr<Qor::Dir> const& root, bool isWritable = false) {
        Session::Config config;
        config.peerMayWrite = isWritable;
        connect(root, config, config);
    }
    bool isOpen() const { return closed().empty(); }
};

}  // namespace Memory

#endif
