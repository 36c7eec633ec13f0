// Through the generic interface every attribute of every class is read and written as compiled code
// reads and writes it, and the same notifiees hear the same.
#include <qor/tree/EntityPath.h>

#include "EveryWrapper.h"

namespace Contract {
namespace {

class EveryGenericEntity : public EveryWrapper {};
INSTANTIATE_TEST_SUITE_P(Models, EveryGenericEntity, testing::ValuesIn(entityClasses()),
                         ClassName());

TEST_P(EveryGenericEntity, KnowsEachAttributeByItsNameAndItsNumber) {
    forEach<Attribute>([&](Attribute const& a) {
        EXPECT_EQ(wrapper_->attributeId(a.name.c_str()), a.id);
        EXPECT_EQ(wrapper_->attributeString(a.id), a.name.c_str());
    });
    EXPECT_EQ(wrapper_->attributeString(31000), "unknown");
    EXPECT_EQ(raised([&] { wrapper_->attributeId("nobody"); }), "unknown attribute nobody");
}

TEST_P(EveryGenericEntity, ServesEveryAttributeThatItsRecordTells) {
    for (auto const& record : type().attributes()) {
        SCOPED_TRACE(record->name());
        bool const isCalled = record->introspection().isFunction() && record->id() > 155;
        std::string const expected = record->introspection().hasInternalIndex() ? "type name"
                                     : record->flags().isCollection()           ? "type qor_index"
                                     : isCalled                                 ? "type List"
                                                                                : "nothing";
        Wrapper result;
        EXPECT_EQ(raised([&] { result = wrapper_->attributeOp(record->id()); }), expected);
        if (expected == "nothing") {
            ASSERT_TRUE(result);
            EXPECT_TRUE(result->fwkType()->isA(*record->valueType()));
        }
    }
}

TEST_P(EveryGenericEntity, IsOfTheEntitysOwnClass) {
    EXPECT_EQ(type().fullName(), class_.name.c_str());
    EXPECT_EQ(wrapper_->entity(), entity_);
    EXPECT_EQ(wrapper_->entityConst(), entity_);
    EXPECT_FALSE(wrapper_->isConst());
}

TEST_P(EveryGenericEntity, ReadsTheDefaultsThatTheAccessorsRead) {
    forEach<Attribute>([&](Attribute const& a) {
        if (a.kind == Kind::scalar || a.kind == Kind::constField || a.kind == Kind::child) {
            EXPECT_EQ(read(a), a.held(*entity_));
        }
    });
    forEach<Keyed>([&](Keyed const& a) {
        EXPECT_EQ(read(a, OpId::opCount), "0");
        EXPECT_EQ(read(a, OpId::opExists, key(a, 0)), "false");
    });
    forEach<Mapped>([&](Mapped const& a) { EXPECT_EQ(read(a, key(a, 0)), a.absent()); });
    forEach<OwnedMap>([&](OwnedMap const& a) { EXPECT_EQ(read(a, key(a, 0)), "null"); });
}

TEST_P(EveryGenericEntity, WritesASingleValueAsItsSetterDoes) {
    forEach<Scalar>([&](Scalar const& a) {
        for (unsigned i = 0; i < a.values(); ++i) {
            EXPECT_FALSE(op(a, OpId::opSet, nullptr, value(a, a.value(i))));
            a.set(*twin_, i);
            EXPECT_EQ(read(a), a.value(i));
            expectAlike();
        }
    });
}

TEST_P(EveryGenericEntity, EqualValueTellsNobody) {
    forEach<Scalar>([&](Scalar const& a) {
        EXPECT_FALSE(op(a, OpId::opSet, nullptr, value(a, a.held(*entity_))));
        EXPECT_EQ(take(), AllTold());
    });
}

TEST_P(EveryGenericEntity, WritesUnderAKeyAsTheKeyedSetterDoes) {
    forEach<Mapped>([&](Mapped const& a) {
        for (unsigned i = 0; i < 2 * a.keys(); ++i) {
            unsigned const nth = i % a.keys();
            unsigned const v = (i / a.keys() + i) % 2;
            EXPECT_FALSE(op(a, OpId::opSet, key(a, nth), value(a, v)));
            a.set(*twin_, nth, v);
            EXPECT_EQ(read(a, key(a, nth)), a.value(v));
            EXPECT_EQ(read(a, OpId::opExists, key(a, nth)), "true");
            EXPECT_EQ(read(a, OpId::opCount), std::to_string(a.count(*twin_)));
        }
        expectAlike();
    });
}

TEST_P(EveryGenericEntity, CountsTheChangesOfACollectionAsCompiledCodeDoes) {
    forEach<Mapped>([&](Mapped const& a) {
        op(a, OpId::opSet, key(a, 0), value(a, 0));
        a.set(*twin_, 0, 0);
        std::string const before = read(a, OpId::opVersion);
        EXPECT_EQ(before, wrappedText(twinWrapper_->attributeOp(a.id, OpId::opVersion).ptr()));
        op(a, OpId::opSet, key(a, 1), value(a, 0));
        op(a, OpId::opDel, key(a, 1));
        EXPECT_EQ(read(a, OpId::opCount), "1") << "the count returns";
        EXPECT_NE(read(a, OpId::opVersion), before) << "the version does not";
    });
}

TEST_P(EveryGenericEntity, RemovesAKeyAndTellsWhatWasThere) {
    forEach<Mapped>([&](Mapped const& a) {
        fill(a, 2);
        for (unsigned i = 0; i < a.keys(); ++i) {
            bool const wasThere = i % 2 == 0;
            std::string const old = a.del(*twin_, i);
            bool const isSet = a.valueType == "bool";
            EXPECT_EQ(read(a, OpId::opDel, key(a, i)), isSet ? old : wasThere ? "true" : "false");
            expectToldAlike();
        }
        EXPECT_EQ(read(a, OpId::opCount), "0");
        expectAlike();
    });
}

TEST_P(EveryGenericEntity, MakesChildrenByTheirNames) {
    forEach<OwnedMap>([&](OwnedMap const& a) {
        for (unsigned i = 0; i < a.keys(); ++i) {
            Wrapper const made = op(a, OpId::opSet, nullptr, listOf({key(a, i)}));
            a.set(*twin_, i);
            ASSERT_TRUE(made);
            EXPECT_FALSE(made->isConst());
            EXPECT_EQ(made->entity(), a.get(*entity_, i));
            EXPECT_EQ(read(a, key(a, i)), textOf(a.get(*entity_, i)));
            EXPECT_EQ(read(a, OpId::opExists, key(a, i)), "true");
            expectToldAlike();
        }
        expectAlike();
        EXPECT_EQ(op(a, OpId::opSet, nullptr, listOf({key(a, 0)}))->entity(), a.get(*entity_, 0))
            << "a name that is there gives what bears it";
        EXPECT_EQ(take(), AllTold());
    });
}

TEST_P(EveryGenericEntity, RemovesChildrenByTheirNames) {
    forEach<OwnedMap>([&](OwnedMap const& a) {
        fill(a, 2);
        for (unsigned i = 0; i < a.keys(); ++i) {
            auto const child = a.get(*entity_, i);
            Wrapper const gone = op(a, OpId::opDel, key(a, i));
            EXPECT_EQ(gone ? gone->entity() : nullptr, child);
            a.del(*twin_, i);
            expectToldAlike();
        }
        expectAlike();
    });
}

TEST_P(EveryGenericEntity, MakesReplacesAndRemovesASingleChild) {
    forEach<Child>([&](Child const& a) {
        for (unsigned const i : {1U, 2U, 2U}) {
            Wrapper const made = op(a, OpId::opSet, nullptr, listOf({nameValue(i)}));
            a.set(*twin_, i);
            ASSERT_TRUE(made);
            EXPECT_EQ(made->entity(), a.get(*entity_, i));
            EXPECT_EQ(op(a, OpId::opGet)->entity(), made->entity());
            expectAlike();
        }
        auto const child = a.get(*entity_, 2);
        EXPECT_EQ(op(a, OpId::opDel)->entity(), child);
        a.del(*twin_, 2);
        EXPECT_EQ(read(a), "null");
        expectAlike();
    });
}

TEST_P(EveryGenericEntity, AnswersWhatEveryEntityHasByTheFramework) {
    auto const id = [&](char const* name) { return wrapper_->attributeId(name); };
    auto const text = [&](char const* name) {
        return wrappedText(wrapper_->attributeOp(id(name), OpId::opGet, listOf({})).ptr());
    };
    EXPECT_EQ(text("qorHasAttrLogInterface"), "true");
    EXPECT_EQ(id("qorHasAttrLogInterface"), 154);
    EXPECT_EQ(id("isNondestructing"), 6);
    EXPECT_EQ(wrappedText(wrapper_->attributeOp(6).ptr()), "false");
    EXPECT_FALSE(wrapper_->attributeOp(6, OpId::opSet, nullptr, valueOf("bool", "true")));
    EXPECT_TRUE(entity_->isNondestructing());
    EXPECT_EQ(take(), (AllTold{{6, ""}}));
    EXPECT_EQ(wrappedText(wrapper_->attributeOp(6).ptr()), "true");
    wrapper_->attributeOp(6, OpId::opSet, nullptr, valueOf("bool", "false"));
    EXPECT_FALSE(entity_->isNondestructing());
    if (type().attr(Qor::Name("fwkKey"))) {
        EXPECT_EQ(id("fwkKey"), 0);
        EXPECT_EQ(wrappedText(wrapper_->attributeOp(0).ptr()), textOf(entity_->name()));
    }
}

TEST_P(EveryGenericEntity, GivesTheEntityToWhoKnowsItsClassOrOneAbove) {
    Qor::PtrInterface const* const object = entity_.ptr();
    for (Qor::QorType const* above = &type(); above; above = above->base()) {
        EXPECT_EQ(wrapper_->genericValue(above), object) << above->fullName();
    }
    EXPECT_EQ(wrapper_->genericValue(Qor::Entity::_fwkType()), object);
    EXPECT_EQ(wrapper_->genericValue(Qor::PtrInterface::_fwkType()), object);
    std::string const own = "type " + class_.name.substr(std::string("Vgw::").size());
    EXPECT_EQ(raised([&] { wrapper_->genericValue(Qor::Name::_fwkType()); }), own);
    EXPECT_EQ(raised([&] { wrapper_->genericValue(nullptr); }), own);
    for (EntityClass const* const other : entityClasses()) {
        auto const* const type = Qor::QorType::type(other->name.c_str());
        EXPECT_EQ(raised([&] { wrapper_->genericValue(type); }),
                  class_.isOrIsBelow(other->name) ? "nothing" : own)
            << other->name;
    }
}

TEST_P(EveryGenericEntity, HasTheEntitysTextForm) {
    EXPECT_EQ(wrapper_->strRep(), Qor::valueToStrep(entity_));
}

}  // namespace
}  // namespace Contract
