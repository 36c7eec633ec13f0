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

class Connection::TappedTransport final : public Qor::NboAttrLog::Transport {
  public:
    TappedTransport(Transport& inner, ByteTap* tap) : inner_(inner), tap_(tap) {}

    std::size_t write(std::string_view bytes) override { return inner_.write(bytes); }
    std::size_t read(std::span<unsigned char> room) override {
        std::size_t const count = inner_.read(room);
        if (tap_ != nullptr && count != 0) tap_->heard(room.first(count));
        return count;
    }
    Qor::String8 closed() const override { return inner_.closed(); }

  private:
    Transport& inner_;
    ByteTap* const tap_;
};

Connection::Connection(Target const& target, Deadline const& deadline, ByteTap* tap)
    : remote_(target.remote.text()), socket_(connectTo(target.remote, deadline)) {
    if (target.remote.kind == Ovsdb::Remote::Kind::ssl) {
        auto tls = std::make_unique<TlsTransport>(socket_.get(), target.tls);
        tls_ = tls.get();
        transport_ = std::move(tls);
    } else {
        transport_ = std::make_unique<Qor::NboAttrLog::FdTransport>(socket_.get());
    }
    if (tap != nullptr) tap->connected();
    tapped_ = std::make_unique<TappedTransport>(*transport_, tap);
    session_.emplace(sessionConfig(), *tapped_, nullptr);
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

void Connection::serve() {
    session_->service();
    if (session_->closed().length() != 0)
        throw LinkFailure(remote_ + ": " + std::string(session_->closed().view()));
}

void Connection::step(Deadline const& until) {
    Qor::U64 const before = session_->counters().bytesIn;
    serve();
    // What is waited for may have come already.
    if (session_->counters().bytesIn != before) return;
    await(socket_, awaited().events, until);
    serve();
}

pollfd Connection::awaited() const {
    bool const isWriting = session_->wantsWrite() || (tls_ != nullptr && tls_->wantsWrite());
    return {socket_.get(), static_cast<short>(POLLIN | (isWriting ? POLLOUT : 0)), 0};
}

Qor::Entity::Ptr Connection::mount(std::string_view path, bool isWritable,
                                   Qor::Entity::Ptr const& copy, Deadline const& deadline) {
    entity_ = nullptr;
    isSynced_ = false;
    refusal_.reset();
    session_->mount(Qor::String8(path), isWritable, copy);
    MountProgress progress(path);
    while (!isSynced_ && !refusal_) {
        deadline.check("the agent has not sent its whole state");
        step(deadline.orAfter(MountProgress::interval));
        progress.tell(session_->counters());
    }
    if (refusal_) {
        bool const isAbsent = refusal_->ends_with("does not exist");
        throw Failure(*refusal_, isAbsent ? ExitCode::absent : ExitCode::fatal);
    }
    return entity_;
}

std::string Connection::call(std::string_view path, std::string_view operation,
                             std::vector<std::string> const& arguments, Deadline const& deadline) {
    returned_.reset();
    std::vector<Qor::String8> texts;
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
