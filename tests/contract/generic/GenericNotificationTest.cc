// What a wrapper hears: at once, or gathered until its activity has its turn.
#include "Heard.h"

namespace Contract {
namespace {

class EveryWatched : public EveryWrapper {
  protected:
    EveryWatched() { wrapper_->watcherIs(&heard_); }
    ~EveryWatched() override { wrapper_->watcherIs(nullptr); }

    /// Changes key `i` of a collection, to something else each time.
    void changeKey(Keyed const& a, unsigned i) const {
        if (auto const* const mapped = dynamic_cast<Mapped const*>(&a)) {
            mapped->set(*entity_, i, mapped->get(*entity_, i) == mapped->value(0) ? 1 : 0);
        } else {
            auto const& owned = dynamic_cast<OwnedMap const&>(a);
            owned.get(*entity_, i) ? owned.del(*entity_, i) : owned.set(*entity_, i);
        }
    }
    void queue() { wrapper_->activityIs(Qor::make<Qor::Activity>(manager_, "generic")); }
    AllTold run() {
        EXPECT_EQ(heard_.take(), AllTold()) << "before the turn";
        manager_.runReady(100);
        EXPECT_FALSE(manager_.hasReady());
        return heard_.take();
    }
    AllTold eachCollection() const {
        AllTold told;
        forEach<Keyed>([&](Keyed const& a) { told.push_back({a.id, ""}); });
        return told;
    }

    Heard heard_;
    Qor::ActivityManager manager_;
};
INSTANTIATE_TEST_SUITE_P(Models, EveryWatched, testing::ValuesIn(entityClasses()), ClassName());

TEST_P(EveryWatched, HearsWhatACompiledNotifieeHears) {
    forEachChangeable([&](Attribute const& a) {
        a.change(*entity_);
        AllTold const told = take();
        ASSERT_EQ(told.size(), 1U);
        EXPECT_EQ(heard_.take(), told);
    });
    entity_->isNondestructingIs(true);
    EXPECT_EQ(heard_.take(), take());
    entity_->isNondestructingIs(false);
    EXPECT_EQ(heard_.take(), take());
    forEach<Keyed>([&](Keyed const& a) {
        a.delAll(*entity_);
        EXPECT_EQ(heard_.take(), take());
    });
}

TEST_P(EveryWatched, HearsOfTheEndOnce) {
    entity_->zeroReferencesIs(true);
    EXPECT_EQ(heard_.take(), (AllTold{{Heard::end, ""}}));
}

TEST_P(EveryWatched, KeysComeAsConstAsTheWrapperIs) {
    Wrapper const readOnly = wrapperOf(entity_, true);
    Heard toReader;
    readOnly->watcherIs(&toReader);
    forEach<Keyed>([&](Keyed const& a) {
        a.change(*entity_);
        ASSERT_TRUE(heard_.lastKey());
        EXPECT_FALSE(heard_.lastKey()->isConst());
        ASSERT_TRUE(toReader.lastKey());
        EXPECT_TRUE(toReader.lastKey()->isConst());
    });
    readOnly->watcherIs(nullptr);
}

TEST_P(EveryWatched, StandsOnTheEntitysListOnceWhateverItsDepth) {
    unsigned const before = class_.notifiees(*entity_);
    unsigned const references = entity_->qorRefs();
    {
        Wrapper const another = wrapperOf(entity_);
        EXPECT_EQ(class_.notifiees(*entity_), before + 1);
        Wrapper const copy = another->genericClone();
        EXPECT_EQ(copy->entity(), entity_);
        EXPECT_EQ(class_.notifiees(*entity_), before + 2);
        EXPECT_FALSE(another->isRegisteredNotifiee()) << "its adapter is, not the wrapper";
    }
    EXPECT_EQ(class_.notifiees(*entity_), before);
    EXPECT_EQ(entity_->qorRefs(), references);
}

TEST_P(EveryWatched, CopyIsAsConstAsItsOriginal) {
    EXPECT_FALSE(wrapper_->genericClone()->isConst());
    EXPECT_TRUE(wrapperOf(entity_, true)->genericClone()->isConst());
}

TEST_P(EveryWatched, MovesToAnotherEntityOfItsClassAlone) {
    EntityPtr const other = class_.make(2);
    wrapper_->notifierIs(other);
    EXPECT_EQ(wrapper_->entity(), other);
    EXPECT_EQ(class_.notifiees(*other), 1U);
    EXPECT_EQ(class_.notifiees(*entity_), 1U) << "the recorder";
    forEachChangeable([&](Attribute const& a) {
        a.change(*entity_);
        EXPECT_EQ(heard_.take(), AllTold());
        a.change(*other);
        EXPECT_EQ(heard_.take().size(), 1U);
    });
    wrapper_->notifierIs(Qor::make<Qor::GenericIf::List_>());
    EXPECT_FALSE(wrapper_->entity()) << "what is of another class counts as none";
    EXPECT_EQ(class_.notifiees(*other), 0U);
}

TEST_P(EveryWatched, HoldsItsEntity) {
    EntityPtr fresh = class_.make(2);
    Wrapper const wrapper = wrapperOf(fresh);
    Qor::Entity const* const raw = fresh.ptr();
    fresh = nullptr;
    EXPECT_EQ(wrapper->entity(), raw);
}

TEST_P(EveryWatched, MayBeDroppedInWhatItHears) {
    forEachChangeable([&](Attribute const& a) {
        Heard heard;
        Wrapper own = wrapperOf(entity_);
        own->watcherIs(&heard);
        heard.inHandler = [&] { own = nullptr; };
        a.change(*entity_);
        EXPECT_EQ(heard.take().size(), 1U);
        a.change(*entity_);
        EXPECT_EQ(heard.take(), AllTold());
    });
    EXPECT_EQ(class_.notifiees(*entity_), 2U);
}

TEST_P(EveryWatched, DroppedByAnotherBeforeItsTurnHearsNothing) {
    forEachChangeable([&](Attribute const& a) {
        Heard heard;
        Wrapper later = wrapperOf(entity_);
        later->watcherIs(&heard);
        heard_.inHandler = [&] { later = nullptr; };
        a.change(*entity_);
        EXPECT_EQ(heard.take(), AllTold());
        EXPECT_FALSE(later);
    });
}

TEST_P(EveryWatched, ChangesOfOneAttributeAreGatheredUntilTheTurn) {
    queue();
    forEach<Scalar>([&](Scalar const& a) {
        a.change(*entity_);
        a.change(*entity_);
        EXPECT_EQ(wrapper_->pendingAttribute(), a.id);
        EXPECT_EQ(run(), (AllTold{{a.id, ""}}));
        EXPECT_EQ(wrapper_->pendingAttribute(), 0);
    });
}

TEST_P(EveryWatched, OnePendingKeyIsToldAsThatKey) {
    queue();
    forEach<Keyed>([&](Keyed const& a) {
        for (unsigned const i : {0U, 1U}) {
            changeKey(a, i);
            changeKey(a, i);
            changeKey(a, i);
            EXPECT_EQ(wrapper_->pendingAttribute(), a.id);
            EXPECT_EQ(run(), (AllTold{{a.id, a.key(i)}}));
        }
    });
}

TEST_P(EveryWatched, SeveralPendingKeysAreToldAsTheWhole) {
    queue();
    forEach<Keyed>([&](Keyed const& a) {
        for (unsigned const keys : {2U, 3U, 5U}) {
            for (unsigned i = 0; i < keys; ++i) {
                changeKey(a, i);
            }
            EXPECT_EQ(run(), (AllTold{{a.id, ""}}));
        }
        changeKey(a, 4);
        EXPECT_EQ(run(), (AllTold{{a.id, a.key(4)}})) << "counting begins anew";
    });
}

TEST_P(EveryWatched, ChangesOfSeveralAttributesAreToldAsAllAndByTheirKeys) {
    queue();
    AllTold expected{{Heard::all, ""}};
    unsigned changed = 0;
    unsigned nth = 0;
    forEachChangeable([&](Attribute const& a) {
        auto const* const keyed = dynamic_cast<Keyed const*>(&a);
        if (!keyed) {
            a.change(*entity_);
        } else if (++nth % 3 == 1) {
            changeKey(*keyed, 2);
            expected.push_back({a.id, keyed->key(2)});
        } else if (nth % 3 == 2) {
            changeKey(*keyed, 2);
            changeKey(*keyed, 3);
            expected.push_back({a.id, ""});
        } else {
            return;  // nothing pending, so that nothing is told
        }
        ++changed;
    });
    if (changed > 1) {
        EXPECT_EQ(wrapper_->pendingAttribute(), -1);
        EXPECT_EQ(run(), expected);
        EXPECT_EQ(wrapper_->pendingAttribute(), 0);
    }
}

TEST_P(EveryWatched, AllAndCollectionsIsToldAsAllAndEveryCollectionAsAWhole) {
    queue();
    AllTold expected = eachCollection();
    expected.insert(expected.begin(), {Heard::all, ""});
    bool isFirst = true;
    forEachChangeable([&](Attribute const& a) {
        if (std::exchange(isFirst, false)) {
            wrapper_->pendingAttributeIs(-2);
            a.change(*entity_);
            EXPECT_EQ(wrapper_->pendingAttribute(), -2);
        }
    });
    EXPECT_EQ(run(), expected);
}

TEST_P(EveryWatched, ChangeInTheTurnItselfIsToldInIt) {
    queue();
    forEach<Scalar>([&](Scalar const& a) {
        heard_.inHandler = [&] { a.change(*entity_); };
        a.change(*entity_);
        EXPECT_EQ(run(), (AllTold{{a.id, ""}, {a.id, ""}}));
    });
}

TEST_P(EveryWatched, PendingKeyIsNotLostToAnotherThatChangesInTheTurn) {
    queue();
    forEach<Keyed>([&](Keyed const& a) {
        heard_.onAll = [&] { changeKey(a, 1); };
        entity_->isNondestructingIs(!entity_->isNondestructing());
        changeKey(a, 0);
        EXPECT_EQ(run(), (AllTold{{Heard::all, ""}, {a.id, a.key(1)}, {a.id, ""}}));
        changeKey(a, 2);
        EXPECT_EQ(run(), (AllTold{{a.id, a.key(2)}})) << "counting begins anew";
    });
    entity_->isNondestructingIs(false);
}

TEST_P(EveryWatched, WithoutItsActivityAgainHearsAtOnce) {
    queue();
    wrapper_->activityIs(nullptr);
    forEachChangeable([&](Attribute const& a) {
        a.change(*entity_);
        EXPECT_EQ(heard_.take().size(), 1U);
    });
    EXPECT_FALSE(manager_.hasReady());
}

TEST_P(EveryWatched, NewActivityDropsThePendingKeys) {
    queue();
    forEach<Keyed>([&](Keyed const& a) {
        changeKey(a, 0);
        queue();
        changeKey(a, 1);
        EXPECT_EQ(run(), (AllTold{{a.id, a.key(1)}})) << "one key, not two";
    });
    forEach<Keyed>([&](Keyed const& a) { changeKey(a, 2); });
    queue();
    forEach<Keyed>([&](Keyed const& a) {
        entity_->isNondestructingIs(!entity_->isNondestructing());
        changeKey(a, 3);
        EXPECT_EQ(run(), (AllTold{{Heard::all, ""}, {a.id, a.key(3)}})) << "and no other's";
    });
    entity_->isNondestructingIs(false);
}

TEST_P(EveryWatched, DroppedWithWorkPendingGetsNoTurn) {
    Wrapper own = wrapperOf(entity_);
    own->watcherIs(&heard_);
    wrapper_->watcherIs(nullptr);
    own->activityIs(Qor::make<Qor::Activity>(manager_, "dropped"));
    forEachChangeable([&](Attribute const& a) { a.change(*entity_); });
    own = nullptr;
    EXPECT_EQ(run(), AllTold());
}

}  // namespace
}  // namespace Contract
