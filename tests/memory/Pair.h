// Two ends of a connection over memory, and a tree that one serves and the other mounts.
#ifndef TESTS_MEMORY_PAIR_H
#define TESTS_MEMORY_PAIR_H

#include <qor/attrlog/session/Session.h>
#include <qor/tree/Dir.h>

#include <memory>

namespace Memory {

using Qor::NboAttrLog::MemoryTransport;
using Qor::NboAttrLog::Session;

struct Pair {
    explicit Pair(Qor::Ptr<Qor::Dir> const& root, bool isWritable = false) {
        MemoryTransport::connect(near, far);
        Session::Config config;
        config.peerMayWrite = isWritable;
        reader = std::make_unique<Session>(config, near, nullptr);
        config.side = Qor::NboAttrLog::Demuxer::Side::accepting;
        agent = std::make_unique<Session>(config, far, root);
    }
    Qor::U64 written() const { return agent->counters().bytesOut + reader->counters().bytesOut; }
    // Of the ends that are there still.
    void turn() {
        if (agent) agent->service();
        if (reader) reader->service();
    }
    // Until nothing goes on. False when it never ends.
    bool settle() {
        for (int turns = 0; turns < 100000; ++turns) {
            Qor::U64 const before = written();
            turn();
            if (written() == before) return true;
        }
        return false;
    }
    bool isOpen() const { return agent->closed().length() == 0 && reader->closed().length() == 0; }

    MemoryTransport near;  // the reader's
    MemoryTransport far;
    std::unique_ptr<Session> reader;
    std::unique_ptr<Session> agent;
};

}  // namespace Memory

#endif
