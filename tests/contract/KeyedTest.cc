// Keyed values and references: every one of every class. In the samples value 0 is different from
// value 1 and from the default.
#include "EveryClass.h"

namespace Contract {
namespace {

class EveryMap : public EveryClass {
  protected:
    /// Fills the attribute with all sample keys, which nobody is told of any more.
    void fill(Mapped const& a) const {
        for (unsigned i = 0; i < a.keys(); ++i) {
            a.set(*entity_, i, i % 2);
        }
        take();
    }
};
INSTANTIATE_TEST_SUITE_P(Models, EveryMap, testing::ValuesIn(entityClasses()), ClassName());

TEST_P(EveryMap, AbsentKeyReadsAsTheDefault) {
    forEach<Mapped>([&](Mapped const& a) {
        EXPECT_EQ(a.get(*entity_, 0), a.absent());
        a.set(*entity_, 0, 0);
        EXPECT_EQ(a.get(*entity_, 1), a.absent());
    });
}

TEST_P(EveryMap, NewKeyIsStoredCountedAndToldOnce) {
    forEach<Mapped>([&](Mapped const& a) {
        for (unsigned i = 0; i < a.keys(); ++i) {
            a.set(*entity_, i, 0);
            EXPECT_EQ(take(), toldOf(a, i));
            EXPECT_EQ(a.get(*entity_, i), a.value(0));
            EXPECT_EQ(a.count(*entity_), i + 1);
        }
        for (unsigned i = 0; i < a.keys(); ++i) {
            EXPECT_EQ(a.get(*entity_, i), a.value(0));
        }
    });
}

TEST_P(EveryMap, EqualValueTellsNobody) {
    forEach<Mapped>([&](Mapped const& a) {
        a.set(*entity_, 0, 0);
        take();
        a.set(*entity_, 0, 0);
        EXPECT_EQ(take(), AllTold());
        EXPECT_EQ(a.count(*entity_), 1U);
    });
}

TEST_P(EveryMap, OtherValueIsStoredInPlaceAndTold) {
    forEach<Mapped>([&](Mapped const& a) {
        a.set(*entity_, 0, 0);
        take();
        void const* const node = a.node(*entity_, 0);
        a.set(*entity_, 0, 1);
        EXPECT_EQ(take(), toldOf(a, 0));
        EXPECT_EQ(a.get(*entity_, 0), a.value(1));
        EXPECT_EQ(a.count(*entity_), 1U);
        EXPECT_EQ(a.node(*entity_, 0), node);
    });
}

TEST_P(EveryMap, DefaultIsStoredUnderItsKeyAndNullIsNoReference) {
    forEach<Mapped>([&](Mapped const& a) {
        bool const isStored = a.kind == Kind::valueMap;
        a.setAbsent(*entity_, 0);
        EXPECT_EQ(take(), isStored ? toldOf(a, 0) : AllTold());
        EXPECT_EQ(a.count(*entity_), isStored ? 1U : 0U);
        EXPECT_EQ(a.get(*entity_, 0), a.absent());
        a.setAbsent(*entity_, 0);
        EXPECT_EQ(take(), AllTold());
    });
}

TEST_P(EveryMap, DefaultReplacesAValueAndNullRemovesAReference) {
    forEach<Mapped>([&](Mapped const& a) {
        a.set(*entity_, 0, 0);
        take();
        a.setAbsent(*entity_, 0);
        EXPECT_EQ(take(), toldOf(a, 0));
        EXPECT_EQ(a.count(*entity_), a.kind == Kind::valueMap ? 1U : 0U);
        EXPECT_EQ(a.get(*entity_, 0), a.absent());
    });
}

TEST_P(EveryMap, RemovalTellsOnceAndGivesTheOldValue) {
    forEach<Mapped>([&](Mapped const& a) {
        a.set(*entity_, 0, 0);
        a.set(*entity_, 1, 1);
        take();
        EXPECT_EQ(a.del(*entity_, 0), a.value(0));
        EXPECT_EQ(take(), toldOf(a, 0));
        EXPECT_EQ(a.count(*entity_), 1U);
        EXPECT_EQ(a.get(*entity_, 0), a.absent());
        EXPECT_EQ(a.get(*entity_, 1), a.value(1));
    });
}

TEST_P(EveryMap, RemovalOfAnAbsentKeyGivesTheDefaultAndTellsNobody) {
    forEach<Mapped>([&](Mapped const& a) {
        EXPECT_EQ(a.del(*entity_, 1), a.absent());
        a.set(*entity_, 0, 0);
        take();
        EXPECT_EQ(a.del(*entity_, 1), a.absent());
        EXPECT_EQ(take(), AllTold());
        EXPECT_EQ(a.count(*entity_), 1U);
    });
}

TEST_P(EveryMap, RemovalOfAllTellsEachMemberOnceInTheOrderOfTheCollection) {
    forEach<Mapped>([&](Mapped const& a) {
        a.delAll(*entity_);
        EXPECT_EQ(take(), AllTold()) << "of an empty collection";
        fill(a);
        AllTold expected;
        for (auto const& entry : a.walk(*entity_, Walk::iterator)) {
            expected.push_back({a.id, entry.key});
        }
        a.delAll(*entity_);
        EXPECT_EQ(take(), expected);
        EXPECT_EQ(expected.size(), a.keys());
        EXPECT_EQ(a.count(*entity_), 0U);
    });
}

TEST_P(EveryMap, BareNewStepAddsAMemberAndTellsNobody) {
    forEach<Mapped>([&](Mapped const& a) {
        auto const [references, key] = a.add(*entity_, 0, 0);
        EXPECT_EQ(references, 2U) << "the map's and the caller's";
        EXPECT_EQ(key, a.key(0));
        EXPECT_EQ(take(), AllTold());
        EXPECT_EQ(a.get(*entity_, 0), a.value(0));
        EXPECT_EQ(a.count(*entity_), 1U);
    });
}

TEST_P(EveryMap, NotifyTellsAndLeavesTheCollectionAlone) {
    forEach<Mapped>([&](Mapped const& a) {
        a.set(*entity_, 0, 0);
        take();
        a.notify(*entity_, 0);
        EXPECT_EQ(take(), toldOf(a, 0));
        EXPECT_EQ(a.count(*entity_), 1U);
    });
}

TEST_P(EveryMap, IteratorsMeetEachMemberOnceInTheOrderOfReversedHashes) {
    forEach<Mapped>([&](Mapped const& a) {
        fill(a);
        EXPECT_TRUE(a.isOrdered(*entity_));
        Entries const met = a.walk(*entity_, Walk::iterator);
        EXPECT_EQ(met.size(), a.keys());
        std::map<std::string, std::string> found;
        for (auto const& entry : met) {
            found[entry.key] = entry.value;
        }
        for (unsigned i = 0; i < a.keys(); ++i) {
            EXPECT_EQ(found[a.key(i)], a.value(i % 2));
        }
        for (Walk const walk :
             {Walk::constIterator, Walk::iteratorConst, Walk::range, Walk::constRange}) {
            EXPECT_EQ(a.walk(*entity_, walk), met);
        }
    });
}

TEST_P(EveryMap, WalkFromAKeyBeginsThereOrAtTheNext) {
    forEach<Mapped>([&](Mapped const& a) {
        fill(a);
        Entries const all = a.walk(*entity_, Walk::iterator);
        for (unsigned i = 0; i < a.keys(); ++i) {
            Entries expected;
            for (auto const& entry : all) {
                if (!expected.empty() || entry.key == a.key(i)) {
                    expected.push_back(entry);
                }
            }
            EXPECT_EQ(a.walkFrom(*entity_, i, false), expected);
            EXPECT_EQ(a.walkFrom(*entity_, i, true), expected);
            a.del(*entity_, i);
            expected.erase(expected.begin());
            EXPECT_EQ(a.walkFrom(*entity_, i, false), expected) << "without that key";
            a.set(*entity_, i, i % 2);
        }
    });
}

TEST_P(EveryMap, RemovalThroughAnIteratorTellsLikeAnyOther) {
    forEach<Mapped>([&](Mapped const& a) {
        fill(a);
        AllTold expected;
        for (auto const& key : a.delThirds(*entity_)) {
            expected.push_back({a.id, key});
        }
        EXPECT_EQ(take(), expected);
        EXPECT_EQ(expected.size(), (a.keys() + 2) / 3);
        EXPECT_EQ(a.count(*entity_), a.keys() - expected.size());
    });
}

TEST_P(EveryMap, ReferenceIsCountedAndLeavesTheParentAlone) {
    forEach<Mapped>([&](Mapped const& a) {
        if (a.kind != Kind::refMap) {
            return;
        }
        auto const target = a.target(0);
        auto const before = target->qorRefs();
        a.set(*entity_, 0, 0);
        EXPECT_EQ(target->qorRefs(), before + 1);
        EXPECT_FALSE(target->parent());
        EXPECT_EQ(target->parentAttrId(), 0);
        EXPECT_EQ(a.viaNode(*entity_, 0), a.value(0));
        EXPECT_EQ(a.viaNode(*entity_, 1), "no node");
        a.set(*entity_, 0, 1);
        EXPECT_EQ(target->qorRefs(), before);
    });
}

TEST_P(EveryMap, EndOfAnEntityGivesUpItsReferencesAndTellsNobody) {
    forEach<Mapped>([&](Mapped const& a) {
        auto fresh = class_.make();
        auto const weak = class_.record(fresh, true);
        auto const target = a.target(0);
        auto const before = target ? target->qorRefs() : 0;
        a.set(*fresh, 0, 0);
        weak.take();
        fresh = nullptr;
        EXPECT_EQ(weak.take(), (AllTold{{5, ""}}));
        EXPECT_EQ(target ? target->qorRefs() : 0, before);
    });
}

}  // namespace
}  // namespace Contract
