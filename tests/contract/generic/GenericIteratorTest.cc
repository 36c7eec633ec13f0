// Walks through the generic interface: the same members in the same order as compiled code meets
// them, from the start and from any key, whatever happens to the collection on the way.
#include <vgw/OvsdbDataTypes.h>

#include "EveryWrapper.h"

namespace Contract {
namespace {

Entries walked(Iterator at, bool byName) {
    Entries all;
    for (; at; ++at) {
        Wrapper const value = at.value();
        all.push_back({wrappedText(at.key().ptr()),
                       byName ? textOf(value->entity()->name()) : wrappedText(value.ptr())});
    }
    EXPECT_FALSE(at.key());
    EXPECT_FALSE(at.value());
    ++at;
    EXPECT_FALSE(at) << "the end stays the end";
    return all;
}

class EveryWalk : public EveryWrapper {
  protected:
    Entries fromStart(Keyed const& a) const {
        return walked(wrapper_->attributeIteratorConst(a.id), a.kind == Kind::childMap);
    }
    Entries fromKey(Keyed const& a, unsigned i) const {
        return walked(wrapper_->attributeIteratorKeyConst(a.id, key(a, i)),
                      a.kind == Kind::childMap);
    }
};
INSTANTIATE_TEST_SUITE_P(Models, EveryWalk, testing::ValuesIn(entityClasses()), ClassName());

TEST_P(EveryWalk, MeetsWhatCompiledCodeMeetsInItsOrder) {
    forEach<Keyed>([&](Keyed const& a) {
        EXPECT_EQ(fromStart(a), Entries());
        fill(a, 2);
        EXPECT_EQ(fromStart(a), a.walk(*entity_, Walk::iteratorConst));
        EXPECT_EQ(fromStart(a).size(), (a.keys() + 1) / 2);
    });
}

TEST_P(EveryWalk, StartsAtAKeyOrAtWhatFollowsWhereItWouldStand) {
    forEach<Keyed>([&](Keyed const& a) {
        EXPECT_EQ(fromKey(a, 0), Entries());
        fill(a, 2);
        for (unsigned i = 0; i < a.keys(); ++i) {
            Entries const rest = fromKey(a, i);
            EXPECT_EQ(rest, a.walkFrom(*entity_, i, true)) << a.key(i);
            if (i % 2 == 0) {
                ASSERT_FALSE(rest.empty());
                EXPECT_EQ(rest.front().key, a.key(i));
            }
        }
    });
}

TEST_P(EveryWalk, KeysAreConstAndValuesAsTheWrapperIs) {
    forEach<Keyed>([&](Keyed const& a) {
        fill(a, 10);
        for (bool const isConst : {false, true}) {
            Iterator const at = wrapperOf(entity_, isConst)->attributeIteratorConst(a.id);
            EXPECT_TRUE(at.key()->isConst());
            EXPECT_EQ(at.value()->isConst(), isConst);
            EXPECT_EQ(at.id(), a.id);
        }
    });
}

TEST_P(EveryWalk, NeedsAKeyOfTheCollectionsTypeToStartAtOne) {
    Wrapper const wrong = valueOf("Vgw::EncapsulationType", "'unknownEncapType'");
    forEach<Keyed>([&](Keyed const& a) {
        EXPECT_EQ(raised([&] { wrapper_->attributeIteratorKeyConst(a.id, nullptr); }),
                  "type qor_index");
        EXPECT_EQ(raised([&] { wrapper_->attributeIteratorKeyConst(a.id, wrong); }),
                  "type EncapsulationType");
    });
}

TEST_P(EveryWalk, WhatIsNoCollectionIsNotWalked) {
    auto const refused = [&](Qor::AttributeId id) {
        EXPECT_TRUE(raised([&] { wrapper_->attributeIteratorConst(id); }).starts_with("unknown"));
        EXPECT_TRUE(raised([&] {
                        wrapper_->attributeIteratorKeyConst(id, nullptr);
                    }).starts_with("unknown"));
    };
    refused(31000);
    refused(6);
    forEach<Attribute>([&](Attribute const& a) {
        if (!a.isKeyed()) {
            refused(a.id);
        }
    });
}

TEST_P(EveryWalk, RemovingEachMemberThatIsMetMeetsThemAll) {
    forEach<Keyed>([&](Keyed const& a) {
        fill(a, 1);
        unsigned met = 0;
        for (Iterator at = wrapper_->attributeIteratorConst(a.id); at; ++at, ++met) {
            wrapper_->attributeOp(a.id, OpId::opDel, at.key());
        }
        EXPECT_EQ(met, a.keys());
        EXPECT_EQ(read(a, OpId::opCount), "0");
        a.delAll(*twin_);
        EXPECT_EQ(take().size(), twinRecorder_.take().size());
    });
}

class GenericIterator : public testing::Test {
  protected:
    static Vgw::PhysicalPort::Ptr filled() {
        auto const made = Qor::make<Vgw::PhysicalPort>("ethernet1");
        for (Qor::U16 vlan = 1; vlan <= 8; ++vlan) {
            made->vlanBindingIs(vlan, "ls");
        }
        return made;
    }
    static std::string key(Iterator const& at) { return wrappedText(at.key().ptr()); }

    Vgw::PhysicalPort::Ptr const port = filled();
    Wrapper const wrapper = wrapperOf(port);
    Qor::AttributeId const id = wrapper->attributeId("vlanBinding");
    Iterator at = wrapper->attributeIteratorConst(id);
};

TEST_F(GenericIterator, CopyStandsAtTheSamePlaceAndGoesItsOwnWay) {
    ++at;
    Iterator copy = at;
    std::string const place = key(at);
    EXPECT_EQ(key(copy), place);
    EXPECT_NE(copy.iterator(), at.iterator());
    ++at;
    EXPECT_EQ(key(copy), place);
    ++copy;
    EXPECT_EQ(key(copy), key(at));
}

TEST_F(GenericIterator, CopyHoldsItsMemberByItself) {
    Iterator const copy = wrapper->attributeIterator_iterClone(at);
    std::string const place = key(at);
    at = Iterator();
    port->vlanBindingDelAll();
    ASSERT_TRUE(copy);
    EXPECT_EQ(key(copy), place);
    EXPECT_EQ(wrappedText(copy.value().ptr()), "'ls'");
}

TEST_F(GenericIterator, MovedFromIsAtNoPlace) {
    std::string const place = key(at);
    Iterator const moved = std::move(at);
    EXPECT_EQ(key(moved), place);
    EXPECT_FALSE(at.iterator());
}

TEST_F(GenericIterator, OneThatWasNeverPlacedIsAtTheEnd) {
    Iterator nowhere;
    EXPECT_FALSE(nowhere);
    ++nowhere;
    EXPECT_FALSE(nowhere);
    EXPECT_FALSE(nowhere.key());
    EXPECT_FALSE(nowhere.value());
    Iterator const copy = nowhere;
    EXPECT_FALSE(copy);
}

TEST_F(GenericIterator, KeepsItsWrapperAndItsEntity) {
    Wrapper own = wrapperOf(Qor::make<Vgw::PhysicalPort>("ethernet2"));
    own->attributeOp(id, OpId::opSet, valueOf("U16", "7"), valueOf("Qor::String8", "'ls'"));
    Iterator const walk = own->attributeIteratorConst(id);
    own = nullptr;
    EXPECT_EQ(key(walk), "7");
    EXPECT_EQ(wrappedText(walk.value().ptr()), "'ls'");
}

TEST_F(GenericIterator, StepsDoWhatTheirNamesSay) {
    EXPECT_TRUE(wrapper->attributeIterator_nonNull(at));
    std::string const first = wrappedText(wrapper->attributeIterator_iterKey(at).ptr());
    EXPECT_EQ(wrappedText(wrapper->attributeIterator_iterObj(at).ptr()), "'ls'");
    Qor::GenericIf const& readOnly = *wrapper;
    EXPECT_EQ(wrappedText(readOnly.attributeIterator_iterObj(at).ptr()), "'ls'");
    EXPECT_FALSE(wrapper->attributeIterator_iterInc(at));
    EXPECT_NE(wrappedText(wrapper->attributeIterator_iterKey(at).ptr()), first);
    while (wrapper->attributeIterator_nonNull(at)) {
        wrapper->attributeIterator_iterInc(at);
    }
    EXPECT_FALSE(wrapper->attributeIterator_iterKey(at));
    EXPECT_FALSE(wrapper->attributeIterator_iterObj(at));
}

TEST_F(GenericIterator, StaysWithAMemberThatGoesWhileOthersCome) {
    std::string const place = key(at);
    wrapper->attributeOp(id, OpId::opDel, at.key());
    for (Qor::U16 vlan = 100; vlan < 1000; ++vlan) {
        port->vlanBindingIs(vlan, "grown");
    }
    EXPECT_EQ(key(at), place);
    unsigned met = 0;
    for (++at; at; ++at) {
        ++met;
    }
    EXPECT_GE(met, 7U) << "those that stayed";
}

}  // namespace
}  // namespace Contract
