#include <qor/core/Exception.h>
#include <qor/core/Trace.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <thread>
#include <vector>

#include <unistd.h>

namespace {

using Qor::TraceHandle;
using Qor::TraceRecord;

class Trace : public testing::Test {
  protected:
    Trace() {
        Qor::traceSinkIs([this](TraceRecord const& record) { records_.push_back(record); });
    }
    ~Trace() override {
        Qor::traceSinkIs({});
        Qor::coverageStream_ = nullptr;
    }

    void statement(TraceHandle const& handle, int level) {
        Qor::trace(handle, level, "VgwTypes", 7, "reset", [this](std::ostream& text) {
            ++evaluated_;
            text << "value " << 1.0 / 3.0;
        });
    }

    std::vector<TraceRecord> records_;
    int evaluated_ = 0;
};

TEST_F(Trace, StatementThatIsOffEvaluatesNothing) {
    TraceHandle const handle("trace.off", false);
    statement(handle, 5);
    EXPECT_EQ(evaluated_, 0);
    EXPECT_TRUE(records_.empty());
}

TEST_F(Trace, StatementThatIsOnTellsEverything) {
    TraceHandle const handle("trace.on", false);
    Qor::traceLevelIs("trace.on", 5, true);
    statement(handle, 5);
    ASSERT_EQ(records_.size(), 1U);
    auto const& record = records_[0];
    EXPECT_EQ(record.handle, "trace.on");
    EXPECT_EQ(record.subject, "<unknown>");
    EXPECT_EQ(record.text, "value 0.333333333333") << "precision 12";
    EXPECT_EQ(record.level, 5);
    EXPECT_TRUE(record.on);
    EXPECT_EQ(record.unit, "VgwTypes");
    EXPECT_EQ(record.line, 7);
    EXPECT_EQ(record.function, "reset");
}

TEST_F(Trace, LevelsAreIndependent) {
    TraceHandle const handle("trace.levels", false);
    EXPECT_FALSE(handle.isOn());
    Qor::traceLevelIs("trace.levels", 0, true);
    Qor::traceLevelIs("trace.levels", 31, true);
    EXPECT_TRUE(handle.isOn());
    EXPECT_TRUE(handle.isOn(0));
    EXPECT_TRUE(handle.isOn(31));
    EXPECT_FALSE(handle.isOn(5));
    EXPECT_FALSE(handle.isOn(32));
    EXPECT_FALSE(handle.isOn(-1));
    Qor::traceLevelIs("trace.levels", 0, false);
    EXPECT_FALSE(handle.isOn(0));
    EXPECT_TRUE(handle.isOn(31));
}

TEST_F(Trace, HandleBuiltOnHasAllLevels) {
    TraceHandle const handle("trace.built.on", true);
    EXPECT_TRUE(handle.isOn(0));
    EXPECT_TRUE(handle.isOn(31));
}

TEST_F(Trace, LevelHoldsForHandlesBuiltLater) {
    Qor::traceLevelIs("trace.later", 6, true);
    TraceHandle const first("trace.later", false);
    TraceHandle const second("trace.later", false);
    EXPECT_TRUE(first.isOn(6));
    EXPECT_TRUE(second.isOn(6));
    EXPECT_FALSE(first.isOn(5));
}

TEST_F(Trace, LevelSwitchedOffGoesOverAHandleBuiltOn) {
    Qor::traceLevelIs("trace.over", 5, false);
    TraceHandle const handle("trace.over", true);
    EXPECT_FALSE(handle.isOn(5));
    EXPECT_TRUE(handle.isOn(6));
}

TEST_F(Trace, OtherNamesStayAsTheyAre) {
    TraceHandle const one("trace.one", false);
    TraceHandle const other("trace.other", false);
    Qor::traceLevelIs("trace.one", 5, true);
    EXPECT_FALSE(other.isOn());
}

TEST_F(Trace, LevelOutOfRangeIsRefused) {
    EXPECT_THROW(Qor::traceLevelIs("x", 32, true), Qor::RangeException);
    EXPECT_THROW(Qor::traceLevelIs("x", -1, true), Qor::RangeException);
}

TEST_F(Trace, CoverageStreamRunsStatementsWhoseLevelIsOff) {
    TraceHandle const handle("trace.coverage", false);
    std::ostringstream stream;
    Qor::coverageStream_ = &stream;
    statement(handle, 6);
    ASSERT_EQ(records_.size(), 1U);
    EXPECT_FALSE(records_[0].on);
    EXPECT_NE(stream.str().find("value 0.333333333333"), std::string::npos);
}

TEST_F(Trace, DefaultSinkWritesWhatIsOnToStandardError) {
    TraceHandle const handle("trace.default", false);
    Qor::traceSinkIs({});
    Qor::traceLevelIs("trace.default", 5, true);
    std::ostringstream stream;
    Qor::coverageStream_ = &stream;
    testing::internal::CaptureStderr();
    statement(handle, 5);
    statement(handle, 6);
    auto const written = testing::internal::GetCapturedStderr();
    EXPECT_EQ(written, "trace.default[5] VgwTypes:7 reset <unknown>: value 0.333333333333\n");
}

TEST_F(Trace, SinkThatThrowsDisturbsNobody) {
    TraceHandle const handle("trace.throw", true);
    int calls = 0;
    Qor::traceSinkIs([&calls](TraceRecord const&) {
        ++calls;
        throw std::runtime_error("x");
    });
    EXPECT_NO_THROW(statement(handle, 5));
    EXPECT_EQ(calls, 1);
}

TEST_F(Trace, SinkMayTraceAndReplaceItself) {
    TraceHandle const handle("trace.nested", true);
    int calls = 0;
    Qor::traceSinkIs([&](TraceRecord const&) {
        ++calls;
        Qor::traceSinkIs([this](TraceRecord const& record) { records_.push_back(record); });
        statement(handle, 6);
    });
    statement(handle, 5);
    EXPECT_EQ(calls, 1);
    ASSERT_EQ(records_.size(), 1U);
    EXPECT_EQ(records_[0].level, 6);
}

void lastStatement(TraceHandle const& handle) {
    Qor::trace(handle, 5, "VgwTypes", 7, "end", [](std::ostream& text) { text << "last"; });
}

TEST(TraceDeathTest, StatementMayRunWhileTheProcessEnds) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    struct Sink {
        ~Sink() { name = "gone"; }
        char const* name = "sink";
    };
    auto const run = [] {
        std::atexit([] { lastStatement(TraceHandle("trace.end", true)); });
        Qor::traceSinkIs([sink = std::make_shared<Sink>()](TraceRecord const& record) {
            std::fprintf(stderr, "%s: %s", sink->name, record.text.charPtr());
        });
        std::exit(0);
    };
    EXPECT_EXIT(run(), testing::ExitedWithCode(0), "sink: last");
}

TEST(TraceDeathTest, WhatAReplacedSinkHeldMayTraceAtItsEnd) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    struct Tracing {
        ~Tracing() { lastStatement(handle); }
        TraceHandle handle{"trace.held", true};
    };
    auto const run = [] {
        alarm(10);
        Qor::traceSinkIs([held = std::make_shared<Tracing>()](TraceRecord const&) {});
        Qor::traceSinkIs({});
        std::exit(0);
    };
    EXPECT_EXIT(run(), testing::ExitedWithCode(0), "trace.held\\[5\\] .*: last");
}

TEST_F(Trace, HandlesComeAndGoOnManyThreads) {
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([] {
            for (int round = 0; round < 1000; ++round) {
                TraceHandle const handle("trace.threads", false);
                Qor::traceLevelIs("trace.threads", round % 32, true);
                ASSERT_TRUE(handle.isOn(round % 32));
            }
        });
    }
    for (auto& thread : threads) thread.join();
}

}  // namespace
