#ifndef OVSDB_CLIENT_CLUSTER_PROGRESS_H
#define OVSDB_CLIENT_CLUSTER_PROGRESS_H

// How far a cluster's log has been seen, so that a member which is behind that is not taken for the
// cluster: its copy would undo what was told already.
//
// A member tells its log's index when it is connected to, and when it is asked. In between every
// transaction that it tells is another entry of the log, at the least: those are counted from the
// connection's beginning. They are not counted from an answer, which may be ahead of the updates
// that are still to come. So what is seen here is never more than there is, and a member that has
// all is never turned away.

#include <ovsdb/client/ServerDatabases.h>

#include <algorithm>
#include <cstdint>
#include <string>

namespace Ovsdb {

class ClusterProgress {
  public:
    /// The furthest that was seen of that cluster; 0 of another one.
    std::int64_t seen(std::string const& clusterId) const {
        return clusterId == clusterId_ ? seen_ : 0;
    }

    /// A connection to a member begins.
    void memberIs(ServerDatabase const& member) {
        seen_ = seen(member.clusterId);
        clusterId_ = member.clusterId;
        counted_ = member.index.value_or(0);
        reached(counted_);
    }
    /// It told another transaction.
    void transactionIs() { reached(++counted_); }
    /// It was asked how far its log has come.
    void reached(std::int64_t index) { seen_ = std::max(seen_, index); }

  private:
    std::string clusterId_;
    std::int64_t seen_ = 0;
    std::int64_t counted_ = 0;
};

}  // namespace Ovsdb

#endif
