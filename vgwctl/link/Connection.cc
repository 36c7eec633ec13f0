#include <vgwctl/link/Connection.h>

#include <vgwctl/link/MountProgress.h>

#include <qor/tree/EntityPath.h>

namespace Vgwctl {

Qor::NboAttrLog::Session::Config sessionConfig() {
    Qor::NboAttrLog::Session::Config config;
    config.name = Qor::Name("vgwctl");
    config.takesTypes = true;
    return config;
}

// Hands on what is read, and knows when the socket is to be waited for to take bytes.
class Connection::TappedTransport final : public Qor::NboAttrLog::Transport {
  public:
    TappedTransport(std::unique_ptr<Transport> inner, TlsTransport const* tls, ByteTap* tap)
        : inner_(std::move(inner)), tls_(tls), tap_(tap) {}

    std::size_t write(std::string_view bytes) override {
        std::size_t const count = inner_->write(bytes);
        isFull_ = count < bytes.size();
        return count;
    }
    std::size_t read(std::span<unsigned char> room) override {
        std::size_t const count = inner_->read(room);
        if (tap_ != nullptr && count != 0) tap_->heard(room.first(count));
        return count;
    }
    Qor::String8 closed() const override { return inner_->closed(); }
    // Of TLS, what is not taken may wait for bytes of the peer's, and a socket that could take some
    // would wake whoever waits without end.
    bool isBlocked() const { return tls_ != nullptr ? tls_->wantsWrite() : isFull_; }

  private:
    std::unique_ptr<Transport> const inner_;
    TlsTransport const* const tls_;  // the inner one, if it is one
    ByteTap* const tap_;
    bool isFull_ = false;
};

Connection::Connection(Target const& target, Deadline const& deadline)
    : Connection(target, connectTo(target.remote, deadline), nullptr) {}

Connection::Connection(Target const& target, Descriptor socket, ByteTap* tap)
    : remote_(target.remote.text()), socket_(std::move(socket)) {
    std::unique_ptr<Qor::NboAttrLog::Transport> transport;
    TlsTransport const* tls = nullptr;
    if (target.remote.kind == Ovsdb::Remote::Kind::ssl) {
        auto made = std::make_unique<TlsTransport>(socket_.get(), target.tls);
        tls = made.get();
        transport = std::move(made);
    } else {
        transport = std::make_unique<Qor::NboAttrLog::FdTransport>(socket_.get());
    }
    if (tap != nullptr) tap->connected();
    transport_ = std::make_unique<TappedTransport>(std::move(transport), tls, tap);
    session_.emplace(sessionConfig(), *transport_, nullptr);
    session_->listenerIs(this);
}

Connection::~Connection() = default;

void Connection::onMounted(MountId, Qor::Entity::Ptr const& entity) { entity_ = entity; }

void Connection::onSynced(MountId) { isSynced_ = true; }

void Connection::onRefused(MountId, Qor::String8 const& reason) {
    refusal_ = std::string(reason.view());
}

void Connection::onPong(Qor::Seconds) { hasPong_ = true; }

void Connection::onReturned(Qor::NboAttrLog::CallId, bool isDone, Qor::String8 const& text) {
    returned_.emplace(isDone, std::string(text.view()));
}

void Connection::onDigested(Qor::NboAttrLog::DigestPage const& page,
                            Qor::NboAttrLog::StateDigest const& digest, Qor::String8 const& fault) {
    hasDigest_ = true;
    Qor::Entity::Ptr const entity = Qor::entityAt(page.path);
    if (!fault.empty() || !entity) return;
    digests_ = {digest, Qor::NboAttrLog::stateDigest(*entity, page)};
}

bool Connection::serve() {
    auto const moved = [&] {
        auto const counters = session_->counters();
        return counters.bytesIn + counters.bytesOut;
    };
    Qor::U64 const before = moved();
    session_->service();
    if (session_->closed().length() != 0)
        throw LinkFailure(remote_ + ": " + std::string(session_->closed().view()));
    isMoving_ = moved() != before;
    return isMoving_;
}

void Connection::step(Deadline const& until) {
    // What is waited for may have come already.
    if (serve()) return;
    await(awaited(), until);
    serve();
}

pollfd Connection::awaited() const {
    int const in = session_->hasRoom() ? POLLIN : 0;
    return {socket_.get(), static_cast<short>(in | (transport_->isBlocked() ? POLLOUT : 0)), 0};
}

// A turn of the session's has an end though more is at hand, of which the socket may know nothing:
// TLS has read it already.
bool Connection::isDue() const {
    bool const isFlowing = session_->wantsWrite() && !transport_->isBlocked();
    return isMoving_ && (session_->wantsRead() || isFlowing);
}

void Connection::beginMount(std::string_view path, bool isWritable, Qor::Entity::Ptr const& copy) {
    entity_ = nullptr;
    isSynced_ = false;
    refusal_.reset();
    session_->mount(Qor::String8(path), isWritable, copy);
}

Qor::Entity::Ptr Connection::mounted() const {
    if (refusal_) {
        bool const isAbsent = refusal_->ends_with("does not exist");
        throw Failure(*refusal_, isAbsent ? ExitCode::absent : ExitCode::fatal);
    }
    return isSynced_ ? entity_ : nullptr;
}

Qor::Entity::Ptr Connection::mount(std::string_view path, bool isWritable,
                                   Qor::Entity::Ptr const& copy, Deadline const& deadline) {
    beginMount(path, isWritable, copy);
    MountProgress progress(path);
    while (!mounted()) {
        deadline.check("the agent has not sent its whole state");
        step(deadline.orAfter(MountProgress::interval));
        progress.tell(session_->counters());
    }
    return mounted();
}

std::string Connection::call(std::string_view path, std::string_view operation,
                             std::vector<std::string> const& arguments, Deadline const& deadline) {
    returned_.reset();
    std::vector<Qor::String8> texts;
    texts.reserve(arguments.size());
    for (std::string const& argument : arguments) texts.emplace_back(std::string_view(argument));
    session_->call(Qor::String8(path), Qor::String8(operation), texts);
    while (!returned_) {
        deadline.check("the agent has not answered the call");
        step(deadline);
    }
    if (returned_->first) return returned_->second;
    bool const isAbsent = returned_->second.ends_with("does not exist");
    throw Failure(returned_->second, isAbsent ? ExitCode::absent : ExitCode::fatal);
}

std::optional<Connection::Digests> Connection::digest(Qor::NboAttrLog::DigestPage const& page,
                                                      Deadline const& deadline) {
    hasDigest_ = false;
    digests_.reset();
    session_->askForDigest(page);
    while (!hasDigest_) {
        deadline.check("the agent has not sent a digest");
        step(deadline);
    }
    return digests_;
}

// The agent answers a ping behind all that it has read before.
void Connection::flush(Deadline const& deadline) {
    while (session_->demuxer().owes()) {
        deadline.check("the agent does not take the change");
        step(deadline);
    }
    hasPong_ = false;
    session_->ping();
    while (!hasPong_) {
        deadline.check("the agent has not confirmed the change");
        step(deadline);
    }
}

}  // namespace Vgwctl
