#include <ovsdb/client/ServerDatabases.h>

namespace Ovsdb {
namespace {

using simdjson::SUCCESS;
using simdjson::dom::array;
using simdjson::dom::element;
using simdjson::dom::object;

// ["uuid", U]; the empty text for an absent optional.
std::string uuidText(element value) {
    array pair;
    std::string_view text;
    if (value.get(pair) != SUCCESS || pair.at(0).get(text) != SUCCESS || text != "uuid") return {};
    if (pair.at(1).get(text) != SUCCESS) return {};
    return std::string(text);
}

void applyColumns(ServerDatabase& row, object columns) {
    for (auto const [name, value] : columns) {
        std::string_view text;
        std::int64_t number = 0;
        if (name == "name" && value.get(text) == SUCCESS) row.name = text;
        if (name == "model" && value.get(text) == SUCCESS) row.model = text;
        bool truth = false;
        if (name == "connected" && value.get(truth) == SUCCESS) row.connected = truth;
        if (name == "leader" && value.get(truth) == SUCCESS) row.leader = truth;
        if (name == "index" && value.get(number) == SUCCESS) row.index = number;
        if (name == "cid") row.clusterId = uuidText(value);
    }
}

}  // namespace

void ServerDatabases::apply(element tableUpdates) {
    object rows;
    if (tableUpdates["Database"].get(rows) != SUCCESS) return;
    for (auto const [uuid, update] : rows) {
        object columns;
        bool told = false;
        for (char const* const form : {"initial", "insert", "modify", "new"}) {
            if (update[form].get(columns) != SUCCESS) continue;
            applyColumns(rows_[std::string(uuid)], columns);
            told = true;
            break;
        }
        if (!told) rows_.erase(std::string(uuid));
    }
}

ServerDatabase const* ServerDatabases::find(std::string const& name) const {
    for (auto const& [uuid, row] : rows_)
        if (row.name == name) return &row;
    return nullptr;
}

}  // namespace Ovsdb
