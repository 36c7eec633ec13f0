// Readers that do not read, or read slowly: they cost their ring and a mark for what is owed,
// whatever the number of changes, and hold up nobody.
#include "CountingNew.h"
#include "Pair.h"

#include <vgw/agent/Status.h>

#include <tests/support/Settings.h>

#include <gtest/gtest.h>

#include <chrono>
#include <cstdio>
#include <random>
#include <vector>

namespace {

using Memory::Pair;
using Qor::make;
using Qor::Name;

constexpr std::size_t rows = 10000;

// How many times more than in the short form.
std::size_t factor() { return Settings::number("VGW_SOAK", 1); }

// Says how much of it there was, and how fast, when it goes.
class Tally {
  public:
    Tally(std::size_t count, char const* what) : count_(count), what_(what) {}
    ~Tally() {
        std::chrono::duration<double> const past = Clock::now() - start_;
        std::printf("%zu %s in %.1f s, %.0f a second\n", count_, what_, past.count(),
                    static_cast<double>(count_) / past.count());
    }
    Tally(Tally const&) = delete;
    Tally& operator=(Tally const&) = delete;

  private:
    using Clock = std::chrono::steady_clock;
    std::size_t const count_;
    char const* const what_;
    Clock::time_point const start_ = Clock::now();
};

struct Reader {
    Reader(Qor::Ptr<Qor::Dir> const& root) : pair(root) {
        pair.reader->mount("/vgw/status", false, copy);
    }
    Vgw::Status::Ptr copy = Vgw::statusFactory(Name("status"));
    Pair pair;
};

std::string nameOf(std::size_t row) { return "row-" + std::to_string(row); }
Name nameAt(std::size_t row) { return Name(std::string_view(nameOf(row))); }

class SlowReader : public testing::Test {
  protected:
    SlowReader() {
        root_->entryIs(Name("status"), original_);
        db_ = original_->ovsdbIs(Name("db"));
    }
    void fill(std::size_t count) {
        for (std::size_t row = 0; row < count; ++row) {
            rows_.push_back(db_->logicalSwitchIs(nameAt(row)));
        }
    }
    bool isEqual(Vgw::Status const& copy) const {
        auto const there = copy.ovsdb();
        if (!there || there->logicalSwitchs() != db_->logicalSwitchs()) return false;
        for (auto at = db_->logicalSwitchIterator(); at; ++at) {
            auto const row = there->logicalSwitch(at.key());
            if (!row || row->tunnelKey() != at.value()->tunnelKey()) return false;
            if (row->desc() != at.value()->desc()) return false;
        }
        return true;
    }

    Qor::Ptr<Qor::Dir> root_ = make<Qor::Dir>(Name("vgw"));
    Vgw::Status::Ptr original_ = Vgw::statusFactory(Name("status"));
    Vgw::HwVtepOvsdb::Ptr db_;
    std::vector<Vgw::LogicalSwitch::Ptr> rows_;
    std::mt19937_64 random_{1};
};

TEST_F(SlowReader, StoppedOneCostsItsRingAndAMarkForEachEntity) {
    fill(rows);
    Reader stopped(root_);
    Reader lively(root_);
    ASSERT_TRUE(stopped.pair.settle());
    ASSERT_TRUE(lively.pair.settle());
    std::size_t const before = Memory::heldBytes();
    stopped.pair.near.roomIs(0);
    std::size_t inTheBeginning = 0;
    Qor::U32 value = 1;
    std::size_t const passes = Settings::volume(500, 20, 20) * factor();
    Tally const tally(passes * 2 * rows, "changes past a stopped reader of 10000 entities");
    for (std::size_t pass = 0; pass < passes; ++pass) {
        for (std::size_t i = 0; i < rows; ++i) rows_[random_() % rows]->tunnelKeyIs(++value);
        for (auto const& row : rows_) row->tunnelKeyIs(++value);
        stopped.pair.agent->service();
        ASSERT_TRUE(lively.pair.settle());
        if (pass == 2) inTheBeginning = Memory::heldBytes();
    }
    constexpr std::size_t ring = 9 * 49152;
    constexpr std::size_t mark = 300;
    EXPECT_LE(Memory::heldBytes(), before + ring + rows * mark);
    EXPECT_LE(Memory::heldBytes(), inTheBeginning + 49152);
    EXPECT_TRUE(isEqual(*lively.copy));
    EXPECT_TRUE(stopped.pair.isOpen());

    Qor::U64 const sent = stopped.pair.agent->counters().bytesOut;
    stopped.pair.near.roomIs(~std::size_t{0});
    ASSERT_TRUE(stopped.pair.settle());
    EXPECT_TRUE(isEqual(*stopped.copy));
    // Beside what stood in the ring, each row once.
    EXPECT_LE(stopped.pair.agent->counters().bytesOut - sent, ring + rows * 40);
    EXPECT_EQ(stopped.pair.agent->counters().flows, 0U);
}

// Keys that come and go are owed to nobody: what is held does not grow with their number.
TEST_F(SlowReader, StoppedOneCostsNothingForRowsAndKeysThatCameAndWent) {
    fill(500);
    auto const port = db_->physicalPortIs(Name("port"));
    Reader stopped(root_);
    ASSERT_TRUE(stopped.pair.settle());
    stopped.pair.near.roomIs(0);
    std::size_t inTheBeginning = 0;
    std::size_t const passes = 40 * factor();
    Tally const tally(passes * 6 * 2000, "rows and keys past a stopped reader");
    for (std::size_t pass = 0; pass < passes; ++pass) {
        for (std::size_t i = 0; i < 2000; ++i) {
            std::string const name = std::to_string(pass) + "-" + std::to_string(i);
            db_->logicalSwitchIs(Name(std::string_view(name)))->tunnelKeyIs(7);
            rows_[i % rows_.size()]->invalidAttribIs(std::string_view(name), true);
            port->faultIs(std::string_view(name), true);
            db_->logicalSwitchDel(Name(std::string_view(name)));
            rows_[i % rows_.size()]->invalidAttribDel(std::string_view(name));
            port->faultDel(std::string_view(name));
        }
        port->vlanBindingIs(static_cast<Qor::U16>(pass), std::string_view(std::string(40000, 'x')));
        stopped.pair.agent->service();
        if (pass == 9) inTheBeginning = Memory::heldBytes();
    }
    EXPECT_LE(Memory::heldBytes(), inTheBeginning + 40000 * passes + 49152);
    stopped.pair.near.roomIs(~std::size_t{0});
    ASSERT_TRUE(stopped.pair.settle());
    EXPECT_TRUE(isEqual(*stopped.copy));
    EXPECT_EQ(stopped.pair.agent->counters().flows, 0U);
    for (auto at = db_->logicalSwitchIterator(); at; ++at) {
        EXPECT_EQ(stopped.copy->ovsdb()->logicalSwitch(at.key())->invalidAttribs(), 0U);
    }
    auto const there = stopped.copy->ovsdb()->physicalPort(Name("port"));
    ASSERT_TRUE(there);
    EXPECT_EQ(there->faults(), 0U);
    EXPECT_EQ(there->vlanBindings(), passes);
}

TEST_F(SlowReader, SixtyFourAtAllSpeedsConvergeUnderChurn) {
    fill(200);
    std::vector<std::unique_ptr<Reader>> readers;
    for (std::size_t i = 0; i < 64; ++i) readers.push_back(std::make_unique<Reader>(root_));
    std::size_t const turns = 300 * factor();
    Tally const tally(turns * 10, "changes past 64 readers of all speeds");
    for (std::size_t turn = 0; turn < turns; ++turn) {
        for (int i = 0; i < 10; ++i) {
            std::size_t const row = random_() % 300;
            if (random_() % 4 == 0) {
                db_->logicalSwitchDel(nameAt(row));
            } else {
                auto const there = db_->logicalSwitchIs(nameAt(row));
                there->tunnelKeyIs(static_cast<Qor::U32>(random_()));
                if (random_() % 8 == 0) {
                    there->descIs(std::string_view(std::string(random_() % 3000, 'x')));
                }
            }
        }
        for (std::size_t i = 0; i < readers.size(); ++i) {
            readers[i]->pair.near.roomIs(i == 0 ? 0 : std::size_t{1} << (i % 20));
            if (turn % (i % 9 + 1) == 0) readers[i]->pair.turn();
        }
    }
    for (auto const& reader : readers) {
        reader->pair.near.roomIs(~std::size_t{0});
        ASSERT_TRUE(reader->pair.settle());
        EXPECT_TRUE(reader->pair.isOpen());
        EXPECT_TRUE(isEqual(*reader->copy));
    }
}

}  // namespace
