// Two sessions in one thread over a transport in memory: an agent, which gives a tree, and a
// reader, which mounts of it.
#ifndef TESTS_SUPPORT_SESSION_PAIR_H
#define TESTS_SUPPORT_SESSION_PAIR_H

#include <qor/attrlog/session/Session.h>
#include <qor/tree/Dir.h>

#include <array>
#include <memory>
#include <string>

struct SessionPair {
    using Session = Qor::NboAttrLog::Session;

    SessionPair() { Qor::NboAttrLog::MemoryTransport::connect(near, far); }

    /// Both ends anew, and what those before have left in the transport goes.
    void connect(Qor::Ptr<Qor::Dir> const& given, Session::Config agents = {},
                 Session::Config const& readers = {}) {
        agent.reset();
        reader.reset();
        clear();
        agents.side = Qor::NboAttrLog::Demuxer::Side::accepting;
        agent = std::make_unique<Session>(agents, far, given);
        reader = std::make_unique<Session>(readers, near, nullptr);
    }
    /// Of the ends that are there still.
    void turn() {
        if (reader) reader->service();
        if (agent) agent->service();
    }
    void turns(int count) {
        while (count-- > 0) turn();
    }
    /// Until nothing goes over any more. False when that does not come.
    bool settle() {
        for (int turns = 0; turns < 100'000; ++turns) {
            Qor::U64 const before = moved();
            turn();
            if (before == moved()) return true;
        }
        return false;
    }
    void roomIs(std::size_t bytes) {
        near.roomIs(bytes);
        far.roomIs(bytes);
    }
    /// Bytes in and out, of the ends that are there.
    Qor::U64 moved() const {
        Qor::U64 sum = 0;
        for (Session const* const end : {agent.get(), reader.get()})
            if (end != nullptr) sum += end->counters().bytesIn + end->counters().bytesOut;
        return sum;
    }
    /// Why they ended; empty while both are open.
    std::string closed() const {
        return std::string(agent->closed().view()) + std::string(reader->closed().view());
    }

    Qor::NboAttrLog::MemoryTransport near;  // the reader's
    Qor::NboAttrLog::MemoryTransport far;
    std::unique_ptr<Session> agent;
    std::unique_ptr<Session> reader;

  private:
    void clear() {
        std::array<unsigned char, 4096> room;
        for (auto* const end : {&near, &far})
            while (end->read(room) != 0) {
            }
    }
};

#endif
