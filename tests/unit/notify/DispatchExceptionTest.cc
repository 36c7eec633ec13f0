#include <tests/unit/notify/TestListeners.h>

#include <qor/core/Exception.h>
#include <qor/core/Expect.h>
#include <qor/core/Trace.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <stdexcept>

using namespace Sample;

namespace {

class DispatchException : public testing::Test {
  protected:
    Port::Ptr port = Qor::make<Port>("ethernet1");
    Log log;
    PortListener::Ptr a = listen<PortListener>(port, log, "a");
    PortListener::Ptr b = listen<PortListener>(port, log, "b");
};

TEST_F(DispatchException, StopsNeitherTheNextNotifieeNorTheSetter) {
    a->react = [](std::string const&) { throw std::runtime_error("no"); };
    EXPECT_NO_THROW(port->speedIs(10));
    EXPECT_EQ(port->speed(), 10U);
    EXPECT_EQ(log, (Log{"a:speed", "a:exception(386)", "b:speed"}));
}

TEST_F(DispatchException, IsReportedWithTheIdOfTheAttribute) {
    a->react = [](std::string const&) { throw std::runtime_error("no"); };
    b->notifierIs(nullptr);
    port->modeIs(1);
    port->markIs("m", true);
    port->isNondestructingIs(true);
    port->isNondestructingIs(false);
    EXPECT_EQ(log, (Log{"a:mode", "a:exception(258)", "a:nondestructing", "a:exception(6)",
                        "a:nondestructing", "a:exception(6)"}));
}

TEST_F(DispatchException, OfAnyTypeIsContained) {
    a->react = [](std::string const&) { throw 42; };
    b->react = [](std::string const&) { Qor::throwRangeException("no"); };
    EXPECT_NO_THROW(port->speedIs(10));
    EXPECT_EQ(log, (Log{"a:speed", "a:exception(386)", "b:speed", "b:exception(386)"}));
}

TEST_F(DispatchException, CanBeSeenWhileItIsReported) {
    a->react = [](std::string const&) { throw std::runtime_error("what it says"); };
    std::string seen;
    a->onException = [&] {
        try {
            throw;
        } catch (std::runtime_error const& e) {
            seen = e.what();
        }
    };
    port->speedIs(10);
    EXPECT_EQ(seen, "what it says");
}

TEST_F(DispatchException, OfTheReportItselfIsContainedToo) {
    a->react = [](std::string const&) { throw std::runtime_error("no"); };
    a->onException = [] { throw std::runtime_error("not that either"); };
    EXPECT_NO_THROW(port->speedIs(10));
    EXPECT_EQ(log, (Log{"a:speed", "a:exception(386)", "b:speed"}));
}

TEST_F(DispatchException, OfTheLastNotifieeIsContained) {
    b->react = [](std::string const&) { throw std::runtime_error("no"); };
    EXPECT_NO_THROW(port->speedIs(10));
    EXPECT_EQ(log, (Log{"a:speed", "b:speed", "b:exception(386)"}));
}

TEST_F(DispatchException, MayBeReportedWithoutAnyoneListening) {
    // The default report ends in the trace, which is off.
    struct Silent : Port::NotifieeConst {
        void onSpeed() override { throw std::runtime_error("no"); }
    };
    auto const silent = Qor::make<Silent>();
    silent->notifierIs(port);
    EXPECT_NO_THROW(port->speedIs(10));
    EXPECT_EQ(log, (Log{"a:speed", "b:speed"}));
}

TEST_F(DispatchException, OfAHandlerThatDetachedItselfIsReportedToIt) {
    a->react = [this](std::string const&) {
        a->notifierIs(nullptr);
        throw std::runtime_error("no");
    };
    port->speedIs(10);
    EXPECT_EQ(log, (Log{"a:speed", "a:exception(386)", "b:speed"}));
}

TEST_F(DispatchException, OfAHandlerThatDroppedItsNotifieeIsReportedToIt) {
    a->react = [this](std::string const&) {
        a = nullptr;
        throw std::runtime_error("no");
    };
    port->speedIs(10);
    EXPECT_EQ(log, (Log{"a:speed", "a:exception(386)", "b:speed"}));
    EXPECT_EQ(PortListener::living(), 1);
}

// Drops the last reference on itself, and its end does not come to one.
struct BadEnd : Port::NotifieeConst {
    Qor::Ptr<BadEnd> self{this};
    void onSpeed() override { self = nullptr; }
    void zeroReferencesIs(bool) override { throw std::runtime_error("no end"); }
};

TEST_F(DispatchException, OfANotifieesEndIsNotTakenForTheNextOnesHandlers) {
    b->notifierIs(nullptr);
    auto* const bad = new BadEnd;
    bad->notifierIs(port);
    bad->qorDeleteRef();
    b->notifierIs(port);
    EXPECT_THROW(port->speedIs(10), std::runtime_error);
    EXPECT_EQ(log, (Log{"a:speed"}));
    EXPECT_EQ(b->qorRefs(), 1U);
    delete bad;
    log.clear();
    port->speedIs(20);
    EXPECT_EQ(log, (Log{"a:speed", "b:speed"}));
}

TEST_F(DispatchException, LeavesTheExpectationsOfTheCaller) {
    Qor::Expect const outer(Qor::Exception::rangeId);
    bool within = false;
    a->react = [&](std::string const&) {
        within = Qor::Expect::isExpected(Qor::Exception::rangeId);
        throw std::runtime_error("no");
    };
    port->speedIs(10);
    EXPECT_TRUE(within);
    EXPECT_TRUE(Qor::Expect::isExpected(Qor::Exception::rangeId));
}

struct RefusingSpeed : Port::NotifieeConst {
    void onSpeed() override { throw std::runtime_error("refused"); }
};

Port* lasting = nullptr;

// What is registered before the first use of a static runs after that static's end.
TEST(DispatchExceptionDeathTest, HandlerMayThrowWhileTheProcessEnds) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    auto const run = [] {
        std::atexit([] {
            std::vector<Qor::String8> const reused(50, Qor::String8("XYZ"));
            Qor::Ptr<Qor::Entity> const others[] = {Qor::make<Port>("XYZ"), Qor::make<Port>("UVW")};
            lasting->speedIs(2);
        });
        Qor::traceLevelIs("Qor", 1, true);
        lasting = Qor::make<Port>("ethernet1").release();
        auto const refusing = Qor::make<RefusingSpeed>();
        refusing->notifierIs(Qor::Ptr<Port>(lasting));
        lasting->speedIs(1);
        std::exit(0);
    };
    auto const line = "Qor\\[1\\] Qor/Notify:.*a handler threw: refused\n";
    EXPECT_EXIT(run(), testing::ExitedWithCode(0), std::string(line) + line);
}

}  // namespace
