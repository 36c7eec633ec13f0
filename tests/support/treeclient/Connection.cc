#include <tests/support/treeclient/Connection.h>

#include <qor/tree/EntityPath.h>
#include <vgw/OvsdbDataTypes.h>

#include <arpa/inet.h>
#include <fcntl.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>
#include <algorithm>
#include <cstdio>
#include <cstring>

namespace TreeClient {
namespace {

using Qor::NboAttrLog::MountId;

int connectUnix(std::string const& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, path.c_str(), sizeof address.sun_path - 1);
    int const fd = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (::connect(fd, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0) return fd;
    ::close(fd);
    return -1;
}

int connectTcp(std::string const& port) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<std::uint16_t>(std::stoi(port)));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    int const fd = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (::connect(fd, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0) return fd;
    ::close(fd);
    return -1;
}

// Rows are not made by their class's name alone; whoever mounts one brings it along.
Qor::Ptr<Qor::Entity> newRow(std::string const& path) {
    auto const slash = path.rfind('/');
    Qor::Name const name = std::string_view(path).substr(slash + 1);
    std::string const parent = path.substr(0, slash);
    if (parent.ends_with("/physicalPort")) return Qor::make<Vgw::PhysicalPort>(name);
    if (parent.ends_with("/physicalSwitchRaw")) return Qor::make<Vgw::PhysicalSwitch>(name);
    if (parent.ends_with("/logicalBindingStats")) return Qor::make<Vgw::LogicalBindingStats>(name);
    return nullptr;
}

}  // namespace

Connection::Connection(std::string address, bool reconnects, bool isQuiet)
    : address_(std::move(address)), reconnects_(reconnects), isQuiet_(isQuiet) {}

void Connection::say(std::string const& line) const {
    if (!isQuiet_) std::puts(line.c_str());
}

void Connection::add(std::string path, bool isWritable) {
    auto const row = newRow(path);
    mounts_.push_back({std::move(path), isWritable, row, 0, false});
    if (session_) ask(mounts_.back());
}

bool Connection::remove(std::string const& path) {
    auto const found = std::find_if(mounts_.begin(), mounts_.end(),
                                    [&](Mount const& mount) { return mount.path == path; });
    if (found == mounts_.end()) return false;
    session_->unmount(found->id);
    mounts_.erase(found);
    return true;
}

void Connection::ask(Mount& mount) {
    mount.isSynced = false;
    mount.id = session_->mount(std::string_view(mount.path), mount.isWritable, mount.copy);
}

bool Connection::connect() {
    bool const isPort = address_.find_first_not_of("0123456789") == std::string::npos;
    socket_ = isPort ? connectTcp(address_) : connectUnix(address_);
    if (socket_ < 0) return false;
    ::fcntl(socket_, F_SETFL, O_NONBLOCK);
    transport_.emplace(socket_);
    session_.emplace(Qor::NboAttrLog::Session::Config{}, *transport_, nullptr);
    session_->listenerIs(this);
    for (Mount& mount : mounts_) ask(mount);
    say("connected");
    return true;
}

void Connection::drop() {
    session_.reset();
    transport_.reset();
    if (socket_ >= 0) ::close(socket_);
    socket_ = -1;
}

bool Connection::keep() { return session_ || connect() || reconnects_; }

void Connection::service() {
    if (!session_) return;
    session_->service();
    if (session_->closed().length() == 0) return;
    say("closed: " + std::string(session_->closed().view()));
    for (Mount& mount : mounts_) mount.isSynced = false;
    drop();
    if (!reconnects_) std::exit(3);
}

bool Connection::isSynced() const {
    return session_ && std::all_of(mounts_.begin(), mounts_.end(),
                                   [](Mount const& mount) { return mount.isSynced; });
}

Qor::NboAttrLog::Session::Counters Connection::counters() const {
    return session_ ? session_->counters() : Qor::NboAttrLog::Session::Counters{};
}

Qor::Ptr<Qor::Entity> Connection::at(std::string const& path) const {
    for (Mount const& mount : mounts_) {
        bool const isBelow = mount.copy && path.starts_with(mount.path);
        if (!isBelow) continue;
        Qor::Ptr<Qor::Entity> entity = mount.copy;
        if (path == mount.path) return entity;
        auto const elements = Qor::pathElements(std::string_view(path).substr(mount.path.size()));
        for (std::size_t next = 0; entity && next < elements.size();) {
            std::size_t used = 0;
            entity = entity->qorPathStep(elements.data() + next, elements.size() - next, &used);
            next += used;
        }
        if (entity) return entity;
    }
    return nullptr;
}

Mount* Connection::mountOf(MountId id) {
    auto const found = std::find_if(mounts_.begin(), mounts_.end(),
                                    [&](Mount const& mount) { return mount.id == id; });
    return found == mounts_.end() ? nullptr : &*found;
}

void Connection::onMounted(MountId id, Qor::Ptr<Qor::Entity> const& entity) {
    Mount* const mount = mountOf(id);
    if (mount == nullptr) return;
    mount->copy = entity;
    say("mounted " + mount->path);
}

void Connection::onSynced(MountId id) {
    Mount* const mount = mountOf(id);
    if (mount == nullptr) return;
    mount->isSynced = true;
    say("synced " + mount->path);
}

void Connection::onRefused(MountId id, Qor::String8 const& reason) {
    Mount* const mount = mountOf(id);
    if (mount != nullptr) say("refused " + mount->path + ": " + std::string(reason.view()));
}

void Connection::onPong(Qor::Seconds) { say("pong"); }

}  // namespace TreeClient
