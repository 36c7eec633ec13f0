#include <tests/unit/notify/TestListeners.h>

#include <gtest/gtest.h>

using namespace Sample;

namespace {

class DispatchReentry : public testing::Test {
  protected:
    Port::Ptr port = Qor::make<Port>("ethernet1");
    Log log;
    PortListener::Ptr a = listen<PortListener>(port, log, "a");
    PortListener::Ptr b = listen<PortListener>(port, log, "b");
    PortListener::Ptr c = listen<PortListener>(port, log, "c");
};

TEST_F(DispatchReentry, NotifieeMayDetachItself) {
    b->react = [this](std::string const&) { b->notifierIs(nullptr); };
    port->speedIs(1);
    port->speedIs(2);
    EXPECT_EQ(log, (Log{"a:speed", "b:speed", "c:speed", "a:speed", "c:speed"}));
}

TEST_F(DispatchReentry, NotifieeMayDestroyItself) {
    b->react = [this](std::string const&) { b = nullptr; };
    port->speedIs(1);
    EXPECT_EQ(PortListener::living(), 2);
    port->speedIs(2);
    EXPECT_EQ(log, (Log{"a:speed", "b:speed", "c:speed", "a:speed", "c:speed"}));
}

TEST_F(DispatchReentry, LaterNotifieeThatIsDetachedAndNobodyHoldsIsNotCalled) {
    a->react = [this](std::string const&) {
        b->notifierIs(nullptr);
        b = nullptr;
    };
    port->speedIs(1);
    EXPECT_EQ(log, (Log{"a:speed", "c:speed"}));
    EXPECT_EQ(PortListener::living(), 2);
}

TEST_F(DispatchReentry, LaterNotifieeThatIsDroppedIsNotCalled) {
    a->react = [this](std::string const&) { b = nullptr; };
    port->speedIs(1);
    EXPECT_EQ(log, (Log{"a:speed", "c:speed"}));
}

TEST_F(DispatchReentry, AllLaterNotifieesMayBeDropped) {
    a->react = [this](std::string const&) {
        b = nullptr;
        c = nullptr;
    };
    port->speedIs(1);
    EXPECT_EQ(log, (Log{"a:speed"}));
    EXPECT_EQ(port->notifierList().count(), 1U);
}

TEST_F(DispatchReentry, LaterNotifieeThatIsDetachedAndStillHeldIsCalledOnceMore) {
    a->react = [this](std::string const&) { b->notifierIs(nullptr); };
    port->speedIs(1);
    port->speedIs(2);
    EXPECT_EQ(log, (Log{"a:speed", "b:speed", "c:speed", "a:speed", "c:speed"}));
}

TEST_F(DispatchReentry, EarlierNotifieeMayBeDropped) {
    c->react = [this](std::string const&) { a = nullptr; };
    port->speedIs(1);
    port->speedIs(2);
    EXPECT_EQ(log, (Log{"a:speed", "b:speed", "c:speed", "b:speed", "c:speed"}));
}

TEST_F(DispatchReentry, NotifieeAttachedMeanwhileIsNotCalledForThisChange) {
    PortListener::Ptr fresh;
    a->react = [&](std::string const&) {
        if (!fresh) {
            fresh = listen<PortListener>(port, log, "fresh");
        }
    };
    port->speedIs(1);
    EXPECT_EQ(log, (Log{"a:speed", "b:speed", "c:speed"}));
    port->speedIs(2);
    EXPECT_EQ(log.back(), "fresh:speed");
}

TEST_F(DispatchReentry, NotifieeDetachedAndAttachedAgainIsCalledOnce) {
    a->react = [this](std::string const&) {
        b->notifierIs(nullptr);
        b->notifierIs(port);
    };
    port->speedIs(1);
    EXPECT_EQ(log, (Log{"a:speed", "b:speed", "c:speed"}));
    log.clear();
    a->react = nullptr;
    port->speedIs(2);
    EXPECT_EQ(log, (Log{"a:speed", "c:speed", "b:speed"}));
}

TEST_F(DispatchReentry, SetterInAHandlerRunsALoopOfItsOwn) {
    a->react = [this](std::string const&) {
        if (port->speed() < 3) {
            port->speedIs(port->speed() + 1);
        }
    };
    port->speedIs(1);
    EXPECT_EQ(port->speed(), 3U);
    EXPECT_EQ(log, (Log{"a:speed", "a:speed", "a:speed", "b:speed", "c:speed", "b:speed", "c:speed",
                        "b:speed", "c:speed"}));
}

TEST_F(DispatchReentry, SetterOfAnotherAttributeMayRunInAHandler) {
    b->react = [this](std::string const& event) {
        if (event == "speed") {
            port->modeIs(9);
        }
    };
    port->speedIs(1);
    EXPECT_EQ(log, (Log{"a:speed", "b:speed", "a:mode", "b:mode", "c:mode", "c:speed"}));
}

TEST_F(DispatchReentry, ChangesOfALaterLoopWorkOnTheListOfThatMoment) {
    b->react = [this](std::string const& event) {
        if (event == "speed") {
            c->notifierIs(nullptr);
            port->modeIs(9);
        }
    };
    port->speedIs(1);
    EXPECT_EQ(log, (Log{"a:speed", "b:speed", "a:mode", "b:mode", "c:speed"}));
}

TEST_F(DispatchReentry, NotifieeInItsEndIsNotCalled) {
    // What a notifiee changes while it is destroyed does not come back to it.
    struct Farewell : PortListener {
        using PortListener::PortListener;
        ~Farewell() override { port->speedIs(99); }
        Port* port = nullptr;
    };
    auto farewell = Qor::make<Farewell>(log, "farewell");
    farewell->port = port.ptr();
    farewell->notifierIs(port);
    farewell = nullptr;
    EXPECT_EQ(log, (Log{"a:speed", "b:speed", "c:speed"}));
    EXPECT_EQ(port->notifierList().count(), 3U);
}

TEST_F(DispatchReentry, NotifierMayGoWhileItTells) {
    for (auto const& listener : {a, b, c}) {
        listener->isWeakReferenceIs(true);
    }
    a->react = [this](std::string const& event) {
        if (event == "speed") {
            port = nullptr;
        }
    };
    port->speedIs(1);
    EXPECT_EQ(log, (Log{"a:speed", "a:zero", "b:zero", "c:zero", "b:speed", "c:speed"}));
    EXPECT_EQ(Port::living(), 0);
    EXPECT_EQ(b->qorNotifier(), nullptr);
}

TEST_F(DispatchReentry, NotifierMayGoWhileItTellsOfAKey) {
    for (auto const& listener : {a, b, c}) {
        listener->notifierIs(nullptr);
    }
    auto const row = listen<RowListener>(port, log, "row");
    row->isWeakReferenceIs(true);
    row->react = [this](std::string const& event) {
        if (event != "zero") {
            port = nullptr;
        }
    };
    port->labelIs(7, "seven");
    EXPECT_EQ(log, (Log{"row:label(7)", "row:zero"}));
    EXPECT_EQ(Port::living(), 0);
}

TEST_F(DispatchReentry, MemberMayGoWhileItsRemovalIsTold) {
    auto const row = listen<RowListener>(port, log, "row");
    port->labelIs(7, "seven");
    row->react = [this](std::string const&) { port->labelDelAll(); };
    EXPECT_EQ(port->labelDel(7), "seven");
    EXPECT_EQ(port->labels(), 0U);
}

}  // namespace
