#ifndef VGWD_AGENT_SESSION_BOOKS_H
#define VGWD_AGENT_SESSION_BOOKS_H

// Keeps a Vgw::OvsdbSessionStatus: each request that the client makes, how each ended, and the
// state of the session.
//
// sessionState says whether the mirror is in step: stateConnected when it is, stateDisconnected
// when it is not. The first whole copy after the start is reported as stateBackupDbSynced, once,
// and the state is stateConnected from then on. A loss is not reported at once: a server that
// restarts is back within a moment, and who follows the state wants to hear of outages. So the
// state stays what it was until the mirror is in step again, or until a whole copy has been awaited
// for Config::restartSyncShort seconds, or restartSyncLimit seconds when there was none before;
// then stateDisconnected is reported, as a monitor that failed. 0 reports it at once. The limits
// are read whenever they change. What the tree tells of its entries (stale) is not delayed.
//
// A request that fails while the session goes on leaves the state alone: the accounting marks it as
// disconnected, and it is set back to what holds before anything else happens. So it is when a
// transaction goes well while the schema lacks something: that state is stateDisconnected.

#include <ovsdb/client/ClientListener.h>
#include <ovsdb/rpc/Tether.h>
#include <vgw/agent/Config.h>
#include <vgw/agent/OvsdbSessionStatus.h>

#include <asio/io_context.hpp>
#include <asio/steady_timer.hpp>

#include <chrono>
#include <string>

namespace Vgwd {

class SessionBooks {
  public:
    SessionBooks(asio::io_context& loop, Vgw::OvsdbSessionStatus::Ptr session,
                 Vgw::Config::Ptr config);
    ~SessionBooks();

    void request(Ovsdb::RequestKind kind, std::string const& detail);
    /// Null: it went well. A monitor that goes well brings the mirror in step.
    void outcome(Ovsdb::RequestKind kind, std::string const& detail, Ovsdb::RpcError const* error);

    /// A monitor went well, but the schema lacks what `gap` names: the mirror is not in step, and
    /// that is reported at once, since waiting mends no schema.
    void incomplete(std::string const& detail, std::string const& gap);

    /// The mirror is not in step, or no longer: a whole copy is awaited from now on, if it was not
    /// already.
    void awaitCopy(std::string const& reason);
    /// The mirror turned out to be in step all the time.
    void resume();
    /// The session was ended on purpose.
    void close();

  private:
    class LimitReactor;

    void rearm();
    void reportOverdue();
    void stateIs(Vgw::SessionState state);

    asio::steady_timer overdue_;
    Ovsdb::Tether tether_;
    Vgw::OvsdbSessionStatus::Ptr session_;
    Vgw::Config::Ptr config_;
    Vgw::Config::NotifieeConst::Ptr limits_;
    std::chrono::steady_clock::time_point since_;  // when awaiting began
    std::string reason_;
    bool awaiting_ = false;
    bool reported_ = false;      // that it takes too long
    bool isIncomplete_ = false;  // the last copy was of a part
    bool synced_ = false;        // there was a whole copy once
};

}  // namespace Vgwd

#endif
