#ifndef OVSDB_CLIENT_SERVER_DATABASES_H
#define OVSDB_CLIENT_SERVER_DATABASES_H

// What a server tells of its own databases in table Database of the database _Server
// (ovsdb-server(5)): whether it serves ours, and, in a cluster, whether it is connected to it and
// how far its log has come. A member that is cut off, or that lags behind what was already seen,
// would show an older database than another one did.

#include <simdjson.h>

#include <cstdint>
#include <map>
#include <optional>
#include <string>

namespace Ovsdb {

struct ServerDatabase {
    std::string name;
    std::string model;
    bool connected = false;
    bool leader = false;
    std::optional<std::int64_t> index;  ///< of the log, in a cluster
    std::string clusterId;              ///< empty outside a cluster

    bool clustered() const { return model == "clustered"; }
};

class ServerDatabases {
  public:
    /// Takes the <table-updates> of a monitor of _Server, of either form. What can't be read is
    /// left out.
    void apply(simdjson::dom::element tableUpdates);
    /// Null when the server doesn't tell of that database.
    ServerDatabase const* find(std::string const& name) const;
    void clear() { rows_.clear(); }

  private:
    std::map<std::string, ServerDatabase> rows_;  // by row
};

}  // namespace Ovsdb

#endif
