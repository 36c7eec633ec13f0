// A container, what it owns and refers to, and who watches: at the k-th handler of a script, for
// all k, some of it is torn down. Everything ends once, and nothing leads to what is gone.
#include <tests/property/framework/Random.h>
#include <tests/unit/notify/QueuingListener.h>

#include <gtest/gtest.h>

#include <array>
#include <optional>

using namespace Sample;

namespace {

enum class Cut : int {
    dropDevice,
    deletePorts,
    deleteMain,
    deleteUplinks,
    dropPorts,
    dropDeviceWatchers,
    dropPortWatchers,
    dropEverything,
    moveWatchers,
    addPort,
    setAll,
    stepWalk,
    deleteThroughWalk,
    runActivities,
    throwIt,
    count,
};

class Scene {
  public:
    using Plan = std::vector<std::pair<int, Cut>>;

    explicit Scene(Plan plan) : plan_(std::move(plan)), raw_(device_.ptr()) {
        for (bool const weak : {true, false}) {
            auto const watcher = Qor::make<DeviceListener>(log_, "d");
            watcher->isWeakReferenceIs(weak);
            watcher->react = [this](std::string const&) { heard(); };
            watcher->notifierIs(device_);
            deviceWatchers_.push_back(watcher);
        }
    }
    ~Scene() {
        plan_.clear();
        dropEverything();
    }

    void play() {
        for (char const* name : {"p", "q", "r"}) {
            onDevice([&](Device& device) { watch(device.portIs(name)); });
        }
        onDevice([&](Device& device) { device.uplinkIs("u", device.port("p")); });
        Port::Ptr main;
        onDevice([&](Device& device) { main = device.mainIs("m"); });
        onDevice([&](Device& device) { device.uplinkIs("v", std::exchange(main, nullptr)); });
        onDevice([&](Device& device) { walk_.emplace(device.portIterator()); });
        setAll();
        onDevice([&](Device& device) { device.portDel("q"); });
        onDevice([&](Device& device) { device.uplinkIs("u", nullptr); });
        onDevice([&](Device& device) { device.portDelAll(); });
        onDevice([&](Device& device) { device.mainIs("n"); });
        manager_.runReady(10);
        for (auto const& watcher : deviceWatchers_) {
            watcher->isWeakReferenceIs(true);
        }
        walk_.reset();
        device_ = nullptr;
        expectConsistent();
    }

  private:
    bool alive() const { return Device::living() != 0; }
    template <class Work>
    void onDevice(Work work) {
        if (alive()) {
            work(*raw_);
        }
        expectConsistent();
    }
    // Whoever is attached to something is attached to something that is there.
    void expectConsistent() const {
        for (auto const& watcher : deviceWatchers_) {
            ASSERT_TRUE(alive() || !watcher->qorNotifier());
        }
        ASSERT_GE(Port::living(), 0);
    }
    void watch(Port::Ptr const& port) {
        if (!port) {
            return;
        }
        ports_.push_back(port);
        auto const watcher = Qor::make<PortListener>(log_, "p");
        watcher->isWeakReferenceIs(ports_.size() % 2 == 0);
        watcher->react = [this](std::string const&) { heard(); };
        watcher->notifierIs(port);
        portWatchers_.push_back(watcher);
        auto const queuing = Qor::make<QueuingListener>(log_, manager_);
        queuing->isWeakReferenceIs(true);
        queuing->notifierIs(port);
        queuing->inDelivery = [this] { heard(); };
        queuing_.push_back(queuing);
    }
    void heard() {
        int const call = ++calls_;
        for (auto const& [at, cut] : plan_) {
            if (at == call) {
                perform(cut);
            }
        }
    }
    void perform(Cut cut) {
        switch (cut) {
            case Cut::dropDevice:
                device_ = nullptr;
                break;
            case Cut::deletePorts:
                onRaw([](Device& device) { device.portDelAll(); });
                break;
            case Cut::deleteMain:
                onRaw([](Device& device) { device.mainDel(); });
                break;
            case Cut::deleteUplinks:
                onRaw([](Device& device) { device.uplinkDelAll(); });
                break;
            case Cut::addPort:
                onRaw([this](Device& device) {
                    device.portIs(Qor::Name(std::to_string(calls_).c_str()));
                });
                break;
            case Cut::throwIt:
                throw 1;
            default:
                performOnWatchers(cut);
        }
    }
    void performOnWatchers(Cut cut) {
        switch (cut) {
            case Cut::dropPorts:
                drop(ports_);
                break;
            case Cut::dropDeviceWatchers:
                drop(deviceWatchers_);
                break;
            case Cut::dropPortWatchers:
                drop(portWatchers_);
                drop(queuing_);
                break;
            case Cut::dropEverything:
                dropEverything();
                break;
            case Cut::moveWatchers:
                moveWatchers();
                break;
            case Cut::setAll:
                setAll();
                break;
            case Cut::runActivities:
                manager_.runReady(3);
                break;
            default:
                useWalk(cut);
        }
    }
    void useWalk(Cut cut) {
        if (walk_ && alive()) {
            // A copy: the walk itself may be dropped by what this tells.
            auto walk = *walk_;
            cut == Cut::stepWalk ? static_cast<void>(++walk) : walk.del();
            if (walk_) {
                auto const old = std::exchange(*walk_, walk);  // goes when the new one is whole
            }
        }
    }
    template <class Work>
    void onRaw(Work work) {
        if (alive()) {
            work(*raw_);
        }
    }
    // Out of the scene first: what goes may tell, and come back here.
    template <class T>
    static void drop(std::vector<T>& list) {
        std::vector<T> const gone = std::exchange(list, {});
    }
    void dropEverything() {
        drop(ports_);
        drop(portWatchers_);
        drop(queuing_);
        drop(deviceWatchers_);
        auto const walk = std::exchange(walk_, std::nullopt);
        device_ = nullptr;
    }
    void moveWatchers() {
        auto const watchers = portWatchers_;
        auto const ports = ports_;
        for (std::size_t i = 0; i < watchers.size() && !ports.empty(); ++i) {
            watchers[i]->notifierIs(ports[(i + 1) % ports.size()]);
        }
    }
    void setAll() {
        auto const ports = ports_;
        for (auto const& port : ports) {
            port->speedIs(port->speed() + 1);
            port->modeIs(port->mode() + 1);
        }
    }

    Log log_;
    Qor::ActivityManager manager_;
    Plan plan_;
    int calls_ = 0;
    Device::Ptr device_ = Qor::make<Device>("d");
    Device* raw_;
    std::vector<DeviceListener::Ptr> deviceWatchers_;
    std::vector<PortListener::Ptr> portWatchers_;
    std::vector<QueuingListener::Ptr> queuing_;
    std::vector<Port::Ptr> ports_;
    std::optional<Qor::AttributeIterator<Device::PortAttr>> walk_;
};

std::string text(Scene::Plan const& plan) {
    std::string out;
    for (auto const& [call, cut] : plan) {
        out += " call " + std::to_string(call) + ": cut " + std::to_string(static_cast<int>(cut));
    }
    return out;
}

void expectNothingLeft(Scene::Plan const& plan) {
    {
        Scene scene(plan);
        scene.play();
    }
    ASSERT_EQ(Device::living(), 0) << text(plan);
    ASSERT_EQ(Port::living(), 0) << text(plan);
    ASSERT_EQ(Row::living(), 0) << text(plan);
    ASSERT_EQ(DeviceListener::living(), 0) << text(plan);
    ASSERT_EQ(PortListener::living(), 0) << text(plan);
    ASSERT_EQ(QueuingListener::living(), 0) << text(plan);
}

constexpr int cuts = static_cast<int>(Cut::count);
constexpr int calls = 30;

TEST(Teardown, OfNothingLeavesNothing) { expectNothingLeft({}); }

TEST(Teardown, OfAnythingAtTheKthHandlerForAllK) {
    for (int call = 1; call <= calls; ++call) {
        for (int cut = 0; cut < cuts; ++cut) {
            ASSERT_NO_FATAL_FAILURE(expectNothingLeft({{call, static_cast<Cut>(cut)}}));
        }
    }
}

TEST(Teardown, OfTwoThingsAtAllPairsOfHandlers) {
    int skip = 0;
    for (int first = 1; first < calls; ++first) {
        for (int second = first + 1; second <= calls; ++second) {
            for (int pair = 0; pair < cuts * cuts; ++pair) {
                if (++skip % workShare == 0) {
                    ASSERT_NO_FATAL_FAILURE(
                        expectNothingLeft({{first, static_cast<Cut>(pair / cuts)},
                                           {second, static_cast<Cut>(pair % cuts)}}));
                }
            }
        }
    }
}

TEST(Teardown, AtRandom) {
    auto const seed = testSeed();
    SCOPED_TRACE(seedNote(seed));
    Random random(seed);
    for (int round = 0; round < 50'000 / workShare; ++round) {
        Scene::Plan plan;
        for (int call = 1; call <= 100; ++call) {
            if (random.oneIn(4)) {
                plan.emplace_back(call, static_cast<Cut>(random.below(cuts)));
            }
        }
        ASSERT_NO_FATAL_FAILURE(expectNothingLeft(plan));
    }
}

}  // namespace
