// Handlers of a directory that change the very entry that a record of the peer's has just changed.
// What they do is a write of their own, and goes to the peer, whether there is room then or not.
#include "Peers.h"

#include <qor/attrlog/dir/DirAdapter.h>
#include <vgw/attrlog/HwVtepOvsdb.h>

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <utility>

namespace {

using Qor::Dir;
using Qor::make;
using Qor::Name;

// Runs once, at the first change of an entry.
class Once final : public Dir::Notifiee {
  public:
    void onEntry(Name) override {
        if (auto const run = std::exchange(what, {})) run();
    }
    std::function<void()> what;
};

enum class Record { announces, replaces, removes, leavesOut };
enum class Change { enters, removes };
struct Case {
    bool isAtCopy;
    Record record;
    Change change;
    bool isFull;
};

std::string nameOfEntryCase(testing::TestParamInfo<Case> const& info) {
    static char const* const records[] = {"Announced", "Replaced", "Removed", "LeftOut"};
    static char const* const changes[] = {"Entered", "TakenOut"};
    Case const& one = info.param;
    return std::string(one.isAtCopy ? "Copy" : "Original") + records[static_cast<int>(one.record)] +
           changes[static_cast<int>(one.change)] + (one.isFull ? "WithoutRoom" : "WithRoom");
}

void PrintTo(Case const& one, std::ostream* out) { *out << nameOfEntryCase({one, 0}); }

std::string picture(Dir const& dir) {
    std::string result = "{";
    for (Dir::EntryIteratorConst at(dir); at; ++at) {
        result += " " + std::string(at->key().view()) + ":";
        auto const* const below = dynamic_cast<Dir const*>(at->value().ptr());
        result += below != nullptr ? picture(*below) : "other";
    }
    return result + " }";
}

class EntryHandlers : public testing::TestWithParam<Case> {
  protected:
    EntryHandlers() {
        peers.mount(original, copy);
        once->notifierIs(here());
    }
    // A directory that is told from others by what stands in it.
    Qor::Ptr<Dir> fresh() {
        auto const dir = make<Dir>(a);
        dir->entryIs(Name("number" + std::to_string(++made)), make<Dir>(Name("x")));
        return dir;
    }
    Qor::Ptr<Dir> const& here() const { return GetParam().isAtCopy ? copy : original; }
    Qor::Ptr<Dir> const& there() const { return GetParam().isAtCopy ? original : copy; }
    Peer& from() { return GetParam().isAtCopy ? peers.source : peers.reader; }
    Peer& to() { return GetParam().isAtCopy ? peers.reader : peers.source; }

    void write() {
        switch (GetParam().record) {
            case Record::announces:
            case Record::replaces:
                return there()->entryIs(a, fresh());
            case Record::removes:
                there()->entryDel(a);
                return;
            case Record::leavesOut:
                return there()->entryIs(a, make<Vgw::HwVtepOvsdb>(a));
        }
    }
    // The class is not known.
    void goLacking() {
        std::string const known = "Vgw::HwVtepOvsdb";
        std::string bytes = takeBytes(from().out());
        for (std::size_t at = 0; (at = bytes.find(known, at)) != std::string::npos;) {
            bytes.replace(at, known.size(), "Vgw::HwVtepOvsdX");
        }
        for (std::string_view rest = bytes; !rest.empty() && !to().demuxer->hasFailed();) {
            rest.remove_prefix(to().demuxer->in()->receive(rest));
            to().demuxer->serveFrames(~std::size_t{0});
        }
    }

    static inline Name const a{"a"};
    int made = 0;
    Qor::Ptr<Once> once = make<Once>();
    Peers peers;
    Qor::Ptr<Dir> original = make<Dir>(Name("dir"));
    Qor::Ptr<Dir> copy = make<Dir>(Name("dir"));
};

TEST_P(EntryHandlers, BothEndsHoldWhatTheHandlerLeft) {
    if (GetParam().record != Record::announces) original->entryIs(a, fresh());
    peers.settle();
    if (GetParam().isFull) to().fillRing();
    bool hasRun = false;
    std::string left;
    once->what = [&] {
        hasRun = true;
        if (GetParam().change == Change::enters) {
            here()->entryIs(a, fresh());
        } else {
            here()->entryDel(a);
        }
        left = picture(*here());
    };
    write();
    goLacking();
    EXPECT_TRUE(hasRun);
    peers.settle();
    EXPECT_EQ(picture(*original), picture(*copy));
    EXPECT_EQ(picture(*here()), left);
    EXPECT_EQ(peers.source.failure + peers.reader.failure, Qor::String8());
    EXPECT_EQ(peers.source.demuxer->flows() + peers.reader.demuxer->flows(), 0U);
    EXPECT_EQ(peers.source.demuxer->adapters(), peers.reader.demuxer->adapters());
}

// A connection whose copy has a handler.
struct OneEntry : testing::Test {
    OneEntry() {
        peers.mount(original, copy);
        once->notifierIs(copy);
    }

    Name const a{"a"};
    Peers peers;
    Qor::Ptr<Dir> original = make<Dir>(Name("dir"));
    Qor::Ptr<Dir> copy = make<Dir>(Name("dir"));
    Qor::Ptr<Once> once = make<Once>();
};

using EntryThatAHandlerReplaced = OneEntry;

// It was here alone: the original had been told of another state by then.
TEST_F(EntryThatAHandlerReplaced, DoesNotTakeTheStateOfTheOneThatWasAnnounced) {
    once->what = [&] { copy->entryIs(a, make<Dir>(a)); };
    peers.source.out().hasLiveBufferIs(false);
    original->entryIs(a, make<Dir>(a));
    original->entryStateIs(a, Dir::EntryState::released);
    peers.source.out().hasLiveBufferIs(true);
    peers.settle();
    EXPECT_FALSE(once->what);
    EXPECT_EQ(copy->entryState(a), original->entryState(a));
    EXPECT_EQ(copy->entryState(a), Dir::EntryState::ready);
}

std::vector<Case> cases() {
    std::vector<Case> result;
    for (unsigned bits = 0; bits < 32; ++bits) {
        auto const record = static_cast<Record>(bits >> 2 & 3U);
        auto const change = static_cast<Change>(bits >> 4 & 1U);
        // What is left out has gone when handlers run.
        if (record == Record::leavesOut && change == Change::removes) continue;
        result.push_back({(bits & 1U) != 0, record, change, (bits & 2U) != 0});
    }
    return result;
}

INSTANTIATE_TEST_SUITE_P(All, EntryHandlers, testing::ValuesIn(cases()), nameOfEntryCase);

}  // namespace
