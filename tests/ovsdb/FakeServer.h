#ifndef TESTS_OVSDB_FAKE_SERVER_H
#define TESTS_OVSDB_FAKE_SERVER_H

// A server on a unix socket that does what its script says, in the test's own event loop. The
// script sees each message of the client, sends bytes as it likes and hangs up when it likes.

#include <ovsdb/rpc/JsonFramer.h>

#include <asio/io_context.hpp>
#include <asio/local/stream_protocol.hpp>
#include <asio/write.hpp>
#include <nlohmann/json.hpp>

#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace Ovsdb {

class FakeServer {
  public:
    using Json = nlohmann::json;
    using Script = std::function<void(FakeServer& server, Json const& message)>;

    explicit FakeServer(asio::io_context& loop, Script script = {})
        : script_(std::move(script)), directory_(makeDirectory()), acceptor_(loop), socket_(loop) {
        listen();
    }
    ~FakeServer() { std::filesystem::remove_all(directory_); }

    std::string path() const { return directory_ + "/db.sock"; }
    void scriptIs(Script script) { script_ = std::move(script); }
    /// Connections before the newest stay open, unread and unanswered.
    void keepsOldIs(bool keeps) { keepsOld_ = keeps; }
    int connections() const { return connections_; }
    std::vector<Json> const& received() const { return received_; }

    void send(std::string const& bytes) {
        std::error_code ignored;
        asio::write(socket_, asio::buffer(bytes), ignored);
    }
    void reply(Json const& request, Json const& result) {
        send(Json{{"id", request["id"]}, {"result", result}, {"error", nullptr}}.dump());
    }
    void refuse(Json const& request, Json const& error) {
        send(Json{{"id", request["id"]}, {"result", nullptr}, {"error", error}}.dump());
    }
    void notify(std::string const& method, Json const& params) {
        send(Json{{"id", nullptr}, {"method", method}, {"params", params}}.dump());
    }
    void hangUp() {
        std::error_code ignored;
        socket_.close(ignored);
    }
    /// No connection is taken any more, as with a server that died.
    void vanish() {
        hangUp();
        stopListening();
    }
    /// The same, but the connection that there is stays.
    void stopListening() {
        std::error_code ignored;
        acceptor_.close(ignored);
        std::filesystem::remove(path());
    }
    void listen() {
        acceptor_ = asio::local::stream_protocol::acceptor(
            acceptor_.get_executor(), asio::local::stream_protocol::endpoint(path()));
        accept();
    }

  private:
    static std::string makeDirectory() {
        std::string name = std::filesystem::temp_directory_path() / "ovsdb-fake-XXXXXX";
        if (::mkdtemp(name.data()) == nullptr) throw std::runtime_error("mkdtemp");
        return name;
    }

    void accept() {
        acceptor_.async_accept(
            [this](std::error_code error, asio::local::stream_protocol::socket socket) {
                if (error) return;
                ++connections_;
                if (keepsOld_) {
                    socket_.cancel(error);
                    old_.push_back(std::move(socket_));
                }
                socket_ = std::move(socket);
                framer_ = JsonFramer();
                read();
                accept();
            });
    }

    void read() {
        std::span<char> const room = framer_.prepare(65536);
        socket_.async_read_some(asio::buffer(room.data(), room.size()),
                                [this](std::error_code error, std::size_t size) {
                                    if (error) return;
                                    framer_.commit(size);
                                    while (auto const text = framer_.next()) {
                                        received_.push_back(Json::parse(*text));
                                        if (script_) script_(*this, received_.back());
                                    }
                                    if (socket_.is_open()) read();
                                });
    }

    Script script_;
    std::string directory_;
    asio::local::stream_protocol::acceptor acceptor_;
    asio::local::stream_protocol::socket socket_;
    JsonFramer framer_;
    std::vector<Json> received_;
    int connections_ = 0;
    bool keepsOld_ = false;
    std::vector<asio::local::stream_protocol::socket> old_;
};

}  // namespace Ovsdb

#endif
