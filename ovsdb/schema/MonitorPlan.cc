#include <ovsdb/schema/MonitorPlan.h>

#include <nlohmann/json.hpp>

namespace Ovsdb {

MonitorPlan::MonitorPlan(Schema const& schema) : version_(schema.version) {
    for (MirroredTable const& table : mirroredTables()) addTable(table, schema);
    if (!has(Table::tunnel) && !has(Table::physicalLocator, PhysicalLocatorColumn::bfd) &&
        has(Table::physicalLocator))
        complaints_.push_back(
            "BFD is missing from the schema: neither table Tunnel nor column Physical_Locator.bfd");
}

void MonitorPlan::addTable(MirroredTable const& table, Schema const& schema) {
    std::string const name(table.name);
    if (Schema::Columns const* const columns = schema.table(name)) {
        for (std::size_t i = 0; i < table.columns.size(); ++i) addColumn(table, i, *columns);
    } else if (table.always) {
        gapTables_.set(index(table.table));
        addGap("table " + name + " is missing from the schema");
    }
}

void MonitorPlan::addColumn(MirroredTable const& table, std::size_t at,
                            Schema::Columns const& columns) {
    MirroredColumn const& column = table.columns[at];
    std::string const name = std::string(table.name) + "." + std::string(column.name);
    std::uint32_t const bit = std::uint32_t{1} << at;
    auto const found = columns.find(column.name);
    if (found == columns.end()) {
        if (!column.always) return;
        gapColumns_[index(table.table)] |= bit;
        addGap("column " + name + " is missing from the schema");
    } else if (found->second != column.type) {
        gapColumns_[index(table.table)] |= bit;
        addGap("column " + name + " is " +
               (found->second ? found->second->text() : "of an unknown type") + ", expected " +
               column.type.text());
    } else {
        columns_[index(table.table)] |= bit;
    }
}

void MonitorPlan::addGap(std::string const& complaint) {
    complaints_.push_back(complaint);
    gap_ += (gap_.empty() ? "" : "; ") + complaint;
}

nlohmann::json MonitorPlan::requests() const {
    nlohmann::json requests = nlohmann::json::object();
    for (MirroredTable const& table : mirroredTables()) {
        if (!has(table.table)) continue;
        nlohmann::json columns = nlohmann::json::array();
        for (std::size_t i = 0; i < table.columns.size(); ++i)
            if (has(table.table, i)) columns.push_back(std::string(table.columns[i].name));
        requests[std::string(table.name)] = nlohmann::json::array({{{"columns", columns}}});
    }
    return requests;
}

}  // namespace Ovsdb
