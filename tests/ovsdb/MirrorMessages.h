#ifndef TESTS_OVSDB_MIRROR_MESSAGES_H
#define TESTS_OVSDB_MIRROR_MESSAGES_H

// What a server sends of a small network, and what a watcher of its mirror hears.

#include "MirrorUnderTest.h"

#include <vgwd/watch/Watcher.h>

#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <string>
#include <utility>
#include <vector>

namespace Ovsdb {

using nlohmann::json;

inline constexpr unsigned red = 1;
inline constexpr unsigned blue = 2;
inline constexpr unsigned locatorA = 11;
inline constexpr unsigned locatorB = 12;
inline constexpr unsigned locatorSet = 21;

inline json insert(json const& columns) { return {{"insert", columns}}; }
inline json modify(json const& columns) { return {{"modify", columns}}; }
// Values as they are on the wire.
inline json set(std::vector<json> const& items) { return json::array({"set", items}); }
inline json pairs(std::vector<std::pair<json, json>> const& items) {
    json all = json::array();
    for (auto const& [key, value] : items) all.push_back(json::array({key, value}));
    return all;
}
inline json map(std::vector<std::pair<json, json>> const& items) {
    return json::array({"map", pairs(items)});
}

inline json const gone = {{"delete", nullptr}};

inline json logicalSwitch(char const* name, json const& key) {
    return insert({{"name", name}, {"tunnel_key", key}});
}
inline json locator(char const* address) {
    return insert({{"encapsulation_type", "vxlan_over_ipv4"}, {"dst_ip", address}});
}
inline json ucast(char const* mac, unsigned sw, unsigned at) {
    return insert({{"MAC", mac}, {"logical_switch", ref(sw)}, {"locator", ref(at)}});
}
inline json mcast(char const* mac, unsigned sw, unsigned set) {
    return insert({{"MAC", mac}, {"logical_switch", ref(sw)}, {"locator_set", ref(set)}});
}

// Two switches, two locators.
inline json network() {
    return {
        {"Logical_Switch",
         {{uuidText(red), logicalSwitch("red", 5001)},
          {uuidText(blue), logicalSwitch("blue", 5002)}}},
        {"Physical_Locator",
         {{uuidText(locatorA), locator("192.0.2.1")}, {uuidText(locatorB), locator("192.0.2.2")}}}};
}

// What a watcher prints, without the times.
class Heard {
  public:
    explicit Heard(MirrorUnderTest const& mirror)
        : file_(std::tmpfile()),
          watcher_(mirror.database(),
                   {mirror.directories().ucastMacsLocal, mirror.directories().mcastMacsLocal,
                    mirror.directories().ucastMacsRemote, mirror.directories().mcastMacsRemote},
                   file_) {}
    ~Heard() { std::fclose(file_); }

    /// Since the last call.
    std::vector<std::string> lines() {
        EXPECT_TRUE(watcher_.flush());
        std::vector<std::string> lines;
        std::fseek(file_, read_, SEEK_SET);
        std::array<char, 400> line{};
        while (std::fgets(line.data(), line.size(), file_) != nullptr) {
            std::string text(line.data());
            text.pop_back();
            lines.push_back(text.substr(text.find(' ') + 1));
        }
        read_ = std::ftell(file_);
        std::fseek(file_, 0, SEEK_END);
        return lines;
    }

  private:
    std::FILE* file_;
    long read_ = 0;
    Vgwd::Watcher watcher_;
};

}  // namespace Ovsdb

#endif
