#include <vgwd/agent/TreeServer.h>

#include <utility>

namespace Vgwd {

TreeServer::TreeServer(asio::io_context& loop, StateTree& tree, Ovsdb::LogSink log)
    : tree_(tree),
      server_(loop, tree.root(), static_cast<ServerListener&>(*this), std::move(log)) {}

std::string TreeServer::whyReadOnly(std::string const& path, Qor::Entity& entity) {
    if (&entity == tree_.cliConfig().ptr()) return {};
    return path + " may only be read";
}

void TreeServer::onWritten(Peer const&, Qor::Entity&, Qor::AttributeId) {}

void TreeServer::onTraffic(Peer const&) {}

}  // namespace Vgwd
