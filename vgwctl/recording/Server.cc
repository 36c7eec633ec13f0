#include <vgwctl/recording/Server.h>

#include <qor/attrlog/session/Session.h>

#include <cerrno>
#include <vector>

namespace Vgwctl {
namespace {

// When no more can be let in, for want of descriptors or memory.
constexpr Deadline::Seconds acceptPause{0.1};

}  // namespace

using Qor::NboAttrLog::Session;

class Server::Reader {
  public:
    Reader(Descriptor socket, Qor::Entity::Ptr const& root)
        : socket_(std::move(socket)),
          transport_(socket_.get()),
          session_(config(), transport_, root) {}

    bool service() {
        session_.service();
        return session_.closed().length() == 0;
    }
    pollfd wanted() const {
        int const in = session_.hasRoom() ? POLLIN : 0;
        return {socket_.get(), static_cast<short>(in | (session_.wantsWrite() ? POLLOUT : 0)), 0};
    }

  private:
    static Session::Config config() {
        Session::Config config;
        config.side = Qor::NboAttrLog::Demuxer::Side::accepting;
        return config;
    }

    Descriptor socket_;
    Qor::NboAttrLog::FdTransport transport_;
    Session session_;
};

Server::Server(std::string path, Copy const& copy) : copy_(copy), listening_(std::move(path)) {}

Server::~Server() = default;

void Server::accept() {
    for (;;) {
        Descriptor socket = listening_.accept();
        isPaused_ = socket.get() < 0 && errno != EAGAIN && errno != EWOULDBLOCK;
        if (isPaused_) pausedUntil_ = Deadline::after(acceptPause);
        if (socket.get() < 0) return;
        Qor::Entity* top = copy_.entity().ptr();
        while (top != nullptr && top->qorParent() != nullptr) top = top->qorParent();
        readers_.push_back(std::make_unique<Reader>(std::move(socket), Qor::Entity::Ptr(top)));
    }
}

void Server::step(Deadline const& until, pollfd const& other) {
    // What has changed since is sent before anything is waited for.
    std::erase_if(readers_, [](auto const& reader) { return !reader->service(); });
    isPaused_ = isPaused_ && !pausedUntil_.isOver();
    std::vector<pollfd> wanted{{isPaused_ ? -1 : listening_.get(), POLLIN, 0}, other};
    for (auto const& reader : readers_) wanted.push_back(reader->wanted());
    Deadline const limit = isPaused_ ? until.orAt(pausedUntil_) : until;
    ::poll(wanted.data(), wanted.size(), limit.milliseconds());
    if (!isPaused_) accept();
    std::erase_if(readers_, [](auto const& reader) { return !reader->service(); });
}

}  // namespace Vgwctl
