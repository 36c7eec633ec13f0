// A random program of setters, removals, copies, comparisons and clearings on a whole database and
// on rows beside it, held against plain maps: after each step every row holds what it should, and
// its notifiee was told of exactly the real differences.
#include <algorithm>
#include <list>
#include <optional>
#include <random>
#include <stdexcept>
#include <tuple>

#include <tests/support/Settings.h>

#include <gtest/gtest.h>

#include <vgw/OvsdbDataTypes.h>

#include "EntityClass.h"
#include "NaiveRow.h"

namespace {

using Random = std::mt19937_64;

using Contract::Attribute;
using Contract::EntityClass;
using Contract::EntityPtr;

EntityClass const& classOf(std::string const& name) {
    for (EntityClass const* const one : Contract::entityClasses()) {
        if (one->name == name) {
            return *one;
        }
    }
    throw std::logic_error("no class " + name);
}

/// A row as it is and as it should be.
struct Both {
    Both(EntityClass const& of, EntityPtr row)
        : entityClass(of), entity(std::move(row)), recorder(of.record(entity)), naive(of.name) {}

    EntityClass const& entityClass;
    EntityPtr entity;
    Contract::AnyRecorder recorder;
    Naive::Row naive;
    std::string home;  // the owning collection that it stands in, empty for none
    std::string name;
};

std::string stateText(Both const& both) {
    std::string text;
    for (Attribute const* const a : both.entityClass.attributes) {
        auto const* const keyed = dynamic_cast<Contract::Keyed const*>(a);
        if (keyed) {
            Naive::Members members;
            for (auto const& entry : keyed->walk(*both.entity, Contract::Walk::iterator)) {
                members[entry.key] = entry.value;
            }
            for (auto const& [key, value] : members) {
                text += a->name + "[" + key + "]=" + value + "\n";
            }
        } else if (a->kind == Contract::Kind::scalar) {
            text += a->name + "=" + a->held(*both.entity) + "\n";
        }
    }
    return text;
}

std::string expectedText(Both const& both) {
    std::string text;
    for (Attribute const* const a : both.entityClass.attributes) {
        if (a->isKeyed()) {
            for (auto const& [key, value] : both.naive.keyed.at(a->name)) {
                text += a->name + "[" + key + "]=" + value + "\n";
            }
        } else if (a->kind == Contract::Kind::scalar) {
            text += a->name + "=" + both.naive.single.at(a->name) + "\n";
        }
    }
    return text;
}

template <class X>
std::optional<bool> compared(EntityPtr const& a, EntityPtr const& b) {
    auto const left = Qor::dynamicCast<X>(a);
    auto const right = Qor::dynamicCast<X>(b);
    return left && right ? std::optional(left->isEqualTo(right)) : std::nullopt;
}

std::optional<bool> equal(EntityPtr const& a, EntityPtr const& b) {
    for (auto const& result :
         {compared<Vgw::Global>(a, b), compared<Vgw::Manager>(a, b),
          compared<Vgw::PhysicalSwitch>(a, b), compared<Vgw::PhysicalPort>(a, b),
          compared<Vgw::PhysicalLocator>(a, b), compared<Vgw::PhysicalLocatorSet>(a, b)}) {
        if (result) {
            return result;
        }
    }
    return std::nullopt;
}

class Program {
  public:
    explicit Program(Qor::U64 withSeed) : random_(withSeed) {
        for (char const* name : {"BackupManager", "UcastMacsLocal", "McastMacsLocal",
                                 "UcastMacsRemote", "McastMacsRemote"}) {
            auto const& of = classOf(std::string("Vgw::") + name);
            rows_.emplace_back(of, of.make(1));
            rows_.emplace_back(of, of.make(2));
        }
    }

    void step() {
        switch (draw(20)) {
            case 0:
                if (draw(50) == 0) clear();
                break;
            case 1:
            case 2:
                own();
                break;
            case 3:
            case 4:
                refer();
                break;
            case 5:
            case 6:
            case 7:
                clone();
                break;
            case 8:
            case 9:
                compare();
                break;
            case 10:
                mark(some());
                break;
            default:
                change(some(), nullptr);
        }
    }

    std::map<std::string, int> const& did() const { return did_; }

  private:
    unsigned draw(Qor::U64 below) { return static_cast<unsigned>(random_() % below); }
    Both& some() { return *std::next(rows_.begin(), draw(rows_.size())); }

    /// Holds what was told against what should have been, on the row in question and on all others.
    void check(Both& both, Naive::Changes const& changes) {
        Contract::AllTold expected;
        for (auto const& [attribute, key] : changes) {
            for (Attribute const* const a : both.entityClass.attributes) {
                if (a->name == attribute) expected.push_back({a->id, key});
            }
        }
        auto const order = [](Contract::Told const& l, Contract::Told const& r) {
            return std::tie(l.id, l.key) < std::tie(r.id, r.key);
        };
        auto told = both.recorder.take();
        std::sort(told.begin(), told.end(), order);
        std::sort(expected.begin(), expected.end(), order);
        ASSERT_EQ(told, expected) << both.entityClass.name;
        ASSERT_EQ(stateText(both), expectedText(both));
        for (Both& other : rows_) {
            ASSERT_EQ(other.recorder.take(), Contract::AllTold()) << other.entityClass.name;
        }
        ASSERT_EQ(db_.recorder.take(), Contract::AllTold());
    }

    void change(Both& both, Attribute const* a) {
        if (!a) {
            a = both.entityClass.attributes[draw(both.entityClass.attributes.size())];
        }
        if (auto const* const scalar = dynamic_cast<Contract::Scalar const*>(a)) {
            unsigned const value = draw(scalar->values());
            scalar->set(*both.entity, value);
            ++did_["set"];
            check(both, both.naive.set(a->name, scalar->value(value)));
        } else if (auto const* const map = dynamic_cast<Contract::Mapped const*>(a)) {
            changeMap(both, *map);
        }
    }

    // Marks an attribute of the row by its name, or under the one name that is none.
    void mark(Both& both) {
        auto const& all = both.entityClass.attributes;
        unsigned const nth = draw(all.size() + 1);
        std::string const name = nth < all.size() ? all[nth]->name : "ports";
        bool const flag = draw(4) != 0;
        rowOf(both).invalidAttribIs(std::string_view(name), flag);
        ++did_["mark"];
        check(both, both.naive.set("invalidAttrib", "'" + name + "'", flag ? "true" : "false"));
    }

    void unmark(Both& both) {
        rowOf(both).invalidAttribDelAll();
        check(both, both.naive.removeAll("invalidAttrib"));
    }

    static Vgw::OvsdbDataModel& rowOf(Both& both) {
        return static_cast<Vgw::OvsdbDataModel&>(*both.entity);
    }

    void changeMap(Both& both, Contract::Mapped const& map) {
        unsigned const key = draw(draw(2) ? 4 : map.keys());
        switch (draw(8)) {
            case 0:
                if (draw(4) != 0) break;
                map.delAll(*both.entity);
                ++did_["delAll"];
                return check(both, both.naive.removeAll(map.name));
            case 1:
                return delThirds(both, map);
            case 2:
                map.setAbsent(*both.entity, key);
                ++did_["setAbsent"];
                if (map.kind == Contract::Kind::refMap) {
                    return check(both, both.naive.remove(map.name, map.key(key)));
                }
                return check(both, both.naive.set(map.name, map.key(key), map.absent()));
            case 3: {
                std::string const before = map.get(*both.entity, key);
                ++did_["del"];
                ASSERT_EQ(map.del(*both.entity, key), before);
                return check(both, both.naive.remove(map.name, map.key(key)));
            }
            default:
                break;
        }
        unsigned const value = draw(2);
        map.set(*both.entity, key, value);
        ++did_["setKey"];
        check(both, both.naive.set(map.name, map.key(key), map.value(value)));
    }

    void delThirds(Both& both, Contract::Mapped const& map) {
        auto const before = both.naive.keyed.at(map.name).size();
        auto const removed = map.delThirds(*both.entity);
        ASSERT_EQ(removed.size(), (before + 2) / 3);
        Naive::Changes changes;
        for (auto const& key : removed) {
            auto const one = both.naive.remove(map.name, key);
            ASSERT_EQ(one.size(), 1U);
            changes.push_back(one[0]);
        }
        ++did_["delThirds"];
        check(both, changes);
    }

    template <class Face>
    Face const& someOfDatabase() {
        std::vector<Face const*> all;
        for (Attribute const* const a : db_.entityClass.attributes) {
            if (auto const* const face = dynamic_cast<Face const*>(a)) all.push_back(face);
        }
        return *all[draw(all.size())];
    }

    void refer() { change(db_, &someOfDatabase<Contract::Mapped>()); }

    void own() {
        auto const& owned = someOfDatabase<Contract::OwnedMap>();
        unsigned const nth = draw(6);
        std::string const name = owned.key(nth);
        auto& members = db_.naive.keyed.at(owned.name);
        bool const wasThere = members.count(name) != 0;
        if (draw(3) != 0) {
            auto const row = owned.set(*db_.entity, nth);
            ASSERT_EQ(row->parent(), db_.entity);
            ++did_["own"];
            if (!wasThere) enter(owned, row, name);
            members[name] = name;
            check(db_, wasThere ? Naive::Changes() : Naive::Changes{{owned.name, name}});
        } else {
            auto const row = owned.del(*db_.entity, nth);
            ASSERT_EQ(static_cast<bool>(row), wasThere);
            leave(owned.name, name);
            ++did_["disown"];
            check(db_, db_.naive.remove(owned.name, name));
        }
    }

    void enter(Contract::OwnedMap const& owned, EntityPtr const& row, std::string const& name) {
        rows_.emplace_back(classOf(owned.valueType), row);
        rows_.back().home = owned.name;
        rows_.back().name = name;
        auto const isForgettable = [](Both const& both) {
            return both.home.empty() && !both.name.empty();
        };
        auto const oldest = std::find_if(rows_.begin(), rows_.end(), isForgettable);
        if (rows_.size() > 80 && oldest != rows_.end()) forget(oldest);
    }

    // A row that was removed and that only this program holds goes.
    void forget(std::list<Both>::iterator at) {
        ASSERT_FALSE(at->entity->parent());
        at->recorder.notifiee->notifierIs(nullptr);
        ASSERT_EQ(at->entity->qorRefs(), 1U);
        rows_.erase(at);
    }

    void leave(std::string const& collection, std::string const& name) {
        for (Both& both : rows_) {
            if (both.home == collection && both.name == name) {
                both.home.clear();
                ASSERT_FALSE(both.entity->parent());
            }
        }
    }

    void clear() {
        static_cast<Vgw::HwVtepOvsdb&>(*db_.entity).clear();
        Naive::Changes changes;
        for (auto const& [collection, members] : db_.naive.keyed) {
            if (collection == "manager") continue;
            for (auto const& [name, value] : Naive::Members(members)) {
                leave(collection, name);
            }
            auto const more = db_.naive.removeAll(collection);
            changes.insert(changes.end(), more.begin(), more.end());
        }
        ++did_["clear"];
        check(db_, changes);
    }

    void clone() {
        Both& target = some();
        for (int tries = 0; tries < 20; ++tries) {
            Both& source = some();
            if (source.entityClass.name != target.entityClass.name && tries < 10) continue;
            if (draw(2) == 0) unmark(source);
            if (&source == &target || !target.naive.canClone(source.naive)) continue;
            rowOf(target).clone(Qor::dynamicCast<Vgw::OvsdbDataModel>(source.entity));
            ++did_["clone"];
            check(target, target.naive.clone(source.naive));
            // Rows that differ in little: now is the time to compare them, both ways.
            if (draw(2) == 0) mark(target);
            ASSERT_EQ(equal(target.entity, source.entity), target.naive.isEqualTo(source.naive));
            ASSERT_EQ(equal(source.entity, target.entity), source.naive.isEqualTo(target.naive));
            return;
        }
    }

    void compare() {
        Both& a = some();
        for (int tries = 0; tries < 20; ++tries) {
            Both& b = some();
            auto const expected = a.naive.isEqualTo(b.naive);
            if (!expected) continue;
            ++did_[*expected ? "equal" : "different"];
            ASSERT_EQ(equal(a.entity, b.entity), expected) << stateText(a) << "---\n"
                                                           << stateText(b);
            return check(a, {});
        }
    }

    Random random_;
    Both db_{classOf("Vgw::HwVtepOvsdb"), Vgw::hwVtepOvsdbFactory("db")};
    std::list<Both> rows_;
    std::map<std::string, int> did_;
};

TEST(DatabaseProgram, HoldsAndTellsWhatPlainMapsSay) {
    SCOPED_TRACE(Settings::seedText());
    Program program(Settings::seed());
    for (Qor::U64 i = Settings::values(60000); i > 0 && !testing::Test::HasFatalFailure(); --i) {
        program.step();
    }
    std::map<std::string, int> did = program.did();
    for (char const* what : {"set", "setKey", "setAbsent", "del", "delAll", "delThirds", "own",
                             "disown", "clear", "mark", "clone", "equal", "different"}) {
        EXPECT_GT(did[what], 0) << what << " was never drawn";
    }
}

}  // namespace
