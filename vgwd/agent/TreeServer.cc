#include <vgwd/agent/TreeServer.h>

#include <utility>

namespace Vgwd {

TreeServer::TreeServer(asio::io_context& loop, StateTree& tree, Ovsdb::LogSink log)
    : tree_(tree),
      server_(loop, tree.root(), static_cast<ServerListener&>(*this), std::move(log)),
      books_(loop, tree.sessions(), server_) {}

std::string TreeServer::whyReadOnly(std::string const& path, Qor::Entity& entity) {
    if (&entity == tree_.cliConfig().ptr()) return {};
    return path + " may only be read";
}

// All else is kept by the agent: what an operation did there would not come from the database.
std::string TreeServer::whyNotCalled(std::string const& path, Qor::Entity& entity) {
    if (&entity == tree_.cliConfig().ptr()) return {};
    return "the operations of " + path + " are the agent's own";
}

void TreeServer::onWritten(Peer const&, Qor::Entity&, Qor::AttributeId) {}

void TreeServer::onTraffic(Peer const&) { books_.handleTraffic(); }

}  // namespace Vgwd
