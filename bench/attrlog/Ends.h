// The two ends of a session over a socket, each in its process: one gives a directory, the other
// mounts it.
#ifndef BENCH_ATTRLOG_ENDS_H
#define BENCH_ATTRLOG_ENDS_H

#include <qor/attrlog/dir/DirAdapter.h>
#include <qor/attrlog/session/Session.h>

#include <functional>

#include "OtherProcess.h"

namespace Bench {

/// The reading end: mounts /rows, and calls `onSynced` once with what it got.
class Reader final : private Qor::NboAttrLog::SessionListener {
  public:
    using Synced = std::function<void(Qor::Dir& dir)>;
    Reader(int fd, Synced onSynced) : fd_(fd), transport_(fd), then_(std::move(onSynced)) {
        doNotBlock(fd);
        session_.listenerIs(this);
        mount_ = session_.mount("/rows", false);
    }
    /// Until the writer has closed the socket. `afterEach` is called after every turn.
    void run(std::function<void(Qor::NboAttrLog::Session const& session)> const& afterEach) {
        while (session_.closed().length() == 0) {
            session_.service();
            afterEach(session_);
            if (!session_.wantsRead()) awaitSocket(fd_);
        }
    }

  private:
    void onSynced(Qor::NboAttrLog::MountId) override {
        then_(*Qor::dynamicCast<Qor::Dir>(session_.mounted(mount_)));
    }

    int const fd_;
    Qor::NboAttrLog::FdTransport transport_;
    Qor::NboAttrLog::Session session_{Qor::NboAttrLog::Session::Config(), transport_, nullptr};
    Synced then_;
    Qor::NboAttrLog::MountId mount_ = 0;
};

/// The writing end. REQUIRES: the directory's name is "rows".
class Writer {
  public:
    Writer(int fd, Qor::Ptr<Qor::Dir> const& given)
        : fd_(fd), session_(config(), transport_, given) {
        doNotBlock(fd);
    }

    Qor::NboAttrLog::Session& session() { return session_; }
    void serveUntilSynced(OtherProcess const& other) {
        while (!other.shared().isSynced) {
            session_.service();
            if (!session_.wantsRead()) awaitSocket(fd_, session_.wantsWrite(), 1);
        }
    }
    /// Waits for room when the ring has less than half of it, so that what is sent next has some.
    void makeRoom() {
        auto const& out = *session_.demuxer().out();
        while (out.freeBytes() < Qor::U64{4} * out.bufferBlockSize()) {
            awaitSocket(fd_, true);
            session_.service();
        }
    }
    void flush() {
        for (session_.service(); session_.wantsWrite(); session_.service()) {
            awaitSocket(fd_, true);
        }
    }

  private:
    static Qor::NboAttrLog::Session::Config config() {
        Qor::NboAttrLog::Session::Config config;
        config.side = Qor::NboAttrLog::Demuxer::Side::accepting;
        return config;
    }

    int const fd_;
    Qor::NboAttrLog::FdTransport transport_{fd_};
    Qor::NboAttrLog::Session session_;
};

}  // namespace Bench

#endif
