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
    Schema::Columns const* const columns = schema.table(name);
    if (columns == nullptr) {
        if (table.always) complaints_.push_back("table " + name + " is missing from the schema");
        return;
    }
    for (std::size_t i = 0; i < table.columns.size(); ++i) {
        MirroredColumn const& column = table.columns[i];
        std::string const columnName = name + "." + std::string(column.name);
        auto const found = columns->find(column.name);
        if (found == columns->end()) {
            if (column.always)
                complaints_.push_back("column " + columnName + " is missing from the schema");
        } else if (found->second != column.type) {
            complaints_.push_back("column " + columnName + " is " +
                                  (found->second ? found->second->text() : "of an unknown type") +
                                  ", expected " + column.type.text());
        } else {
            columns_[index(table.table)] |= std::uint32_t{1} << i;
        }
    }
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
