#include <vgwctl/command/Context.h>

namespace Vgwctl {
namespace {

Deadline deadlineOf(Options const& options) {
    return options.timeout > 0 ? Deadline::after(Deadline::Seconds(options.timeout)) : Deadline();
}

Target targetOf(Options const& options, std::string const& remote, char const* said) {
    try {
        Target target{Ovsdb::parseRemote(remote), options.tls};
        if (target.remote.kind == Ovsdb::Remote::Kind::ssl && !options.tls.complete())
            throw Failure(target.remote.text() +
                          " needs a private key (-p), a certificate (-c) and an authority (-C)");
        return target;
    } catch (Ovsdb::RemoteError const& e) {
        throw Failure(said + std::string(e.what()));
    }
}

}  // namespace

Context::Context(Options const& options, std::ostream& out)
    : options_(options),
      out_(out),
      deadline_(deadlineOf(options)),
      target_(targetOf(options, options.db, "--db: ")),
      copy_(options.path) {}

Target Context::targetAt(std::string const& remote) const { return targetOf(options_, remote, ""); }

Qor::Entity& Context::root() {
    if (!reading_) {
        reading_.emplace(target_, deadline_);
        copy_.mountOn(*reading_, deadline_);
    }
    return copy_.root();
}

Qor::Entity::Ptr Context::writable(std::string const& path) {
    writing_.emplace(target_, deadline_);
    return writing_->mount(path, true, nullptr, deadline_);
}

Connection& Context::calling() {
    writing_.emplace(target_, deadline_);
    return *writing_;
}

// The agent sends what has changed before it answers.
void Context::finish() {
    if (!writing_) return;
    writing_->flush(deadline_);
    writing_.reset();
    if (reading_) reading_->flush(deadline_);
}

}  // namespace Vgwctl
