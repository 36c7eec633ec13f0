#ifndef VGWD_SERVE_PEER_BOOKS_H
#define VGWD_SERVE_PEER_BOOKS_H

// Tells in a directory of the tree who mounts it: one Vgwd::PeerSession for each session, under the
// session's name.
//
// The books are brought up to date when something has gone on, at most once a second. To tell them
// is traffic too, to those who mount the directory; so what goes out because of it is excused
// (Peer::excuse()), and counts only once something else happens. At rest nothing goes on.

#include <ovsdb/rpc/Tether.h>
#include <qor/tree/Dir.h>
#include <vgwd/model/PeerSession.h>
#include <vgwd/serve/Server.h>

#include <asio/io_context.hpp>
#include <asio/steady_timer.hpp>

#include <chrono>

namespace Vgwd {

class PeerBooks {
  public:
    PeerBooks(asio::io_context& loop, Qor::Dir::Ptr sessions, Server const& server);

    /// Something has gone on.
    void handleTraffic();
    void stop() { timer_.cancel(); }

  private:
    using Clock = std::chrono::steady_clock;

    void publish();
    void write();
    void removeEnded();

    Qor::Dir::Ptr sessions_;
    Server const& server_;
    asio::steady_timer timer_;
    Ovsdb::Tether tether_;
    Clock::time_point last_;
    bool isDue_ = false;
};

}  // namespace Vgwd

#endif
