// Connections that end within snapshots: what is removed, what stays the same, and what comes of it
// when the copy is mounted again.
#include "Peers.h"

#include <tests/support/Settings.h>
#include <vgw/attrlog/HwVtepOvsdb.h>
#include <vgw/attrlog/LogicalSwitch.h>
#include <vgw/attrlog/PhysicalSwitch.h>

#include <gtest/gtest.h>

#include <map>
#include <set>
#include <string>
#include <vector>

namespace {

using Qor::AttributeId;
using Qor::make;
using Qor::Name;
using Qor::Ptr;
using Database = Ptr<Vgw::HwVtepOvsdb>;

constexpr AttributeId references = Vgw::HwVtepOvsdb::PhysicalSwitchAttr::id;
constexpr AttributeId logicalRows = Vgw::HwVtepOvsdb::LogicalSwitchAttr::id;
constexpr AttributeId physicalRows = Vgw::HwVtepOvsdb::PhysicalSwitchRawAttr::id;

void addRow(Database const& db, int number) {
    Name const name(std::to_string(number).c_str());
    db->logicalSwitchIs(name)->descIs(name);
    auto const sw = db->physicalSwitchRawIs(name);
    sw->portIs(name, true);
    db->physicalSwitchIs(name, sw);
}

Database databaseOf(int first, int count) {
    auto const db = make<Vgw::HwVtepOvsdb>(Name("db"));
    for (int number = first; number < first + count; ++number) addRow(db, number);
    return db;
}

// The members of a database's collections, each with the entity that it is or belongs to: so one
// that was replaced is told from one that stayed.
using Contents = std::map<std::pair<AttributeId, std::string>, Ptr<Qor::Entity>>;

Contents contentsOf(Database const& db) {
    Contents result;
    auto const add = [&result](AttributeId id, std::string const& key, auto const& entity) {
        result[{id, key}] = Ptr<Qor::Entity>(entity.ptr());
    };
    for (auto at = db->logicalSwitchIterator(); at; ++at) {
        std::string const key(at.key().view());
        add(logicalRows, key, at.value());
        add(logicalRows, key + " " + std::string(at.value()->desc().view()), at.value());
    }
    for (auto at = db->physicalSwitchRawIterator(); at; ++at) {
        std::string const key(at.key().view());
        add(physicalRows, key, at.value());
        for (auto port = at.value()->portIterator(); port; ++port) {
            add(physicalRows, key + " port " + std::string(port.key().view()), at.value());
        }
    }
    for (auto at = db->physicalSwitchIterator(); at; ++at) {
        add(references, std::string(at.key().view()), at.value());
    }
    return result;
}

auto keysOf(Database const& db) {
    std::set<Contents::key_type> keys;
    for (auto const& [key, entity] : contentsOf(db)) keys.insert(key);
    return keys;
}

unsigned numberAt(std::string_view bytes, std::size_t at) {
    unsigned number = 0;
    for (std::size_t i = at; i < at + 4; ++i) {
        number = number << 8U | static_cast<unsigned char>(bytes[i]);
    }
    return number;
}

// Where each frame ends.
std::vector<std::size_t> endsOfFrames(std::string_view bytes) {
    std::vector<std::size_t> ends{0};
    while (ends.back() < bytes.size())
        ends.push_back(ends.back() + 4 + numberAt(bytes, ends.back()));
    return ends;
}

// The attributes whose snapshots end in the frames that are whole; and how often one began while
// it was open.
struct Marks {
    std::set<AttributeId> ended;
    int overlaps = 0;
};

Marks marksIn(std::string_view bytes) {
    constexpr std::size_t kindAt = 4;
    constexpr std::size_t attributeAt = 13;
    constexpr std::size_t typeAt = 28;
    Marks marks;
    std::set<std::pair<std::string_view, AttributeId>> open;
    for (std::size_t at = 0; at + 4 <= bytes.size();) {
        auto const frame = bytes.substr(at, 4 + numberAt(bytes, at));
        at += 4 + numberAt(bytes, at);
        if (at > bytes.size() || frame[kindAt] != 1) continue;
        auto const id = static_cast<AttributeId>(numberAt(frame, attributeAt));
        std::pair const which(frame.substr(kindAt + 1, 8), id);
        if (frame[typeAt] == 0 && !open.insert(which).second) ++marks.overlaps;
        if (frame[typeAt] != 2) continue;
        open.erase(which);
        marks.ended.insert(id);
    }
    return marks;
}

void feed(Peer& reader, std::string_view bytes) {
    while (!bytes.empty()) {
        bytes.remove_prefix(reader.demuxer->in()->receive(bytes));
        reader.demuxer->serveFrames(~std::size_t{0});
    }
}

struct DescHearer : Vgw::LogicalSwitch::Notifiee {
    void onDesc() override { ++heard; }
    int heard = 0;
};

// A copy that takes a part of what `original` sends and is mounted again. What is wrong with it.
std::string faultAfterCut(Database const& original, std::string_view part) {
    auto const copy = databaseOf(2, 4);
    auto const before = contentsOf(copy);
    auto const hearer = make<DescHearer>();
    hearer->notifierIs(copy->logicalSwitch(Name("2")));
    {
        Peer reader(Peer::Demuxer::Side::connecting);
        reader.copy = copy;
        feed(reader, part);
        if (reader.failure.length() != 0) return std::string(reader.failure.view());
    }
    auto const kept = keysOf(original);
    auto const ended = marksIn(part).ended;
    auto const cut = contentsOf(copy);
    for (auto const& [key, entity] : before) {
        bool const stays = kept.contains(key) || !ended.contains(key.first);
        auto const there = cut.find(key);
        if (stays != (there != cut.end()))
            return key.second + (stays ? " has gone" : " has stayed");
        if (stays && there->second != entity) return key.second + " was replaced";
    }
    Peers peers;
    peers.mount(original, copy);
    if (keysOf(copy) != kept) return "the copy is another when it is mounted again";
    for (auto const& [key, entity] : contentsOf(copy)) {
        auto const there = cut.find(key);
        if (there != cut.end() && there->second != entity)
            return key.second + " was replaced later";
    }
    return hearer->heard == 0 ? "" : "what has not changed was told";
}

TEST(Cut, AtEveryByteRemovesWhatAnEndMarkHasTakenAndNothingElseAndConverges) {
    auto const original = databaseOf(0, 4);
    Peer source(Peer::Demuxer::Side::accepting);
    source.send(original);
    source.demuxer->serveFlows(~Qor::U64{0});
    std::string const bytes = takeBytes(source.out());
    EXPECT_GT(bytes.size(), 1000U);
    EXPECT_EQ(marksIn(bytes).ended.count(references), 1U);
    // The plain build takes every byte.
    constexpr std::size_t stride = Settings::volume(1, 3, 7);
    for (std::size_t cut = 0; cut <= bytes.size(); cut += stride) {
        ASSERT_EQ(faultAfterCut(original, std::string_view(bytes).substr(0, cut)), "")
            << "cut at " << cut;
    }
}

// Two snapshots of a collection are under way at once: the first has not ended when everything is
// sent again, with a row that has come in between.
TEST(Cut, AtEveryRecordOfSnapshotsThatOverlapRemovesNothingBeforeTheEndMark) {
    int overlaps = 0;
    constexpr unsigned stride = Settings::volume(2, 7, 13);
    for (unsigned turns = 1; turns < 40; turns += stride) {
        auto const original = databaseOf(1, 4);
        Peer source(Peer::Demuxer::Side::accepting);
        source.out().hasLiveBufferIs(false);
        auto const adapter = source.send(original);
        source.out().hasLiveBufferIs(true);
        for (unsigned turn = 0; turn < turns; ++turn) source.demuxer->serveFlows(1);
        std::string bytes = takeBytes(source.out());
        if (marksIn(bytes).ended.empty()) addRow(original, 0);
        adapter->doThis();
        source.demuxer->serveFlows(~Qor::U64{0});
        bytes += takeBytes(source.out());
        overlaps += marksIn(bytes).overlaps;
        for (std::size_t const end : endsOfFrames(bytes)) {
            ASSERT_EQ(faultAfterCut(original, std::string_view(bytes).substr(0, end)), "")
                << "cut at " << end << " of what began anew after " << turns << " turns";
        }
    }
    EXPECT_GT(overlaps, 2);
}

}  // namespace
