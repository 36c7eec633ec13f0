#include <ovsdb/rpc/Connector.h>

#include <ovsdb/rpc/SocketTransport.h>
#include <ovsdb/rpc/TlsTransport.h>

#include <asio/connect.hpp>
#include <asio/ip/tcp.hpp>
#include <asio/local/stream_protocol.hpp>
#include <asio/steady_timer.hpp>

#include <utility>

namespace Ovsdb {

// Lives in its own handlers; once finished it drops what comes late.
class Connector::Attempt : public std::enable_shared_from_this<Attempt> {
  public:
    Attempt(asio::io_context& loop, Remote remote, TlsFiles files, Handler handler)
        : remote_(std::move(remote)),
          files_(std::move(files)),
          handler_(std::move(handler)),
          timer_(loop),
          resolver_(loop),
          tcp_(loop),
          local_(loop) {}

    void start(std::chrono::milliseconds limit);
    void cancel();

  private:
    void startTcp();
    void connectTcp(asio::ip::tcp::resolver::results_type const& endpoints);
    void startLocal();
    void connectedTcp();
    void startTls();
    void fail(std::string const& error) { finish(nullptr, error); }
    void finish(std::shared_ptr<Transport> transport, std::string const& error);

    Remote remote_;
    TlsFiles files_;
    Handler handler_;
    asio::steady_timer timer_;
    asio::ip::tcp::resolver resolver_;
    asio::ip::tcp::socket tcp_;
    asio::local::stream_protocol::socket local_;
    std::shared_ptr<TlsTransport> tls_;
    bool done_ = false;
};

void Connector::Attempt::start(std::chrono::milliseconds limit) {
    timer_.expires_after(limit);
    timer_.async_wait([self = shared_from_this()](std::error_code error) {
        if (!error) self->fail("connection timed out");
    });
    if (remote_.kind == Remote::Kind::unixSocket)
        startLocal();
    else
        startTcp();
}

void Connector::Attempt::startLocal() {
    local_.async_connect(remote_.path, [self = shared_from_this()](std::error_code error) {
        if (error) return self->fail(error.message());
        self->finish(std::make_shared<SocketTransport>(std::move(self->local_)), {});
    });
}

void Connector::Attempt::startTcp() {
    std::error_code error;
    asio::ip::address const address = asio::ip::make_address(remote_.host, error);
    if (!error) {
        asio::ip::tcp::endpoint const endpoint(address, remote_.port);
        return connectTcp(
            asio::ip::tcp::resolver::results_type::create(endpoint, remote_.host, ""));
    }
    resolver_.async_resolve(
        remote_.host, std::to_string(remote_.port),
        [self = shared_from_this()](std::error_code failed, auto const& endpoints) {
            if (self->done_) return;
            if (failed) return self->fail(failed.message());
            self->connectTcp(endpoints);
        });
}

void Connector::Attempt::connectTcp(asio::ip::tcp::resolver::results_type const& endpoints) {
    asio::async_connect(
        tcp_, endpoints,
        [self = shared_from_this()](std::error_code error, asio::ip::tcp::endpoint const&) {
            if (self->done_) return;
            if (error) return self->fail(error.message());
            self->connectedTcp();
        });
}

void Connector::Attempt::connectedTcp() {
    std::error_code ignored;
    tcp_.set_option(asio::ip::tcp::no_delay(true), ignored);
    if (remote_.kind == Remote::Kind::ssl) return startTls();
    finish(std::make_shared<SocketTransport>(std::move(tcp_)), {});
}

void Connector::Attempt::startTls() {
    try {
        tls_ = std::make_shared<TlsTransport>(std::move(tcp_), files_);
    } catch (std::exception const& e) {
        return fail(e.what());
    }
    tls_->handshake([self = shared_from_this(), tls = tls_](std::error_code error) {
        if (error) return self->fail("TLS handshake: " + error.message());
        self->finish(std::move(self->tls_), {});
    });
}

void Connector::Attempt::cancel() {
    if (std::exchange(done_, true)) return;
    timer_.cancel();
    resolver_.cancel();
    std::error_code ignored;
    tcp_.close(ignored);
    local_.close(ignored);
    if (tls_ != nullptr) tls_->close();
    tls_.reset();
}

void Connector::Attempt::finish(std::shared_ptr<Transport> transport, std::string const& error) {
    if (done_) return;
    cancel();
    Handler const handler = std::move(handler_);
    handler(std::move(transport), error);
}

void Connector::connect(Remote const& remote, TlsFiles const& files,
                        std::chrono::milliseconds limit, Handler handler) {
    auto const attempt =
        std::make_shared<Attempt>(loop_, remote, files,
                                  [this, handler = std::move(handler)](
                                      std::shared_ptr<Transport> transport, std::string error) {
                                      attempt_.reset();
                                      handler(std::move(transport), std::move(error));
                                  });
    attempt_ = attempt;
    attempt->start(limit);
}

void Connector::cancel() {
    if (attempt_ == nullptr) return;
    attempt_->cancel();
    attempt_.reset();
}

}  // namespace Ovsdb
