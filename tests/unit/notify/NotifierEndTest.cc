#include <tests/unit/notify/TestListeners.h>

#include <gtest/gtest.h>

using namespace Sample;

namespace {

class NotifierEnd : public testing::Test {
  protected:
    ~NotifierEnd() override {
        port = nullptr;
        EXPECT_EQ(Port::living(), 0);
        EXPECT_EQ(PortListener::living(), 0);
    }
    PortListener::Ptr weak(std::string name) {
        auto const listener = Qor::make<PortListener>(log, std::move(name));
        listener->isWeakReferenceIs(true);
        listener->notifierIs(port);
        return listener;
    }
    Port::Ptr port = Qor::make<Port>("ethernet1");
    Log log;
};

TEST_F(NotifierEnd, IsToldToAllInOrder) {
    auto const a = weak("a");
    auto const b = weak("b");
    port = nullptr;
    EXPECT_EQ(log, (Log{"a:zero", "b:zero"}));
    EXPECT_FALSE(a->qorIsListed());
    EXPECT_FALSE(b->qorIsListed());
}

TEST_F(NotifierEnd, NotifieesMayDetachWhileItIsTold) {
    auto const a = weak("a");
    auto const b = weak("b");
    a->react = [&](std::string const&) {
        a->notifierIs(nullptr);
        b->notifierIs(nullptr);
    };
    port = nullptr;
    EXPECT_EQ(log, (Log{"a:zero", "b:zero"}));
}

TEST_F(NotifierEnd, NotifieesMayGoWhileItIsTold) {
    auto a = weak("a");
    auto b = weak("b");
    a->react = [&](std::string const&) {
        b = nullptr;
        a = nullptr;
    };
    port = nullptr;
    EXPECT_EQ(log, (Log{"a:zero"}));
}

TEST_F(NotifierEnd, ExceptionsWhileItIsToldAreContained) {
    auto const a = weak("a");
    auto const b = weak("b");
    a->react = [](std::string const&) { throw 1; };
    port = nullptr;
    EXPECT_EQ(log, (Log{"a:zero", "a:exception(5)", "b:zero"}));
}

TEST_F(NotifierEnd, SettersWhileItIsToldTellAsEver) {
    auto const a = weak("a");
    a->react = [this](std::string const& event) {
        if (event == "zero") {
            port->speedIs(5);
        }
    };
    Port* const raw = port.ptr();
    a->react = [raw](std::string const& event) {
        if (event == "zero") {
            raw->speedIs(5);
        }
    };
    port = nullptr;
    EXPECT_EQ(log, (Log{"a:zero", "a:speed"}));
}

TEST_F(NotifierEnd, WeakNotifieeAttachedWhileItIsToldForgetsToo) {
    auto const a = weak("a");
    auto const late = Qor::make<PortListener>(log, "late");
    late->isWeakReferenceIs(true);
    Port* const raw = port.ptr();
    a->react = [&](std::string const&) { late->notifierIs(Port::Ptr(raw)); };
    port = nullptr;
    EXPECT_EQ(log, (Log{"a:zero"}));
    EXPECT_EQ(late->qorNotifier(), nullptr);
    EXPECT_FALSE(late->qorIsListed());
}

TEST_F(NotifierEnd, StrongNotifieeAttachedWhileItIsToldLetsItLive) {
    auto const a = weak("a");
    auto strong = Qor::make<PortListener>(log, "strong");
    Port* const raw = port.ptr();
    a->react = [&](std::string const&) { strong->notifierIs(Port::Ptr(raw)); };
    port = nullptr;
    ASSERT_EQ(Port::living(), 1);
    a->react = nullptr;
    log.clear();
    raw->speedIs(3);
    EXPECT_EQ(log, (Log{"a:speed", "strong:speed"}));
    strong = nullptr;
    EXPECT_EQ(Port::living(), 0);
    EXPECT_EQ(a->qorNotifier(), nullptr);
}

TEST_F(NotifierEnd, StrongNotifieeAttachedWhileTheContentsGoForgetsIt) {
    // The container's removals are told from within its destructor: too late to save it.
    auto device = Qor::make<Device>("d");
    device->portIs("p");
    auto const watch = Qor::make<DeviceListener>(log, "w");
    watch->isWeakReferenceIs(true);
    watch->notifierIs(device);
    auto const late = Qor::make<DeviceListener>(log, "late");
    Device* const raw = device.ptr();
    watch->react = [&](std::string const& event) {
        if (event == "port(p)") {
            late->notifierIs(Device::Ptr(raw));
        }
    };
    device = nullptr;
    EXPECT_EQ(log, (Log{"w:zero", "w:port(p)"}));
    EXPECT_EQ(Device::living(), 0);
    EXPECT_EQ(late->qorNotifier(), nullptr);
}

TEST_F(NotifierEnd, MarkedNotifierKeepsItsListWhenANotifieeGoes) {
    auto a = listen<PortListener>(port, log, "a");
    port->qorMarkedForDeletionIs(true);
    auto const version = port->notifierList().version();
    a = nullptr;
    EXPECT_EQ(port->notifierList().count(), 1U);
    EXPECT_EQ(port->notifierList().version(), version);
    EXPECT_EQ(port->notifierList().head(), nullptr) << "nothing leads to what has gone";
}

TEST_F(NotifierEnd, MarkedNotifierMayEndAfterItsNotifiees) {
    auto a = weak("a");
    auto const b = weak("b");
    auto c = listen<PortListener>(port, log, "c");
    port->qorMarkedForDeletionIs(true);
    a = nullptr;
    c = nullptr;
    port->speedIs(8);
    EXPECT_EQ(log, (Log{"b:speed"}));
    port = nullptr;
    EXPECT_EQ(log, (Log{"b:speed", "b:zero"}));
    EXPECT_EQ(b->qorNotifier(), nullptr);
}

TEST_F(NotifierEnd, MarkedNotifierMayEndThroughItsLastNotifiee) {
    auto a = listen<PortListener>(port, log, "a");
    port->qorMarkedForDeletionIs(true);
    port = nullptr;
    a = nullptr;
    EXPECT_EQ(Port::living(), 0);
}

TEST_F(NotifierEnd, UnmarkedAgainTheNotifierTellsTheRest) {
    auto a = listen<PortListener>(port, log, "a");
    auto const b = listen<PortListener>(port, log, "b");
    port->qorMarkedForDeletionIs(true);
    a = nullptr;
    port->qorMarkedForDeletionIs(false);
    auto const c = listen<PortListener>(port, log, "c");
    port->speedIs(1);
    EXPECT_EQ(log, (Log{"b:speed", "c:speed"}));
}

TEST_F(NotifierEnd, EntityThatIsGoneHasNoListOfItsOwnAnyMore) {
    auto const a = weak("a");
    auto const next = Qor::make<Port>("ethernet2");
    port = nullptr;
    a->notifierIs(next);
    next->speedIs(1);
    EXPECT_EQ(log, (Log{"a:zero", "a:speed"}));
    a->notifierIs(nullptr);
}

}  // namespace
