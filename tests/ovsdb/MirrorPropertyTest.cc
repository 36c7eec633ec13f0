#include "MirrorUnderTest.h"

#include <gtest/gtest.h>

#include <map>
#include <random>

namespace Ovsdb {
namespace {

using nlohmann::json;

// A database of a few rows that changes at random, without regard to what a server would allow:
// references dangle, addresses and names are shared, numbers and texts are out of range.
class RandomDatabase {
  public:
    explicit RandomDatabase(unsigned seed) : random_(seed) {}

    unsigned below(unsigned n) { return static_cast<unsigned>(random_() % n); }

    /// Some rows change; the message that tells so, each row whole.
    json step() {
        json message = json::object();
        for (unsigned n = 1 + below(6); n > 0; --n) {
            MirroredTable const& table = mirroredTables()[below(tableCount)];
            unsigned const number = 100 * static_cast<unsigned>(index(table.table)) + below(4);
            std::string const name(table.name);
            if (below(4) == 0) {
                rows_[name].erase(uuidText(number));
                message[name][uuidText(number)] = {{"old", json::object()}};
            } else {
                rows_[name][uuidText(number)] = row(table);
                message[name][uuidText(number)] = {{"new", rows_[name][uuidText(number)]}};
            }
        }
        return message;
    }

    /// Everything, as a first copy would tell it.
    json copy() const {
        json message = json::object();
        for (auto const& [table, rows] : rows_)
            for (auto const& [uuid, columns] : rows) message[table][uuid] = {{"new", columns}};
        return message;
    }

  private:
    json row(MirroredTable const& table) {
        json columns = json::object();
        for (MirroredColumn const& column : table.columns)
            columns[std::string(column.name)] = value(table.table, column);
        return columns;
    }

    // The table that a column's uuids are of.
    static Table target(std::string_view column) {
        if (column == "switches") return Table::physicalSwitch;
        if (column == "ports") return Table::physicalPort;
        if (column == "managers") return Table::manager;
        if (column == "vlan_stats") return Table::logicalBindingStats;
        if (column == "locator_set") return Table::physicalLocatorSet;
        if (column == "logical_switch" || column == "vlan_bindings") return Table::logicalSwitch;
        return Table::physicalLocator;
    }

    json text(std::string_view column) {
        static std::vector<std::string> const addresses{"192.0.2.1", "192.0.2.2", "2001:db8::1", "",
                                                        "192.0.2.01"};
        static std::vector<std::string> const macs{"00:00:5e:00:53:01", "00:00:5E:00:53:01",
                                                   "00:00:5e:00:53:02", "unknown-dst", "junk"};
        static std::vector<std::string> const words{"", "a", "b", "\xc3\xa4\n\"", "tor-1"};
        bool const isAddress =
            column.find("ip") != std::string_view::npos && column != "description";
        auto const& choice = column == "MAC" ? macs : isAddress ? addresses : words;
        return choice[below(static_cast<unsigned>(choice.size()))];
    }

    json number() {
        static std::vector<std::int64_t> const choice{0,         5000, 5001,       0xFFFFFF,
                                                      0x1000000, -1,   99999999999};
        return choice[below(static_cast<unsigned>(choice.size()))];
    }

    json atom(AtomType type, std::string_view column) {
        if (type == AtomType::uuid)
            return ref(100 * static_cast<unsigned>(index(target(column))) + below(4));
        return type == AtomType::integer ? number() : text(column);
    }

    json value(Table table, MirroredColumn const& column) {
        ColumnType const& type = column.type;
        static_cast<void>(table);
        if (type.shape == Shape::one) return atom(type.key, column.name);
        if (type.shape == Shape::optional)
            return below(3) == 0 ? json{"set", json::array()} : atom(type.key, column.name);
        std::map<std::string, json> items;
        for (unsigned n = below(4); n > 0; --n) {
            json const key = type.shape == Shape::map && type.key == AtomType::integer
                                 ? json(below(4096))
                                 : atom(type.key, column.name);
            items[key.dump()] =
                type.shape == Shape::map ? json{key, atom(type.value, column.name)} : key;
        }
        json all = json::array();
        for (auto const& [unused, item] : items) all.push_back(item);
        return {type.shape == Shape::map ? "map" : "set", all};
    }

    std::mt19937 random_;
    std::map<std::string, std::map<std::string, json>> rows_;
};

// The schema of today, and one with BFD in the locators.
json schemaOf(bool older) {
    json schema = fullSchema();
    if (older) {
        schema["tables"].erase("Tunnel");
        schema["tables"]["Physical_Locator"]["columns"].erase("tunnel_key");
    } else {
        schema["tables"]["Physical_Locator"]["columns"].erase("bfd");
        schema["tables"]["Physical_Locator"]["columns"].erase("bfd_status");
    }
    return schema;
}

class MirrorProperty : public testing::TestWithParam<bool> {};

TEST_P(MirrorProperty, TheWayToADatabaseDoesNotShowInItsMirror) {
    for (unsigned seed = 1; seed <= 60; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        RandomDatabase database(seed);
        MirrorUnderTest stepwise(schemaOf(GetParam()));
        MirrorUnderTest resumed(schemaOf(GetParam()));
        for (int step = 0; step < 40; ++step) {
            stepwise.update(database.step(), false, UpdateForm::whole);
            if (database.below(8) == 0) resumed.update(database.copy(), true, UpdateForm::whole);
        }
        resumed.update(database.copy(), true, UpdateForm::whole);
        MirrorUnderTest fresh(schemaOf(GetParam()));
        fresh.update(database.copy(), true, UpdateForm::whole);
        ASSERT_EQ(stepwise.text(), fresh.text());
        ASSERT_EQ(resumed.text(), fresh.text());
        stepwise.update(json::object(), true, UpdateForm::whole);
        ASSERT_EQ(stepwise.text(), MirrorUnderTest(schemaOf(GetParam())).text());
    }
}

std::string nameOf(testing::TestParamInfo<bool> const& schema) {
    return schema.param ? "Older" : "Today";
}

INSTANTIATE_TEST_SUITE_P(Schemas, MirrorProperty, testing::Bool(), nameOf);

}  // namespace
}  // namespace Ovsdb
