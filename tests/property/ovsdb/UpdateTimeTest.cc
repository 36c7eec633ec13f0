// What a database's server sends is framed, read and mirrored in time that grows with its bytes,
// whatever names, keys and references whoever writes the database has chosen.
#include <tests/ovsdb/MirrorUnderTest.h>
#include <tests/support/LinearCost.h>
#include <tests/support/Settings.h>

#include <ovsdb/rpc/JsonFramer.h>
#include <ovsdb/rpc/ProtocolError.h>
#include <qor/core/TextHash.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <string>

namespace Ovsdb {
namespace {

using Json = nlohmann::json;

constexpr std::size_t unit = Settings::volume(800, 200, 200);

// What the first copy of a database takes; the messages are made ahead.
void expectLinearUpdate(std::size_t size, Json (*tables)(std::size_t count)) {
    expectLinearCost(size, [tables](std::size_t count) {
        MirrorUnderTest mirror;
        Json const message = tables(count);
        return timeOf([&] { mirror.update(message); });
    });
}

Json inserted(Json const& columns) { return {{"insert", columns}}; }

std::string nameOf(std::size_t number) { return "ls-" + std::to_string(number); }

// Names whose hashes end in the same twelve bits: of a map of so many all stand in one bucket.
std::string const& nameOfOneBucket(std::size_t number) {
    constexpr std::uint32_t mask = 0xFFF;
    static std::vector<std::string> names;
    for (static std::size_t tried = 0; names.size() <= number; ++tried) {
        std::string name = "n" + std::to_string(tried);
        if ((Qor::hashOfText(name) & mask) == 1) names.push_back(std::move(name));
    }
    return names[number];
}

TEST(UpdateTime, RowsAndTheirNames) {
    expectLinearUpdate(unit, [](std::size_t count) {
        Json rows = Json::object();
        for (unsigned i = 0; i < count; ++i) {
            rows[uuidText(i)] = inserted({{"name", nameOf(i)}, {"tunnel_key", i}});
        }
        return Json{{"Logical_Switch", rows}};
    });
}

TEST(UpdateTime, NamesOfOneBucket) {
    nameOfOneBucket(2 * unit);
    expectLinearUpdate(unit, [](std::size_t count) {
        Json rows = Json::object();
        for (unsigned i = 0; i < count; ++i) {
            rows[uuidText(i)] = inserted({{"name", nameOfOneBucket(i)}});
        }
        return Json{{"Logical_Switch", rows}};
    });
}

// All of them want the same place in the index.
TEST(UpdateTime, RowsOfOneNameAndRowsOfOneAddress) {
    expectLinearUpdate(unit, [](std::size_t count) {
        Json switches = Json::object();
        Json locators = Json::object();
        for (unsigned i = 0; i < count; ++i) {
            switches[uuidText(i)] = inserted({{"name", "same"}});
            locators[uuidText(100000 + i)] =
                inserted({{"dst_ip", "192.0.2.1"}, {"encapsulation_type", "vxlan_over_ipv4"}});
        }
        return Json{{"Physical_Switch", switches}, {"Physical_Locator", locators}};
    });
}

TEST(UpdateTime, RowsOfMacsAtOneLocator) {
    expectLinearUpdate(unit, [](std::size_t count) {
        Json macs = Json::object();
        for (unsigned i = 0; i < count; ++i) {
            macs[uuidText(i)] = inserted({{"MAC", "00:00:5e:00:53:01"},
                                          {"logical_switch", ref(900001)},
                                          {"locator", ref(900002)}});
        }
        Json const network = inserted({{"name", "red"}, {"tunnel_key", 5}});
        Json const locator =
            inserted({{"dst_ip", "192.0.2.1"}, {"encapsulation_type", "vxlan_over_ipv4"}});
        return Json{{"Ucast_Macs_Remote", macs},
                    {"Logical_Switch", {{uuidText(900001), network}}},
                    {"Physical_Locator", {{uuidText(900002), locator}}}};
    });
}

TEST(UpdateTime, MembersOfSetsAndMaps) {
    nameOfOneBucket(4 * unit);
    expectLinearUpdate(2 * unit, [](std::size_t count) {
        Json faults = Json::array();
        Json other = Json::array();
        for (unsigned i = 0; i < count; ++i) {
            faults.push_back(nameOfOneBucket(i));
            other.push_back(Json::array({nameOfOneBucket(i), "value"}));
        }
        Json const row = inserted({{"name", "leaf"},
                                   {"switch_fault_status", Json::array({"set", faults})},
                                   {"other_config", Json::array({"map", other})}});
        return Json{{"Physical_Switch", {{uuidText(1), row}}}};
    });
}

// Differences to a set: each member is looked for among those that there are.
TEST(UpdateTime, DifferencesOfASet) {
    expectLinearCost(2 * unit, [](std::size_t count) {
        Json faults = Json::array();
        for (unsigned i = 0; i < count; ++i) faults.push_back(nameOf(i));
        Json const set = Json::array({"set", faults});
        MirrorUnderTest mirror;
        Json row = {{"name", "leaf"}, {"switch_fault_status", set}};
        mirror.update({{"Physical_Switch", {{uuidText(1), inserted(row)}}}});
        Json const change = {{"modify", {{"switch_fault_status", set}}}};
        return timeOf([&] { mirror.update({{"Physical_Switch", {{uuidText(1), change}}}}); });
    });
}

TEST(UpdateTime, ReferencesOfOnePort) {
    expectLinearUpdate(unit, [](std::size_t count) {
        Json ports = Json::array();
        Json rows = Json::object();
        for (unsigned i = 0; i < count; ++i) {
            ports.push_back(ref(100000 + i));
            rows[uuidText(100000 + i)] = inserted({{"name", "same"}});
        }
        Json const row = inserted({{"name", "leaf"}, {"ports", Json::array({"set", ports})}});
        return Json{{"Physical_Port", rows}, {"Physical_Switch", {{uuidText(1), row}}}};
    });
}

// Values of a stream, and the pieces in which it comes.
void expectLinearFraming(std::size_t piece, std::string (*stream)(std::size_t size)) {
    expectLinearCost(Settings::volume(1U << 17, 1U << 14, 1U << 14), [=](std::size_t size) {
        std::string const bytes = stream(size);
        return timeOf([&] {
            JsonFramer framer;
            try {
                for (std::size_t at = 0; at < bytes.size(); at += piece) {
                    std::string_view const part = std::string_view(bytes).substr(at, piece);
                    std::ranges::copy(part, framer.prepare(part.size()).data());
                    framer.commit(part.size());
                    while (framer.next()) {
                    }
                }
            } catch (ProtocolError const&) {
            }
        });
    });
}

TEST(FramingTime, OneLongValueInPieces) {
    for (std::size_t const piece : {1, 100, 10000}) {
        expectLinearFraming(
            piece, [](std::size_t size) { return "{\"id\":\"" + std::string(size, 'x') + "\"}"; });
        expectLinearFraming(piece, [](std::size_t size) {
            std::string text = "[";
            while (text.size() < size) text += "\"\\\\\\\"\",";
            return text + "1]";
        });
    }
}

TEST(FramingTime, ManySmallValuesInPieces) {
    for (std::size_t const piece : {1, 100, 10000, 1 << 20}) {
        expectLinearFraming(piece, [](std::size_t size) {
            std::string text;
            while (text.size() < size) text += "{}";
            return text;
        });
    }
}

TEST(FramingTime, WhatIsNestedDeep) {
    expectLinearFraming(10000, [](std::size_t size) { return std::string(size, '['); });
}

}  // namespace
}  // namespace Ovsdb
