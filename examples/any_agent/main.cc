// Prints the state of any agent: any_agent SOCKET PATH. It is linked with the framework and the
// network values alone, and knows no class: what the agent has it learns from the agent.

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>

#include <cstring>
#include <iostream>
#include <string>

#include <kelp/IpAddr.h>
#include <qor/attrlog/session/Session.h>
#include <qor/generic/GenericIf.h>

namespace {

using Qor::GenericIf;
using Qor::NboAttrLog::MountId;
using Qor::NboAttrLog::Session;

struct Heard : Qor::NboAttrLog::SessionListener {
    void onSynced(MountId) override { isWhole = true; }
    void onRefused(MountId, Qor::String8 const& reason) override { refused = reason; }
    bool isWhole = false;
    Qor::String8 refused;
};

int connectTo(char const* path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, path, sizeof address.sun_path - 1);
    int const fd = socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK, 0);
    return connect(fd, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0 ? fd : -1;
}

void print(std::string const& path, GenericIf::Ptr const& at);

void printAttribute(std::string const& path, GenericIf::Ptr const& at,
                    Qor::QorAttr const& attribute) {
    bool const isBelow =
        attribute.flags().isInstantiating() || at->fwkType()->fullName() == "Qor::Dir";
    auto const put = [&](std::string const& where, GenericIf::Ptr const& value) {
        if (isBelow && value->entity()) return print(where, value);
        std::cout << where << " = " << value->strRep() << '\n';
    };
    if (!attribute.flags().isCollection()) return put(path, at->attributeOp(attribute.id()));
    for (auto step = at->attributeIteratorConst(attribute.id()); step; ++step) {
        put(path + "[" + step.key()->strRep().charPtr() + "]", step.value());
    }
}

void print(std::string const& path, GenericIf::Ptr const& at) {
    std::cout << path << " : " << at->fwkType()->fullName() << '\n';
    for (auto const& attribute : at->fwkType()->attributes()) {
        bool const isOwn = attribute->id() >= 256 && !attribute->introspection().isFunction();
        if (isOwn) printAttribute(path + "/" + attribute->name().charPtr(), at, *attribute);
    }
}

}  // namespace

int main(int count, char** words) {
    int const fd = count == 3 ? connectTo(words[1]) : -1;
    // To have the network values in the process is enough; to use one keeps their library linked.
    if (fd < 0 || !Kelp::IpAddr::_fwkType()) {
        std::cerr << "usage: any_agent SOCKET PATH\n";
        return 1;
    }
    Qor::NboAttrLog::FdTransport transport(fd);
    Session::Config config;
    config.takesTypes = true;
    Session session(config, transport, nullptr);
    Heard heard;
    session.listenerIs(&heard);
    MountId const mount = session.mount(words[2], false);
    while (session.closed().length() == 0 && heard.refused.length() == 0 && !heard.isWhole) {
        session.service();
        pollfd waiting{fd, static_cast<short>(POLLIN | (session.wantsWrite() ? POLLOUT : 0)), 0};
        poll(&waiting, 1, session.wantsRead() || heard.isWhole ? 0 : 10'000);
    }
    auto const copy = session.mounted(mount);
    if (!heard.isWhole || !copy) {
        std::cerr << "any_agent: " << heard.refused << session.closed() << '\n';
        return 1;
    }
    print(words[2], copy->fwkType()->genericIf_(copy.ptr(), true));
    return 0;
}
