#ifndef VGWD_AGENT_EMBEDDED_SERVER_H
#define VGWD_AGENT_EMBEDDED_SERVER_H

// An ovsdb-server of our own: in the run directory, on a unix socket there, with a hardware_vtep
// database that is made from the schema the first time. It is wanted or not; what there is follows,
// without keeping the event loop waiting, but for the making of the database:
//
//     idle -> starting -> listening -> (not wanted) -> ending -> idle
//
// One that ends by itself is started again, the first time at once, then ever more rarely. It ends
// with us, also when we are killed. The database is kept, unless it is told not to: then it is
// removed when the server has ended because it was not wanted, and before a start that is not a
// restart. With a key and certificates the server reaches managers by ssl, as its database names
// them.

#include <ovsdb/client/Backoff.h>
#include <ovsdb/client/Log.h>
#include <ovsdb/remote/Remote.h>
#include <ovsdb/rpc/Tether.h>
#include <vgwd/agent/Options.h>

#include <asio/io_context.hpp>
#include <asio/steady_timer.hpp>

#include <sys/types.h>
#include <chrono>
#include <functional>
#include <string>
#include <vector>

namespace Vgwd {

class EmbeddedServer {
  public:
    struct Handlers {
        std::function<void()> listening;  ///< each time it has begun to listen
        std::function<void(std::string const&)>
            failed;  ///< it can't be started, or dies anew each time
    };

    EmbeddedServer(asio::io_context& loop, Options const& options, Handlers handlers,
                   Ovsdb::LogSink log);
    EmbeddedServer(EmbeddedServer const&) = delete;
    EmbeddedServer& operator=(EmbeddedServer const&) = delete;
    ~EmbeddedServer() { stop(); }

    void wantedIs(bool wanted);
    void persistIs(bool persist);
    /// Ends it and waits for its end; nothing is told any more.
    void stop();
    /// A child of ours may have ended (SIGCHLD).
    void handleChild();

    Ovsdb::Remote remote() const;

  private:
    using Clock = std::chrono::steady_clock;

    std::string file(char const* name) const;
    std::string program() const;
    std::vector<std::string> words() const;
    void begin();
    void createDatabase() const;
    void launch();
    void kill();
    bool listens() const;
    void awaitSocket();
    void handleEnd();
    void fail(std::string const& reason);
    void removeDatabase() const;
    void markTransient() const;
    void after(std::chrono::milliseconds wait, void (EmbeddedServer::*step)());

    Options options_;
    Handlers handlers_;
    Ovsdb::LogSink log_;
    asio::steady_timer timer_;  // of the one thing that is awaited: socket, restart, end
    Ovsdb::Backoff backoff_;
    pid_t server_ = 0;  // 0: none runs
    Clock::time_point launched_;
    Ovsdb::Tether step_;  // cut at each
    int deaths_ = 0;      // since it last listened
    bool wanted_ = false;
    bool ending_ = false;  // it was told to end
    bool persist_ = true;
};

}  // namespace Vgwd

#endif
