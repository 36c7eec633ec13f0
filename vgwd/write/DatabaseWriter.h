#ifndef VGWD_WRITE_DATABASE_WRITER_H
#define VGWD_WRITE_DATABASE_WRITER_H

// Brings what peers write in the tree into the database: columns of rows (WrittenValue.h), and the
// local MAC rows, which peers also make and remove.
//
// A write is gathered for a moment, so that attributes that are set together go together, and sent
// as one transaction a row, one at a time for each row. Members of sets and maps are kept and sent
// one by one (RowChanges.h). What a row holds beside the database meanwhile is what the peer made
// of it, so that whatever a peer does to it afterwards is a change, and heard: the mirror asks for
// it wherever it writes such a row. When the database refuses it, or when it may not be written at
// all, the row is made again what the database says, and why is told in the report and the log. A
// MAC row that a peer makes stands under the peer's name until the database has it, and under its
// UUID from then on. What is written while the mirror is not in step waits until it is.
//
// What was sent when the connection was lost may have been carried out, or may still be. It is sent
// again: all transactions but one may be carried out twice. A MAC row is made under a UUID of our
// own, which there can't be twice; a server that can't be told one is not asked again for a row
// that is there. As some transaction may be why the connection was lost, those go one by one then,
// and one that is lost each time is given up.
//
// Whatever changes the tree by itself says so by Working, so that it is not taken for a write.

#include <ovsdb/client/Client.h>
#include <ovsdb/mirror/Mirror.h>
#include <ovsdb/rpc/Tether.h>
#include <qor/tree/Dir.h>
#include <vgwd/write/PendingWrite.h>
#include <vgwd/write/RowMembers.h>
#include <vgwd/write/WrittenValue.h>

#include <asio/io_context.hpp>
#include <asio/steady_timer.hpp>

#include <cstddef>
#include <map>
#include <string>
#include <vector>

namespace Vgwd {

class WriteListener {
  public:
    virtual ~WriteListener() = default;
    virtual void onTaken() = 0;
    virtual void onUndone(std::string const& path, std::string const& peer,
                          std::string const& reason) = 0;
};

class DatabaseWriter final : private Ovsdb::Overlay {
  public:
    /// While one lives, what changes in the tree is no peer's doing.
    class Working {
      public:
        explicit Working(DatabaseWriter& writer) : writer_(writer) { ++writer_.working_; }
        ~Working() { --writer_.working_; }
        Working(Working const&) = delete;
        Working& operator=(Working const&) = delete;

      private:
        DatabaseWriter& writer_;
    };

    DatabaseWriter(asio::io_context& loop, Ovsdb::Client& client, Ovsdb::Mirror& mirror,
                   WriteListener& listener);
    ~DatabaseWriter() override;

    /// Whether there is something in the entity that peers may write. What they do there is heard
    /// from then on.
    bool open(Qor::Entity& entity);
    /// A peer of that identity has changed an attribute of it.
    void handleWritten(std::string const& peer, Qor::Entity& entity, Qor::AttributeId attribute);
    void inStepIs(bool inStep);
    void stop();
    /// How many rows that peers of that identity have made wait for the database.
    std::size_t newRowsOf(std::string const& peer) const;

  private:
    using Pending = PendingWrite;
    using Clock = Pending::Clock;
    using Turns = Pending::Turns;
    class DirectoryWatch;

    Qor::Dir& directory(Ovsdb::Table table) const;
    std::string nameOf(Ovsdb::Table table, Qor::Entity const& row) const;
    std::string pathOf(Place const& place) const;
    bool isInDatabase(Place const& place) const;
    bool isMirrored(Place const& place, Qor::Entity const* row) const;
    Qor::Ptr<Vgw::OvsdbDataModel> rowAt(Place const& place) const;
    void handleEntry(Ovsdb::Table table, Qor::Name const& name);
    void noteMade(Place const& place);
    void handleMember(Place const& place, WrittenMember const& written);
    void handleMacWritten(std::string const& peer, Ovsdb::Table table, Qor::Entity& row,
                          Qor::AttributeId attribute);
    void noteVteps(Place const& place, Pending& pending, Vgw::McastMacsLocal& row);
    void handleVtep(Place const& place, Kelp::IpAddr address, bool isThere);
    void handleRowWritten(std::string const& peer, Ovsdb::Table table, Qor::Entity& row,
                          Qor::AttributeId attribute);
    Pending& touch(Place const& place, std::string const& peer);
    void peerIs(Pending& pending, std::string const& peer);
    void forget(Place const& place);

    bool covers(Ovsdb::Table table, Ovsdb::Uuid const& uuid) const override;
    bool hides(Ovsdb::Table table, Ovsdb::Uuid const& uuid) const override;
    void put(Ovsdb::Table table, Ovsdb::Uuid const& uuid,
             Vgw::OvsdbDataModel& staged) const override;

    void turnIs(Place const& place, Pending& pending, Clock::time_point at);
    void noTurn(Pending& pending);
    void nextTurnIs(Place const& place);
    void wasLostIs(Pending& pending, bool wasLost);
    Clock::time_point gatheredAt(Place const& place, Pending const& pending) const;
    Turns* upNow(Clock::time_point now);
    void schedule();
    void run();
    void attend(Place const& place, Clock::time_point now);
    void work(Place const& place, Pending& pending);
    void workOnMac(Place const& place, Pending& pending);
    void workOnNoMac(Place const& place, Pending& pending);
    void workOnNewMac(Place const& place, Pending& pending, Qor::Entity& row);
    void insertMac(Place const& place, Pending& pending, MacContent const& content);
    std::string madeRow(Ovsdb::Table table, Pending const& pending) const;
    void send(Place const& place, Pending& pending, nlohmann::json const& operations);

    void handleOutcome(Place const& place, Ovsdb::RpcError const* error);
    void handleFailure(Place const& place, Pending& pending, Ovsdb::RpcError const& error);
    void handleTaken(Place const& place, Pending& pending);
    void handleMade(Place const& place, Pending& pending);
    void handleThere(Place const& place, Pending& pending, std::string const& uuid);
    void handleLost(Place const& place, Pending& pending);
    bool mayBeTriedAgain(Place const& place, Pending& pending, Ovsdb::RpcError const& error);
    static void takeBack(Pending& pending);
    void undo(Place const& place, std::string const& reason);
    void restore(Place const& place);
    void resetMarks(Place const& place);

    Ovsdb::Client& client_;
    Ovsdb::Mirror& mirror_;
    WriteListener& listener_;
    asio::steady_timer timer_;
    Ovsdb::Tether tether_;
    std::map<Ovsdb::Table, Qor::Dir::NotifieeConst::Ptr> watches_;
    std::map<Place, Qor::PtrInterface::NotifieeConst::Ptr> rowWatches_;
    std::map<Place, Pending> work_;
    Turns turns_;
    Turns lostTurns_;  // of what was under way when the connection was lost
    std::map<std::string, std::size_t> newRows_;  // in work_, by the peer
    // The rows that peers have put into the directories; where each stood when it was told.
    std::map<Place, Qor::Entity const*> madeAt_;
    std::map<Qor::Entity const*, Place> made_;
    std::vector<Place> unsigned_;   // changed by a peer that is not known yet
    std::size_t sent_ = 0;          // transactions under way
    std::size_t sweepWatches_ = 0;  // of so many rows, for those that have ended
    int working_ = 0;
    bool inStep_ = false;
    bool isLostSent_ = false;  // one that was under way before is, alone
    Clock::time_point scheduled_ = Clock::time_point::max();
    bool takesUuids_ = true;  // the server; until it says otherwise
};

}  // namespace Vgwd

#endif
