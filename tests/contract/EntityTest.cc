// What holds for every entity class as a whole, whatever attributes it has.
#include <set>

#include "EveryClass.h"

namespace Contract {
namespace {

class EveryEntity : public EveryClass {};
INSTANTIATE_TEST_SUITE_P(Models, EveryEntity, testing::ValuesIn(entityClasses()), ClassName());

TEST_P(EveryEntity, IdsCountUpWithinAClassAndNeverMeetThoseAboveIt) {
    Qor::AttributeId expected = class_.base == "Qor::Entity" ? 258 : 386;
    for (auto const& attribute : class_.own) {
        EXPECT_EQ(attribute->id, expected++) << attribute->name;
    }
    std::set<Qor::AttributeId> seen;
    forEach<Attribute>([&](Attribute const& a) { EXPECT_TRUE(seen.insert(a.id).second); });
}

TEST_P(EveryEntity, NamesEveryAttributeByItsId) {
    forEach<Attribute>(
        [&](Attribute const& a) { EXPECT_EQ(entity_->attributeString(a.id), a.name.c_str()); });
}

TEST_P(EveryEntity, AnswersUnknownForAnyOtherId) {
    for (Qor::AttributeId const id : {0, 2, 257, 300, 385, 450, 30000}) {
        EXPECT_EQ(entity_->attributeString(id), "unknown") << id;
    }
}

TEST_P(EveryEntity, TellsCollectionsFromSingleAttributes) {
    forEach<Attribute>(
        [&](Attribute const& a) { EXPECT_EQ(entity_->qorIsCollection(a.id), a.isKeyed()); });
    EXPECT_FALSE(entity_->qorIsCollection(257));
}

TEST_P(EveryEntity, IsOfTheKindsThatTheModelTells) {
    forEach<Attribute>([&](Attribute const& a) { EXPECT_EQ(a.kind, a.accessorKind); });
}

TEST_P(EveryEntity, CanBeStreamed) { EXPECT_TRUE(entity_->qorHasAttrLogInterface()); }

TEST_P(EveryEntity, IsBornWithOneReferenceAndNoParent) {
    auto const fresh = class_.make();
    EXPECT_EQ(fresh->qorRefs(), 1U);
    EXPECT_FALSE(fresh->parent());
    EXPECT_EQ(fresh->parentAttrId(), 0);
}

TEST_P(EveryEntity, BearsTheNameThatItIsBuiltFromOrNone) {
    EXPECT_EQ(class_.make(3)->name(), class_.hasName ? "text 3" : "");
}

TEST_P(EveryEntity, StartsWithEmptyCollectionsAndWithoutChildren) {
    forEach<Keyed>([&](Keyed const& a) {
        EXPECT_EQ(a.count(*entity_), 0U);
        EXPECT_EQ(a.walk(*entity_, Walk::iterator), Entries());
        EXPECT_EQ(a.walk(*entity_, Walk::constIterator), Entries());
    });
    forEach<Child>([&](Child const& a) { EXPECT_EQ(a.held(*entity_), "null"); });
}

TEST_P(EveryEntity, NondestructingIsToldOnceForEachChange) {
    entity_->isNondestructingIs(false);
    EXPECT_EQ(take(), AllTold());
    entity_->isNondestructingIs(true);
    EXPECT_EQ(take(), (AllTold{{6, ""}}));
    EXPECT_TRUE(entity_->isNondestructing());
    entity_->isNondestructingIs(true);
    EXPECT_EQ(take(), AllTold());
    entity_->isNondestructingIs(false);
    EXPECT_EQ(take(), (AllTold{{6, ""}}));
    EXPECT_FALSE(entity_->isNondestructing());
}

TEST_P(EveryEntity, ZeroReferencesAreToldWhateverTheArgument) {
    entity_->zeroReferencesIs(true);
    EXPECT_EQ(take(), (AllTold{{5, ""}}));
    entity_->zeroReferencesIs(false);
    EXPECT_EQ(take(), (AllTold{{5, ""}}));
}

TEST_P(EveryEntity, WeakNotifieeHearsOfTheEndAndForgetsTheEntity) {
    auto fresh = class_.make();
    auto const weak = class_.record(fresh, true);
    EXPECT_EQ(fresh->qorRefs(), 1U);
    fresh = nullptr;
    EXPECT_EQ(weak.take(), (AllTold{{5, ""}}));
    EXPECT_EQ(weak.notifiee->qorNotifier(), nullptr);
}

TEST_P(EveryEntity, StrongNotifieeKeepsTheEntity) {
    Qor::Entity const* const raw = entity_.ptr();
    EXPECT_EQ(entity_->qorRefs(), 2U);
    entity_ = nullptr;
    EXPECT_EQ(recorder_.notifiee->qorNotifier(), raw);
    EXPECT_EQ(take(), AllTold());
    recorder_.notifiee->notifierIs(nullptr);
    EXPECT_EQ(take(), AllTold());
}

TEST_P(EveryEntity, NotifieeThatMayChangeItGivesItBackWithItsName) {
    auto const [name, notifier] = class_.attachNotifiee(entity_);
    EXPECT_EQ(notifier, entity_);
    EXPECT_EQ(entity_->name(), name.c_str());
    EXPECT_EQ(class_.notifiees(*entity_), 1U) << "it has gone again, the recorder is there";
}

TEST_P(EveryEntity, ChangeIsToldOnceUnderTheAttributesOwnId) {
    forEachChangeable([&](Attribute const& a) {
        a.change(*entity_);
        AllTold const told = take();
        ASSERT_EQ(told.size(), 1U);
        EXPECT_EQ(told[0].id, a.id);
    });
}

TEST_P(EveryEntity, ChangeOfOneAttributeChangesNoOther) {
    forEachChangeable([&](Attribute const& a) {
        auto const fresh = class_.make();
        auto expected = held(*fresh);
        a.change(*fresh);
        std::string const changed = a.held(*fresh);
        EXPECT_NE(changed, expected[a.id]);
        expected[a.id] = changed;
        EXPECT_EQ(held(*fresh), expected);
    });
}

// Notifiees of every class can stand on the list of any class of the same tree; an attribute
// reaches those whose class has its handler.
TEST_P(EveryEntity, OnlyNotifieesThatHaveTheHandlerAreTold) {
    for (EntityClass const* const other : entityClasses()) {
        SCOPED_TRACE(other->name);
        auto const fresh = class_.make();
        auto const recorder = other->record(fresh);
        bool const isOfTheTree = other->root == class_.root;
        EXPECT_EQ(class_.notifiees(*fresh), isOfTheTree ? 1U : 0U);
        EXPECT_EQ(recorder.notifiee->qorNotifier() != nullptr, isOfTheTree);
        forEachChangeable([&](Attribute const& a) {
            a.change(*fresh);
            EXPECT_EQ(recorder.take().size(), other->isOrIsBelow(a.ownerName) ? 1U : 0U);
        });
    }
}

TEST_P(EveryEntity, HandlerThatThrowsStopsNobodyAndTheChangeStays) {
    auto const thrower = class_.record(entity_);
    auto const last = class_.record(entity_);
    thrower.listener->throwsIs(true);
    forEachChangeable([&](Attribute const& a) {
        std::string const before = a.held(*entity_);
        EXPECT_NO_THROW(a.change(*entity_));
        EXPECT_NE(a.held(*entity_), before);
        AllTold told = take();
        ASSERT_EQ(told.size(), 1U);
        EXPECT_EQ(last.take(), told);
        told.push_back({a.id, "exception"});
        EXPECT_EQ(thrower.take(), told);
    });
}

}  // namespace
}  // namespace Contract
