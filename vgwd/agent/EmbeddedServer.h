#ifndef VGWD_AGENT_EMBEDDED_SERVER_H
#define VGWD_AGENT_EMBEDDED_SERVER_H

// An ovsdb-server of our own: in a run directory, on a unix socket there, with a hardware_vtep
// database that is made from the schema the first time and kept. It ends with us, also when we are
// killed; one that ends by itself is started again.
//
// Files in the run directory: vtep.db, db.sock, server.ctl, ovsdb-server.log.

#include <ovsdb/client/Log.h>
#include <ovsdb/rpc/Remote.h>

#include <asio/io_context.hpp>
#include <asio/steady_timer.hpp>

#include <sys/types.h>
#include <string>
#include <vector>

namespace Vgwd {

class EmbeddedServer {
  public:
    EmbeddedServer(asio::io_context& loop, std::string const& runDirectory, std::string schemaFile,
                   Ovsdb::LogSink log);
    EmbeddedServer(EmbeddedServer const&) = delete;
    EmbeddedServer& operator=(EmbeddedServer const&) = delete;
    ~EmbeddedServer() { stop(); }

    /// Makes the database if need be, starts the server and waits until its socket is there. Raises
    /// std::runtime_error, which names what is missing or failed.
    void start();
    /// Ends it and waits for its end.
    void stop();
    /// A child of ours may have ended (SIGCHLD).
    void handleChild();

    Ovsdb::Remote remote() const;

  private:
    std::string file(char const* name) const { return directory_ + "/" + name; }
    void createDatabase();
    void launch();
    void awaitSocket();

    Ovsdb::LogSink log_;
    asio::steady_timer restart_;
    std::string directory_;
    std::string schemaFile_;
    pid_t server_ = 0;  // 0: none runs
};

}  // namespace Vgwd

#endif
