// A compiled source and its copy in dynamic entities.
#include "../attrlog/Peers.h"
#include "Described.h"
#include "Tree.h"

#include <qor/dynamic/DynamicAdapter.h>
#include <qor/generic/GenericException.h>
#include <qor/generic/GenericNotifiee.h>

#include <vgw/attrlog/HwVtepOvsdb.h>
#include <vgw/attrlog/LogicalSwitch.h>
#include <vgw/attrlog/PhysicalPort.h>
#include <vgw/attrlog/PhysicalSwitch.h>
#include <vgw/attrlog/Status.h>

#include <gtest/gtest.h>

namespace {

using Qor::DynamicEntity;
using Qor::make;
using Qor::Name;
using Qor::Ptr;

using Told = std::vector<std::string>;

class Listener : public Qor::GenericNotifiee {
  public:
    using GenericNotifiee::GenericNotifiee;
    Told told;
    void onChange(Qor::QorAttr const& attribute, Qor::GenericIf const* key) override {
        std::string line = attribute.name().charPtr();
        if (key) line += std::string(" ") + key->strRep().charPtr();
        told.push_back(line);
    }
};

Ptr<DynamicEntity> twinOf(char const* type, char const* name) {
    auto const made = Described::twin(type).newInstance(Name(name));
    return Qor::dynamicCast<DynamicEntity>(made);
}

class DynamicCopy : public testing::Test {
  protected:
    DynamicCopy() {
        status->ovsdbIs(Name("db"));
        status->ovsdbSessionStatusIs(Name("session"));
        status->runningIs(true);
        db().rootIs(Name("global"))->managerIs("m", true);
        auto const leaf = db().physicalSwitchRawIs(Name("uuid"));
        leaf->displayNameIs(Name("leaf"));
        leaf->descIs(Qor::String8(std::string(100000, 'd')));
        leaf->tunnelIpIs(Kelp::IpAddr("192.0.2.1"), true);
        db().physicalSwitchIs("leaf", leaf);
        db().physicalPortIs(Name("port"))->vlanBindingIs(7, "ls");
        db().logicalSwitchIs(Name("ls"))->tunnelKeyIs(5000);
        auto const locator = db().physicalLocatorRawIs(Name("l"));
        Vgw::PhysicalLocatorKey const key(Vgw::vxlan_over_ipv4, Kelp::IpAddr("192.0.2.9"));
        locator->keyIs(key);
        locator->ucastMacRefIs(Vgw::MacVniPair(Kelp::EthAddr("00:00:5e:00:53:01"), Vxlan::Vni(7)),
                               true);
        db().remoteLocatorIs(key, locator);
    }
    Vgw::HwVtepOvsdb& db() { return *status->ovsdb(); }
    void mount() {
        peers.reader.copy = copy;
        peers.source.send(status);
        peers.settle();
    }
    // The wrapper over an entity of the copy.
    Tree::Wrapper at(std::initializer_list<Qor::String8> path) {
        std::vector<Qor::String8> const elements(path);
        Ptr<Qor::Entity> entity = copy;
        for (std::size_t next = 0, used = 0; entity && next < elements.size(); next += used) {
            entity = entity->qorPathStep(&elements[next], elements.size() - next, &used);
        }
        return entity ? Tree::wrapperOf(entity) : nullptr;
    }
    static void set(Tree::Wrapper const& row, char const* attribute, char const* text) {
        auto const record = row->fwkType()->attr(Name(attribute));
        row->attributeOp(record->id(), Tree::OpId::opSet, nullptr,
                         Tree::valueOf(*record->valueType(), text));
    }

    Ptr<Vgw::Status> const status = make<Vgw::Status>(Name("status"));
    Ptr<DynamicEntity> const copy = twinOf("Vgw::Status", "status");
    Peers peers;
};

TEST_F(DynamicCopy, HoldsTheWholeTree) {
    mount();
    EXPECT_EQ(peers.reader.failure, Qor::String8());
    EXPECT_EQ(Tree::dump(copy), Tree::dump(status));
    EXPECT_EQ(peers.reader.demuxer->counters().unknownAttributes, 0U);
}

// The keys of every collection of a tree, as they are met.
std::string walked(Ptr<Qor::Entity> const& root) {
    std::string text;
    for (auto const& row : Tree::rows(root)) {
        for (auto const* attribute : Tree::attributesOf(*row->fwkType())) {
            if (!attribute->flags().isCollection()) continue;
            text += std::string(attribute->name().charPtr()) + ":";
            for (auto at = row->attributeIteratorConst(attribute->id()); at; ++at) {
                text += " " + Tree::plain(at.key()->strRep().view());
            }
            text += "\n";
        }
    }
    return text;
}

TEST_F(DynamicCopy, CollectionsStandInTheSameOrder) {
    auto const row = db().physicalLocatorRaw(Name("l"));
    for (int i = 0; i < 100; ++i) {
        auto const last = std::to_string(i);
        Kelp::IpAddr const address("192.0.2." + last);
        row->ucastMacRefIs({Kelp::EthAddr("00:00:5e:00:53:07"), Vxlan::Vni(Qor::U32(i))}, true);
        db().remoteLocatorIs({Vgw::vxlan_over_ipv4, address}, row);
        db().physicalLocatorIs(address, row);
        db().logicalSwitchIs(Name(last));
    }
    mount();
    EXPECT_EQ(walked(copy), walked(status));
}

TEST_F(DynamicCopy, CompositeValueTellsTheHashOfItsClass) {
    std::string const text = "Value('Vgw::MacVniPair', ** {'mac': '00:00:5e:00:53:01', 'vni': 7})";
    auto const compiled = Tree::valueOf(*Qor::QorType::type("Vgw::MacVniPair"), text);
    auto const described =
        Tree::valueOf(Described::twin("Vgw::MacVniPair"), Described::renamed(text));
    EXPECT_EQ(described->attributeOp(4)->strRep(), compiled->attributeOp(4)->strRep());
    EXPECT_EQ(described->attributeOp(2)->strRep(), "'00:00:5e:00:53:01'");
}

// A source whose class has an attribute more than its reader's.
TEST_F(DynamicCopy, AttributeOfANewerWriterIsHeldByDescriptionAndCountedByACompiledClass) {
    auto newer =
        Described::renamed(Qor::TypeDescription::of(*Qor::QorType::type("Vgw::LogicalSwitch")));
    newer.fullName = Name("Dyn::NewerLogicalSwitch");
    auto added = newer.attributes.front();
    added.id = 390;
    added.name = Name("newer");
    added.valueType = Name("U32");
    added.flags = Qor::FlagClasses::scalar.flags;
    added.introspection = Qor::FlagClasses::scalar.introspection;
    added.keyType = Name();
    added.arguments.clear();
    newer.attributes.push_back(added);
    Described::twin("Vgw::LogicalSwitch");
    Described::take({newer});
    auto& type = *Qor::QorType::type("Dyn::NewerLogicalSwitch");
    auto const source = Qor::dynamicCast<DynamicEntity>(type.newInstance(Name("ls")));
    auto const wrapper = Tree::wrapperOf(source);
    set(wrapper, "newer", "42");
    set(wrapper, "desc", "'both know this'");

    auto const old = make<Vgw::LogicalSwitch>(Name("ls"));
    peers.reader.copy = old;
    peers.source.send(source);
    peers.settle();
    EXPECT_EQ(old->desc(), "both know this");
    EXPECT_EQ(peers.reader.demuxer->counters().unknownAttributes, 1U);

    Peers others;
    auto const reader = type.newInstance(Name("ls"));
    others.reader.copy = reader;
    others.source.send(source);
    others.settle();
    EXPECT_EQ(Tree::dump(reader), Tree::dump(source));
    EXPECT_EQ(Tree::wrapperOf(reader)->attributeOp(390)->strRep(), "42");
    EXPECT_EQ(others.reader.demuxer->counters().unknownAttributes, 0U);
}

TEST_F(DynamicCopy, FollowsEachKindOfChange) {
    mount();
    auto const ls = db().logicalSwitch(Name("ls"));
    ls->tunnelKeyIs(6000);
    ls->descIs("changed");
    ls->invalidAttribIs("x", true);
    db().logicalSwitchIs(Name("second"));
    db().physicalPort(Name("port"))->vlanBindingDel(7);
    db().physicalSwitchDel("leaf");
    db().rootDel(Name("global"));
    peers.settle();
    EXPECT_EQ(Tree::dump(copy), Tree::dump(status));
    EXPECT_EQ(at({"ovsdb", "logicalSwitch", "second"})->attributeOp(388)->strRep(), "16777216")
        << "a row that comes live begins as its class does";
    status->ovsdbDel();
    peers.settle();
    EXPECT_EQ(Tree::dump(copy), Tree::dump(status));
}

TEST_F(DynamicCopy, TellsWhatACompiledCopyTells) {
    mount();
    auto const original = db().logicalSwitch(Name("ls"));
    Listener compiled(original);
    Listener described(at({"ovsdb", "logicalSwitch", "ls"})->entity());
    original->tunnelKeyIs(1);
    original->invalidAttribIs("x", true);
    original->invalidAttribIs("x", true);
    original->invalidAttribDel("x");
    original->descIs("d");
    original->isNondestructingIs(true);
    peers.settle();
    EXPECT_EQ(described.told, compiled.told);
    EXPECT_EQ(described.told.size(), 5U);
    original->isNondestructingIs(false);
    peers.settle();
}

TEST_F(DynamicCopy, WritesBack) {
    mount();
    auto const ls = at({"ovsdb", "logicalSwitch", "ls"});
    set(ls, "tunnelKey", "77");
    set(ls, "desc", "'from the copy'");
    auto const rows = at({"ovsdb"});
    rows->attributeOp(263, Tree::OpId::opSet, nullptr,
                      Tree::listOf(Tree::valueOf(*Name::_fwkType(), "'new'")));
    peers.settle();
    EXPECT_EQ(db().logicalSwitch(Name("ls"))->tunnelKey(), 77U);
    EXPECT_EQ(db().logicalSwitch(Name("ls"))->desc(), "from the copy");
    ASSERT_TRUE(db().logicalSwitch(Name("new")));
    set(at({"ovsdb", "logicalSwitch", "new"}), "displayName", "'fresh'");
    rows->attributeOp(260, Tree::OpId::opSet,
                      Tree::valueOf(*Qor::QorType::type("Qor::String8"), "'again'"),
                      at({"ovsdb", "physicalSwitchRaw", "uuid"}));
    peers.settle();
    EXPECT_EQ(db().logicalSwitch(Name("new"))->displayName(), "fresh");
    EXPECT_EQ(db().physicalSwitch("again"), db().physicalSwitchRaw(Name("uuid")));
    EXPECT_EQ(Tree::dump(copy), Tree::dump(status));
}

TEST_F(DynamicCopy, ServesTheTreeOn) {
    mount();
    Peers further;
    auto const third = make<Vgw::Status>(Name("status"));
    further.reader.copy = third;
    further.source.send(copy);
    auto const both = [&] {
        for (int i = 0; i < 4; ++i) {
            peers.settle();
            further.settle();
        }
    };
    both();
    EXPECT_EQ(Tree::dump(third), Tree::dump(status));
    db().logicalSwitch(Name("ls"))->tunnelKeyIs(9);
    third->ovsdb()->logicalSwitch(Name("ls"))->descIs("two hops back");
    both();
    EXPECT_EQ(third->ovsdb()->logicalSwitch(Name("ls"))->tunnelKey(), 9U);
    EXPECT_EQ(db().logicalSwitch(Name("ls"))->desc(), "two hops back");
    EXPECT_EQ(Tree::dump(third), Tree::dump(status));
}

TEST_F(DynamicCopy, RemountKeepsWhatIsThereAndTellsRealDifferencesOnly) {
    mount();
    auto const before = at({"ovsdb", "logicalSwitch", "ls"})->entity();
    peers.source.demuxer->close();
    peers.reader.demuxer->close();
    db().logicalSwitchIs(Name("while away"));
    db().physicalPortDel(Name("port"));
    Listener rows(at({"ovsdb"})->entity());
    Listener row(before);
    Peers again;
    again.reader.copy = copy;
    again.source.send(status);
    again.settle();
    EXPECT_EQ(Tree::dump(copy), Tree::dump(status));
    EXPECT_EQ(at({"ovsdb", "logicalSwitch", "ls"})->entity(), before);
    EXPECT_EQ(row.told, Told{});
    EXPECT_EQ(rows.told, (Told{"physicalPort 'port'", "logicalSwitch 'while away'"}));
}

TEST_F(DynamicCopy, KeepsAndCountsUnknownEnumerators) {
    mount();
    status->vtepListTypeIs(static_cast<Vgw::VtepListType>(7));
    peers.settle();
    EXPECT_EQ(at({})->attributeOp(261)->strRep(), "'VtepListType(7)'");
    EXPECT_EQ(peers.reader.demuxer->counters().unknownEnums, 1U);
    set(at({}), "running", "false");
    peers.settle();
    EXPECT_FALSE(status->running());
}

TEST_F(DynamicCopy, CopyThatMayOnlyBeReadRefusesChanges) {
    peers.reader.flags =
        Qor::AdapterState::Bits(Qor::AdapterState::weakNotifier | Qor::AdapterState::readOnlyLocal);
    mount();
    set(at({}), "running", "false");
    peers.settle();
    EXPECT_TRUE(status->running());
    EXPECT_EQ(peers.reader.demuxer->counters().refusedLocally, 1U);
}

TEST_F(DynamicCopy, ReferenceToAnotherClassEndsTheConnection) {
    mount();
    auto const& out = peers.source.outPtr();
    using Mark = Peer::Out::TransactToken;
    auto const ls = peers.source.adapter(db().logicalSwitch(Name("ls")));
    out->nextHeaderIs({peers.source.adapter(status->ovsdb())->entityId(), 260});
    out << Mark::begin << Qor::String8("leaf") << ls->entityId().value() << Mark::end;
    peers.settle();
    EXPECT_EQ(peers.reader.failure, "Entity is the wrong type");
    EXPECT_TRUE(at({"ovsdb", "logicalSwitch", "ls"}));
}

TEST_F(DynamicCopy, OperationIsRefusedByName) {
    mount();
    auto const ls = at({"ovsdb", "logicalSwitch", "ls"});
    try {
        ls->attributeOp(ls->attributeId("clone"), Tree::OpId::opGet, Tree::listOf(ls));
        FAIL();
    } catch (Qor::NoCodeException const& refused) {
        EXPECT_EQ(refused.subject(), "clone");
        EXPECT_EQ(refused.message(),
                  "clone: can be called only where Dyn::LogicalSwitch is more than a description");
    }
}

TEST_F(DynamicCopy, KeyOfATextThatNoRecordCanHoldIsRefused) {
    mount();
    auto const locator = at({"ovsdb", "physicalLocatorRaw", "l"});
    auto const text = Tree::valueOf(*Qor::QorType::type("Qor::String8"), "'text'");
    auto const keyOf = [](std::size_t length) {
        return Tree::valueOf(*Qor::QorType::type("Qor::String8"),
                             "'" + std::string(length, 'k') + "'");
    };
    EXPECT_THROW(locator->attributeOp(387, Tree::OpId::opSet, keyOf(49119), text),
                 Qor::RangeException);
    EXPECT_EQ(locator->attributeOp(387, Tree::OpId::opCount)->strRep(), "0");
    locator->attributeOp(387, Tree::OpId::opSet, keyOf(49118), text);
    EXPECT_EQ(locator->attributeOp(387, Tree::OpId::opCount)->strRep(), "1");
}

TEST_F(DynamicCopy, EntitiesWithinEachOtherEnd) {
    Qor::TypeDescription box;
    box.fullName = Name("Dyn::Box");
    box.base = Name("Qor::Entity");
    box.kind = Qor::TypeDescription::Kind::entity;
    box.constructorArgs = {{"name", "Qor::Name"}};
    box.attributes = {{258,
                       Name("inner"),
                       Name("Dyn::Box"),
                       Name(),
                       Qor::FlagClasses::childEntity.flags,
                       Qor::FlagClasses::childEntity.introspection,
                       Name(),
                       {}}};
    Described::take({box});
    auto const outermost = Qor::QorType::type("Dyn::Box")->newInstance(Name("box"));
    auto const name = Tree::valueOf(*Name::_fwkType(), "'box'");
    auto at = Tree::wrapperOf(outermost);
    int depth = 1;
    try {
        for (; depth < 1000; ++depth) {
            at = at->attributeOp(258, Tree::OpId::opSet, nullptr, Tree::listOf(name));
        }
    } catch (Qor::RangeException const& refused) {
        EXPECT_EQ(refused.message(), "entities more than 64 deep");
    }
    EXPECT_EQ(depth, 65);
}

TEST_F(DynamicCopy, EndsWithAllThatItOwns) {
    mount();
    auto const row = at({"ovsdb", "logicalSwitch", "ls"})->entity();
    EXPECT_EQ(row->uriPath(), "/status/ovsdb/logicalSwitch/ls");
    auto const root = at({});
    root->attributeOp(259, Tree::OpId::opDel);
    peers.settle();
    EXPECT_FALSE(status->ovsdb());
    EXPECT_FALSE(row->parent());
}

// A seed's changes, now on one end and now on the other.
class DynamicChanges : public DynamicCopy, public testing::WithParamInterface<unsigned> {};

TEST_P(DynamicChanges, LeadToEqualTreesOnBothEnds) {
    Tree::Random random(GetParam());
    mount();
    for (int round = 0; round < 12; ++round) {
        Ptr<Qor::Entity> const side = random() % 2 ? Ptr<Qor::Entity>(status) : copy;
        for (int i = 0; i < 25; ++i) {
            Tree::change(random, side);
            if (random() % 3 == 0) carry(peers.source, peers.reader, random() % 500);
            if (random() % 3 == 0) carry(peers.reader, peers.source, random() % 500);
        }
        peers.settle();
        ASSERT_EQ(peers.reader.failure, Qor::String8()) << "seed " << GetParam();
        ASSERT_EQ(peers.source.failure, Qor::String8()) << "seed " << GetParam();
        ASSERT_EQ(Tree::dump(copy), Tree::dump(status))
            << "seed " << GetParam() << " round " << round;
    }
}

INSTANTIATE_TEST_SUITE_P(Seeds, DynamicChanges, testing::Range(1U, 41U));

}  // namespace
