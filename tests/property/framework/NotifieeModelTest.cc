// Notifiees that attach, detach, destroy, throw and set at the k-th handler, for all k: what is
// told is what the naive model says, and nothing is left over.
#include <tests/property/framework/NotifieeModel.h>
#include <tests/property/framework/Random.h>
#include <tests/unit/notify/TestListeners.h>

#include <gtest/gtest.h>

using namespace Sample;

namespace {

// The same world with the real classes.
class RealWorld {
  public:
    explicit RealWorld(std::vector<Planned> plan) : plan_(std::move(plan)), raw_(port_.ptr()) {
        for (int i = 0; i < listenerCount; ++i) {
            auto& listener = listeners_[static_cast<std::size_t>(i)];
            listener = Qor::make<PortListener>(log, std::to_string(i));
            listener->adapter = i == listenerCount - 1;
            listener->react = [this](std::string const&) { react(); };
            listener->notifierIs(port_);
        }
    }
    ~RealWorld() { plan_.clear(); }

    Log log;

    void set(Qor::U32 value) {
        if (!gone()) {
            raw_->speedIs(value);
        }
    }
    void dropNotifier() { port_ = nullptr; }
    bool gone() const { return Port::living() == 0; }
    std::string list() const {
        std::string out;
        if (!gone()) {
            auto const* at = raw_->notifierList().head();
            for (; at; at = Qor::ListRaw<Row::NotifieeConst>::next(*at)) {
                out += dynamic_cast<PortListener const&>(*at).listenerName();
            }
        }
        return out;
    }
    int notifierRefs() const { return gone() ? 0 : static_cast<int>(raw_->qorRefs()); }

  private:
    void react() {
        int const call = ++calls_;
        for (Planned const& planned : plan_) {
            if (planned.call == call) {
                perform(planned);
            }
        }
    }
    void perform(Planned const& planned) {
        auto& target = listeners_[static_cast<std::size_t>(planned.target)];
        if (planned.act == Act::setAgain) {
            if (!gone()) {
                raw_->modeIs(raw_->mode() + 1);
            }
        } else if (planned.act == Act::dropNotifier) {
            dropNotifier();
        } else if (planned.act == Act::throwIt) {
            throw planned.call;
        } else if (target) {
            change(planned.act, target);
        }
    }
    void change(Act act, PortListener::Ptr& target) {
        switch (act) {
            case Act::attach:
                if (!gone()) {
                    target->notifierIs(Port::Ptr(raw_));
                }
                break;
            case Act::detach:
                target->notifierIs(nullptr);
                break;
            case Act::drop:
                target = nullptr;
                break;
            case Act::registerIt:
            case Act::unregister:
                target->isRegisteredNotifieeIs(act == Act::registerIt);
                break;
            default:
                target->isWeakReferenceIs(act == Act::weaken);
        }
    }

    std::vector<Planned> plan_;
    int calls_ = 0;
    Port::Ptr port_ = Qor::make<Port>("p");
    Port* raw_;
    std::array<PortListener::Ptr, listenerCount> listeners_;
};

std::string text(std::vector<Planned> const& plan) {
    std::string out;
    for (Planned const& planned : plan) {
        out += " call " + std::to_string(planned.call) + ": act " +
               std::to_string(static_cast<int>(planned.act)) + " on " +
               std::to_string(planned.target) + ';';
    }
    return out;
}

void expectAsInTheModel(std::vector<Planned> const& plan) {
    NotifieeModel model(plan);
    {
        RealWorld real(plan);
        for (Qor::U32 value = 1; value <= 2; ++value) {
            real.set(value);
            model.set("speed");
            ASSERT_EQ(real.list(), model.list()) << text(plan);
        }
        real.dropNotifier();
        model.dropNotifier();
        ASSERT_EQ(real.log, model.log) << text(plan);
        ASSERT_EQ(real.gone(), model.gone()) << text(plan);
        ASSERT_EQ(real.list(), model.list()) << text(plan);
        ASSERT_EQ(real.notifierRefs(), model.notifierRefs()) << text(plan);
    }
    ASSERT_EQ(Port::living(), 0) << text(plan);
    ASSERT_EQ(PortListener::living(), 0) << text(plan);
}

constexpr int acts = static_cast<int>(Act::count);
constexpr int choices = acts * listenerCount;
constexpr int calls = 14;

Planned choice(int call, int number) {
    return {call, static_cast<Act>(number / listenerCount), number % listenerCount};
}

TEST(NotifieeModel, WithoutAnyActAllAreToldInOrder) {
    NotifieeModel model({});
    model.set("speed");
    EXPECT_EQ(model.log, (Log{"3:speed", "0:speed", "1:speed", "2:speed"}));
    expectAsInTheModel({});
}

TEST(NotifieeModel, OneActAtTheKthHandlerForAllK) {
    for (int call = 1; call <= calls; ++call) {
        for (int number = 0; number < choices; ++number) {
            ASSERT_NO_FATAL_FAILURE(expectAsInTheModel({choice(call, number)}));
        }
    }
}

TEST(NotifieeModel, TwoActsAtAllPairsOfHandlers) {
    // Under a sanitizer every so-manieth pair, in steps that meet all acts and targets.
    int skip = 0;
    for (int first = 1; first < calls; ++first) {
        for (int second = first + 1; second <= calls; ++second) {
            for (int pair = 0; pair < choices * choices; ++pair) {
                if (++skip % workShare == 0) {
                    ASSERT_NO_FATAL_FAILURE(expectAsInTheModel(
                        {choice(first, pair / choices), choice(second, pair % choices)}));
                }
            }
        }
    }
}

TEST(NotifieeModel, RandomPlans) {
    auto const seed = testSeed();
    SCOPED_TRACE(seedNote(seed));
    Random random(seed);
    for (int round = 0; round < 100'000 / workShare; ++round) {
        std::vector<Planned> plan;
        for (int call = 1; call <= 40; ++call) {
            if (random.oneIn(3)) {
                plan.push_back(choice(call, static_cast<int>(random.below(choices))));
            }
        }
        ASSERT_NO_FATAL_FAILURE(expectAsInTheModel(plan));
    }
}

}  // namespace
