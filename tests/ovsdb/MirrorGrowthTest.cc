// What a mirror of many rows costs: no row looks at all the others.

#include "MirrorMessages.h"

#include <tests/support/LinearCost.h>
#include <tests/support/Settings.h>

#include <gtest/gtest.h>

#include <functional>

namespace Ovsdb {
namespace {

// So many things that share an owner by `each`; the last message is the one that counts.
using Messages = std::function<std::vector<json>(unsigned size, unsigned each)>;

// The seconds that the last of the messages takes, read and applied; the best of three.
double cost(Messages const& messages, unsigned size, unsigned each) {
    std::vector<std::string> texts;
    for (json const& message : messages(size, each)) texts.push_back(message.dump());
    return leastOf(3, [&] {
        MirrorUnderTest mirror;
        double spent = 0;
        for (std::string const& text : texts) {
            JsonText const parsed(text);
            spent = timeOf([&] { mirror.apply(parsed.root()); });
        }
        return spent;
    });
}

// The same number of things is about as dear when all share one owner as when ten do. Where each
// looked at all others of its owner, it would be tens of times as dear.
void expectAsCheapTogether(Messages const& messages, unsigned size) {
    double const together = cost(messages, size, size);
    double const apart = cost(messages, size, 10);
    testing::Test::RecordProperty("together", std::to_string(together));
    testing::Test::RecordProperty("apart", std::to_string(apart));
    EXPECT_LT(together, 3 * apart);
}

// So many thousands, where nothing is checked beside.
constexpr unsigned things(unsigned thousands) {
    return static_cast<unsigned>(thousands * Settings::volume(1000, 100, 100));
}

constexpr unsigned firstRow = 1'000'000;

json rows(unsigned count, std::function<json(unsigned)> const& row, unsigned from = firstRow) {
    json all = json::object();
    for (unsigned i = 0; i < count; ++i) all[uuidText(from + i)] = row(i);
    return all;
}
json allGone(unsigned count, unsigned from = firstRow) {
    return rows(
        count, [](unsigned) { return gone; }, from);
}
std::string multicast(unsigned i) {
    std::array<char, 20> text{};
    std::snprintf(text.data(), text.size(), "01:00:5e:%02x:%02x:%02x", i >> 16 & 0x7fU,
                  i >> 8 & 0xffU, i & 0xffU);
    return text.data();
}
std::string address(unsigned i) {
    return "10." + std::to_string(i >> 16) + "." + std::to_string(i >> 8 & 0xffU) + "." +
           std::to_string(i & 0xffU);
}

constexpr unsigned owners = 2'000'000;

unsigned ownerOf(unsigned i, unsigned each) { return owners + i / each; }

// Rows for all owners.
json ownerRows(unsigned size, unsigned each, std::function<json(unsigned)> const& row) {
    return rows((size + each - 1) / each, row, owners);
}
json allOf(unsigned owner, unsigned size, unsigned each) {
    std::vector<json> all;
    for (unsigned i = owner * each; i < std::min(size, (owner + 1) * each); ++i)
        all.push_back(ref(firstRow + i));
    return set(all);
}
json locators(unsigned i) { return locator(address(i).c_str()); }

TEST(MirrorGrowth, MulticastRowsOfOneSet) {
    expectAsCheapTogether(
        [](unsigned size, unsigned each) {
            auto const owner = [](unsigned) { return insert({{"locators", ref(locatorA)}}); };
            auto const row = [&](unsigned i) {
                return mcast(multicast(i).c_str(), red, ownerOf(i, each));
            };
            json begin = network();
            begin["Physical_Locator_Set"] = ownerRows(size, each, owner);
            begin["Mcast_Macs_Local"] = rows(size, row);
            return std::vector<json>{begin, {{"Mcast_Macs_Local", allGone(size)}}};
        },
        things(10));
}

// Rows of the table, which refer to locators by that column, go.
void expectAsCheapOfOneLocator(char const* table, char const* column, unsigned size) {
    expectAsCheapTogether(
        [&](unsigned count, unsigned each) {
            auto const row = [&](unsigned i) { return insert({{column, ref(ownerOf(i, each))}}); };
            return std::vector<json>{
                {{"Physical_Locator", ownerRows(count, each, locators)}, {table, rows(count, row)}},
                {{table, allGone(count)}}};
        },
        size);
}

TEST(MirrorGrowth, SetsOfOneLocator) {
    expectAsCheapOfOneLocator("Physical_Locator_Set", "locators", things(20));
}

// The switch's key is written to each row anew, with the addresses of its set.
TEST(MirrorGrowth, LocatorsOfOneSet) {
    expectAsCheapTogether(
        [](unsigned size, unsigned each) {
            auto const owner = [&](unsigned n) {
                return insert({{"locators", allOf(n, size, each)}});
            };
            auto const user = [](unsigned n) {
                return mcast(multicast(n).c_str(), red, owners + n);
            };
            json begin = network();
            begin["Physical_Locator"] = rows(size, locators);
            begin["Physical_Locator_Set"] = ownerRows(size, each, owner);
            begin["Mcast_Macs_Local"] = ownerRows(size, each, user);
            json const key = modify({{"tunnel_key", 7}});
            return std::vector<json>{begin, {{"Logical_Switch", {{uuidText(red), key}}}}};
        },
        things(10));
}

TEST(MirrorGrowth, LocatorsOfOneAddress) {
    expectAsCheapTogether(
        [](unsigned size, unsigned each) {
            auto const row = [&](unsigned i) {
                return insert({{"encapsulation_type", "vxlan_over_ipv4"},
                               {"dst_ip", address(i / each)},
                               {"tunnel_key", i + 1}});
            };
            return std::vector<json>{{{"Physical_Locator", rows(size, row)}},
                                     {{"Physical_Locator", allGone(size)}}};
        },
        things(20));
}

TEST(MirrorGrowth, TunnelsToOneLocator) {
    expectAsCheapOfOneLocator("Tunnel", "remote", things(10));
}

TEST(MirrorGrowth, PortsOfOneSwitch) {
    expectAsCheapTogether(
        [](unsigned size, unsigned each) {
            auto const row = [](unsigned i) { return insert({{"name", "p" + std::to_string(i)}}); };
            auto const owner = [&](unsigned n) {
                return insert({{"name", "s" + std::to_string(n)}, {"ports", allOf(n, size, each)}});
            };
            auto const emptied = [&](unsigned n) {
                return modify({{"ports", allOf(n, size, each)}});
            };
            return std::vector<json>{{{"Physical_Port", rows(size, row)},
                                      {"Physical_Switch", ownerRows(size, each, owner)}},
                                     {{"Physical_Port", allGone(size)},
                                      {"Physical_Switch", ownerRows(size, each, emptied)}}};
        },
        things(10));
}

// Every other key goes.
TEST(MirrorGrowth, BfdKeysOfOneLocator) {
    expectAsCheapTogether(
        [](unsigned size, unsigned each) {
            auto const bfd = [&](unsigned step) {
                std::vector<std::pair<json, json>> keys;
                for (unsigned i = 0; i < each; i += step)
                    keys.emplace_back("key" + std::to_string(i), "a");
                return json{{"bfd", map(keys)}, {"bfd_status", map(keys)}};
            };
            auto const whole = [&](unsigned n) {
                json row = locators(n);
                row["insert"].update(bfd(1));
                return row;
            };
            auto const halved = [&](unsigned) { return modify(bfd(2)); };
            return std::vector<json>{{{"Physical_Locator", ownerRows(size, each, whole)}},
                                     {{"Physical_Locator", ownerRows(size, each, halved)}}};
        },
        things(4));
}

}  // namespace
}  // namespace Ovsdb
