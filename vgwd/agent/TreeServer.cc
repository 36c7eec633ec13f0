#include <vgwd/agent/TreeServer.h>

#include <cstdlib>
#include <utility>

namespace Vgwd {
namespace {

void copyPaths(Vgw::Config const& from, Vgw::Config& to) {
    to.ovsdbRunDirIs(from.ovsdbRunDir());
    to.ovsdbLogDirIs(from.ovsdbLogDir());
    to.ovsdbCertDirIs(from.ovsdbCertDir());
    to.ovsdbBackupDirIs(from.ovsdbBackupDir());
    to.ovsdbDataDirIs(from.ovsdbDataDir());
    to.ovsdbSocketFileIs(from.ovsdbSocketFile());
    to.ovsdbCertFileIs(from.ovsdbCertFile());
    to.ovsdbPidFileIs(from.ovsdbPidFile());
}

bool isLimit(Qor::AttributeId attribute) {
    return attribute == Vgw::Config::RestartSyncLimitAttr::id ||
           attribute == Vgw::Config::RestartSyncShortAttr::id;
}

}  // namespace

TreeServer::TreeServer(asio::io_context& loop, StateTree& tree, DatabaseSession& database,
                       Ovsdb::LogSink log)
    : tree_(tree),
      database_(database),
      paths_(Vgw::configFactory("paths")),
      books_(loop, tree.sessions(), server_),
      server_(loop, tree.root(), static_cast<ServerListener&>(*this), std::move(log)) {}

void TreeServer::start(ServeOptions options) {
    copyPaths(*tree_.config(), *paths_);
    server_.start(std::move(options));
}

// All else is kept by the agent: what an operation did there would not come from the database.
std::string TreeServer::whyNotCalled(std::string const& path, Qor::Entity& entity) {
    if (&entity == tree_.cliConfig().ptr()) return {};
    return "the operations of " + path + " are the agent's own";
}

std::string TreeServer::whyReadOnly(std::string const& path, Qor::Entity& entity) {
    bool const isWritable = &entity == tree_.cliConfig().ptr() || &entity == tree_.config().ptr() ||
                            database_.writer().open(entity);
    return isWritable ? std::string() : path + " may only be read";
}

std::size_t TreeServer::rowsWaiting(std::string const& identity) {
    return database_.writer().newRowsOf(identity);
}

void TreeServer::onWritten(Peer const& peer, Qor::Entity& entity, Qor::AttributeId attribute) {
    if (&entity == tree_.config().ptr()) return keepPaths(peer, std::abs(attribute));
    database_.writer().handleWritten(peer.identity().name, entity, attribute);
}

void TreeServer::keepPaths(Peer const& peer, Qor::AttributeId attribute) {
    if (isLimit(attribute)) return;
    copyPaths(*paths_, *tree_.config());
    database_.onUndone(
        "/vgw/config", peer.identity().name,
        std::string(tree_.config()->attributeString(attribute).view()) + " may not be written");
}

void TreeServer::onTraffic(Peer const&) { books_.handleTraffic(); }

}  // namespace Vgwd
