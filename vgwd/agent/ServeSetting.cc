#include <vgwd/agent/ServeSetting.h>

#include <vgwd/agent/RunDirectory.h>

#include <grp.h>
#include <unistd.h>
#include <cerrno>
#include <charconv>
#include <stdexcept>
#include <vector>

namespace Vgwd {
namespace {

std::optional<gid_t> groupOf(std::string const& name) {
    if (name.empty()) return std::nullopt;
    group found{};
    group* result = nullptr;
    std::vector<char> room(4096);
    int failure = 0;
    while ((failure = ::getgrnam_r(name.c_str(), &found, room.data(), room.size(), &result)) ==
           ERANGE)
        room.resize(room.size() * 2);
    gid_t number = 0;
    auto const [end, error] = std::from_chars(name.data(), name.data() + name.size(), number);
    bool const isNumber = error == std::errc() && end == name.data() + name.size();
    bool const isFound = failure == 0 && result != nullptr;
    if (!isFound && isNumber) return number;
    if (!isFound) throw std::runtime_error("there is no group " + name);
    return found.gr_gid;
}

ListenAddress ownSocket(Options const& options) {
    ListenAddress address;
    address.path = runFile(options.runDirectory, "vgwd.sock");
    return address;
}

}  // namespace

ServeOptions serveOptionsOf(Options const& options) {
    ServeOptions serve;
    serve.listen = options.listen;
    if (serve.listen.empty()) serve.listen.push_back(ownSocket(options));
    serve.runDirectory = options.runDirectory;
    serve.tls = options.tls;
    serve.access.owner = ::geteuid();
    serve.access.readGroup = groupOf(options.readGroup);
    serve.access.writeGroup = groupOf(options.writeGroup);
    serve.access.tcpReads = options.tcpReads;
    serve.access.writerNames.insert(options.writerNames.begin(), options.writerNames.end());
    serve.times.silence = std::chrono::milliseconds(static_cast<long>(options.peerTimeout * 1000));
    return serve;
}

}  // namespace Vgwd
