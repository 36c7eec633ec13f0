#ifndef VGWD_SERVE_LISTENER_H
#define VGWD_SERVE_LISTENER_H

// One address that is listened on. Connections are taken a few a turn; when the process has no
// descriptor left, that is said once and tried again a moment later.

#include <ovsdb/client/Log.h>
#include <ovsdb/rpc/Tether.h>
#include <vgwd/serve/FileLock.h>
#include <vgwd/serve/ServeOptions.h>

#include <asio/io_context.hpp>
#include <asio/posix/stream_descriptor.hpp>
#include <asio/steady_timer.hpp>

#include <functional>

namespace Vgwd {

class Listener {
  public:
    /// Takes over a connected socket that does not block.
    using Accept = std::function<void(int socket, ListenAddress::Kind kind)>;

    /// Listens, and takes nobody before admit(). Raises std::runtime_error, which names the address
    /// and what is wrong with it.
    Listener(asio::io_context& loop, ListenAddress address, ServeOptions const& options,
             Accept accept, Ovsdb::LogSink log);
    /// A socket in the file system goes.
    ~Listener();
    Listener(Listener const&) = delete;
    Listener& operator=(Listener const&) = delete;

    /// Takes connections from now on, also those that came before.
    void admit();
    /// Where it really listens: a free port is told.
    ListenAddress const& address() const { return address_; }

  private:
    void await();
    void acceptSome();
    void pause();

    ListenAddress address_;
    FileLock lock_;  // of a socket outside of the run directory
    asio::posix::stream_descriptor socket_;
    asio::steady_timer pause_;
    Ovsdb::Tether tether_;
    Accept accept_;
    Ovsdb::LogSink log_;
    bool isShort_ = false;  // of descriptors, and said so
    bool admits_ = false;
};

}  // namespace Vgwd

#endif
