// Owned entities, in collections and as single children: every one of every class.
#include "EveryClass.h"

namespace Contract {
namespace {

class EveryOwner : public EveryClass {
  protected:
    /// Calls `visit` with the attribute and its owning face.
    template <class Visit>
    void forEachOwned(Visit&& visit) const {
        forEach<OwnedMap>([&](OwnedMap const& a) { visit(a, static_cast<Owning const&>(a)); });
        forEach<Child>([&](Child const& a) { visit(a, static_cast<Owning const&>(a)); });
    }
    static AllTold toldOf(Attribute const& attribute, unsigned name) {
        auto const* const keyed = dynamic_cast<Keyed const*>(&attribute);
        return {{attribute.id, keyed ? keyed->key(name) : ""}};
    }
};
INSTANTIATE_TEST_SUITE_P(Models, EveryOwner, testing::ValuesIn(entityClasses()), ClassName());

TEST_P(EveryOwner, NamingMakesAnEntityBelowThisOneAndTellsOnce) {
    forEachOwned([&](Attribute const& a, Owning const& owning) {
        auto const made = owning.set(*entity_, 1);
        ASSERT_TRUE(made);
        EXPECT_EQ(made->parent(), entity_);
        EXPECT_EQ(made->parentAttrId(), a.id);
        EXPECT_EQ(made->qorRefs(), 2U) << "the owner's and this one";
        EXPECT_EQ(owning.get(*entity_, 1), made);
        EXPECT_EQ(take(), toldOf(a, 1));
        EXPECT_EQ(made->uriPath(), entity_->uriPath() + "/" + entity_->qorChildPath(a.id, *made));
    });
}

TEST_P(EveryOwner, NamingItAgainGivesTheSameEntityAndTellsNobody) {
    forEachOwned([&](Attribute const&, Owning const& owning) {
        auto const made = owning.set(*entity_, 1);
        take();
        EXPECT_EQ(owning.set(*entity_, 1), made);
        EXPECT_EQ(take(), AllTold());
    });
}

TEST_P(EveryOwner, RemovalHandsTheEntityOverWithoutParentAndTellsOnce) {
    forEachOwned([&](Attribute const& a, Owning const& owning) {
        auto const made = owning.set(*entity_, 1);
        take();
        auto const gone = owning.del(*entity_, 1);
        EXPECT_EQ(gone, made);
        EXPECT_FALSE(gone->parent());
        EXPECT_EQ(gone->qorRefs(), 2U) << "made and gone";
        EXPECT_FALSE(owning.get(*entity_, 1));
        EXPECT_EQ(take(), toldOf(a, 1));
        EXPECT_FALSE(owning.set(*entity_, 1) == made) << "the next is a new one";
    });
}

TEST_P(EveryOwner, RemovalOfWhatIsNotThereGivesNullAndTellsNobody) {
    forEachOwned([&](Attribute const&, Owning const& owning) {
        EXPECT_FALSE(owning.del(*entity_, 1));
        EXPECT_EQ(take(), AllTold());
    });
}

TEST_P(EveryOwner, BareNewStepInACollectionAddsAndTellsNobody) {
    forEach<OwnedMap>([&](OwnedMap const& a) {
        auto const made = a.add(*entity_, 1);
        EXPECT_EQ(take(), AllTold());
        EXPECT_EQ(a.get(*entity_, 1), made);
        EXPECT_EQ(made->parent(), entity_);
        EXPECT_EQ(made->parentAttrId(), a.id);
    });
}

TEST_P(EveryOwner, BareNewStepOfASingleChildLeavesTheAttributeUnset) {
    forEach<Child>([&](Child const& a) {
        auto const made = a.add(*entity_, 1);
        EXPECT_EQ(made->parent(), entity_);
        EXPECT_EQ(made->parentAttrId(), a.id);
        EXPECT_EQ(a.held(*entity_), "null");
        EXPECT_EQ(take(), AllTold());
    });
}

TEST_P(EveryOwner, AnotherNameReplacesASingleChildWithOneTelling) {
    forEach<Child>([&](Child const& a) {
        auto const first = a.set(*entity_, 1);
        take();
        auto const second = a.set(*entity_, 2);
        EXPECT_EQ(take(), (AllTold{{a.id, ""}}));
        EXPECT_FALSE(first == second);
        EXPECT_FALSE(first->parent());
        EXPECT_EQ(first->qorRefs(), 1U);
        EXPECT_EQ(second->parent(), entity_);
        EXPECT_EQ(a.get(*entity_, 2), second);
    });
}

TEST_P(EveryOwner, NotifyClearsTheParentTellsAndLeavesTheCollectionAlone) {
    forEach<OwnedMap>([&](OwnedMap const& a) {
        auto const made = a.set(*entity_, 1);
        take();
        a.notify(*entity_, 1);
        EXPECT_EQ(take(), toldOf(a, 1));
        EXPECT_FALSE(made->parent());
        EXPECT_EQ(a.get(*entity_, 1), made);
    });
}

TEST_P(EveryOwner, CollectionsAreWalkedInTheOrderOfReversedHashes) {
    forEach<OwnedMap>([&](OwnedMap const& a) {
        for (unsigned i = 0; i < a.keys(); ++i) {
            a.set(*entity_, i);
        }
        EXPECT_TRUE(a.isOrdered(*entity_));
        Entries const met = a.walk(*entity_, Walk::iterator);
        EXPECT_EQ(met.size(), a.keys());
        for (auto const& entry : met) {
            EXPECT_EQ(entry.key, entry.value) << "the key is the entity's name";
        }
        for (Walk const walk :
             {Walk::constIterator, Walk::iteratorConst, Walk::range, Walk::constRange}) {
            EXPECT_EQ(a.walk(*entity_, walk), met);
        }
    });
}

TEST_P(EveryOwner, RemovalOfAllTellsEachAndClearsTheParents) {
    forEach<OwnedMap>([&](OwnedMap const& a) {
        a.delAll(*entity_);
        EXPECT_EQ(take(), AllTold());
        std::vector<EntityPtr> all;
        for (unsigned i = 0; i < a.keys(); ++i) {
            all.push_back(a.set(*entity_, i));
        }
        AllTold expected;
        for (auto const& entry : a.walk(*entity_, Walk::iterator)) {
            expected.push_back({a.id, entry.key});
        }
        take();
        EXPECT_EQ(a.count(*entity_), a.keys());
        a.delAll(*entity_);
        EXPECT_EQ(take(), expected);
        EXPECT_EQ(a.count(*entity_), 0U);
        for (auto const& entity : all) {
            EXPECT_FALSE(entity->parent());
            EXPECT_EQ(entity->qorRefs(), 1U);
        }
    });
}

TEST_P(EveryOwner, RemovalThroughAnIteratorClearsTheParentAndTells) {
    forEach<OwnedMap>([&](OwnedMap const& a) {
        auto const made = a.set(*entity_, 1);
        take();
        a.delThirds(*entity_);
        EXPECT_EQ(take(), toldOf(a, 1));
        EXPECT_FALSE(made->parent());
        EXPECT_EQ(a.count(*entity_), 0U);
    });
}

TEST_P(EveryOwner, EndTellsOfWhatIsOwnedInTheOrderOfTheAttributesAndOfNothingElse) {
    auto fresh = class_.make();
    AllTold expected{{5, ""}};
    forEach<Mapped>([&](Mapped const& a) {
        for (unsigned i = 0; i < 10; ++i) {
            a.set(*fresh, i, 0);
        }
    });
    forEach<Scalar>([&](Scalar const& a) { a.change(*fresh); });
    forEach<Attribute>([&](Attribute const& a) {
        if (auto const* const owned = dynamic_cast<OwnedMap const*>(&a)) {
            for (unsigned i = 0; i < 10; ++i) {
                owned->set(*fresh, i);
            }
            for (auto const& entry : owned->walk(*fresh, Walk::iterator)) {
                expected.push_back({a.id, entry.key});
            }
        } else if (a.kind == Kind::child) {
            a.change(*fresh);
            expected.push_back({a.id, ""});
        }
    });
    auto const weak = class_.record(fresh, true);
    fresh = nullptr;
    EXPECT_EQ(weak.take(), expected);
}

TEST_P(EveryOwner, WhatOutlivesItsOwnerHasNoParent) {
    auto fresh = class_.make();
    std::vector<EntityPtr> owned;
    forEachOwned(
        [&](Attribute const&, Owning const& owning) { owned.push_back(owning.set(*fresh, 1)); });
    fresh = nullptr;
    for (auto const& survivor : owned) {
        EXPECT_FALSE(survivor->parent());
        EXPECT_EQ(survivor->qorRefs(), 1U);
    }
}

}  // namespace
}  // namespace Contract
