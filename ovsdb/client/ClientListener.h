#ifndef OVSDB_CLIENT_CLIENT_LISTENER_H
#define OVSDB_CLIENT_CLIENT_LISTENER_H

// What a client tells whoever keeps it, on the event loop's thread.

#include <ovsdb/rpc/RpcError.h>
#include <ovsdb/schema/MonitorPlan.h>
#include <ovsdb/store/RowStore.h>

#include <string>
#include <vector>

namespace Ovsdb {

/// Following: the rows are in step with all that the schema has of the mirrored tables. With the
/// database itself if that is all (MonitorPlan::gap()).
enum class ClientState { disconnected, connecting, copying, following };

/// The requests that are about the database's rows. The client's own questions (schema, echo, the
/// server's table of databases) are not told.
enum class RequestKind { transact, monitor, cancel };

class ClientListener {
  public:
    virtual ~ClientListener() = default;
    /// Before the rows: what the server's schema has of the mirrored tables.
    virtual void onPlan(MonitorPlan const& plan) = 0;
    /// The store already holds the new rows; the changes live until this returns.
    virtual void onChanges(std::vector<RowChange> const& changes) = 0;
    /// `reason` tells why, on the way to disconnected or back to copying.
    virtual void onState(ClientState state, std::string const& reason) = 0;
    /// A request goes out. `detail` says what it is about, the most telling part first.
    virtual void onRequest(RequestKind kind, std::string const& detail) = 0;
    /// How it ended, once for each request; null: well. A failure is told before onState() tells
    /// what follows from it, a success behind that. A request that was pending when the connection
    /// ended has failed (Kind::lost).
    virtual void onOutcome(RequestKind kind, std::string const& detail, RpcError const* error) = 0;
    /// The server has not answered for longer than it should (the rows may be out of step), or
    /// speaks again (they are not). A connection that ends says so by onState() alone.
    virtual void onSilent(bool silent) = 0;
    /// All remotes were tried once without success.
    virtual void onRoundFailed(std::string const& reason) = 0;
};

}  // namespace Ovsdb

#endif
