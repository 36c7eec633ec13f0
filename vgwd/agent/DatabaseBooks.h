#ifndef VGWD_AGENT_DATABASE_BOOKS_H
#define VGWD_AGENT_DATABASE_BOOKS_H

// Keeps a Vgwd::DatabaseReport: whether the mirror is in step, what the schema lacks, which rows
// the model can't hold whole, and what became of peers' writes. A step costs a look at its changed
// rows; a whole copy one at every row.

#include <ovsdb/mirror/Mirror.h>
#include <vgwd/model/DatabaseReport.h>

#include <set>
#include <string>
#include <utility>
#include <vector>

namespace Vgwd {

class DatabaseBooks {
  public:
    DatabaseBooks(DatabaseReport::Ptr report, Ovsdb::Mirror const& mirror);

    void planIs(Ovsdb::MonitorPlan const& plan);
    /// The mirror has taken the changes in.
    void step(std::vector<Ovsdb::RowChange> const& changes);
    /// A whole copy was taken in: another schema may hold whole what was lost, and no row with it
    /// changes.
    void lookAgain();
    void inStep(std::string const& remote);
    void outOfStep(std::string const& remote, std::string const& reason);

    /// What a peer wrote is in the database.
    void taken();
    /// What it wrote was undone.
    void refused(std::string const& path, std::string const& peer, std::string const& reason);

  private:
    using Place = std::pair<Ovsdb::Table, Ovsdb::Uuid>;

    void stateIs(bool inStep, std::string const& remote, std::string const& reason);
    void look(Ovsdb::Table table, Ovsdb::Uuid const& uuid);
    void tell(Place const& place, std::string const& columns);

    DatabaseReport::Ptr report_;
    Ovsdb::Mirror const& mirror_;
    std::set<Place> lost_;
};

}  // namespace Vgwd

#endif
