// Handlers that change the very value or child that a record of the peer's has just changed, with
// room to send it and without. What they do is a write of their own, and goes to the peer.
#include "Peers.h"

#include <lab/attrlog/Leaf.h>
#include <lab/attrlog/Node.h>

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <utility>

namespace {

using Lab::Node;
using Qor::make;
using Qor::Name;
using Qor::String8;

String8 const textKey("k");
Name const childKey("k");

String8 inWords(unsigned value) { return String8(std::to_string(value)); }

// Runs once, at the first change of what is looked at.
class OnceOfNode final : public Node::Notifiee {
  public:
    void onLevel() override { run(); }
    void onText() override { run(); }
    void onFlag(String8) override { run(); }
    void onSlot(Qor::U16) override { run(); }
    void onLabel(String8) override { run(); }
    void onLink(Qor::U32) override { run(); }
    void onLeaf(Name) override { run(); }
    void onOnly() override { run(); }
    void run() {
        if (auto const one = std::exchange(what, {})) one();
    }
    std::function<void()> what;
};

// An attribute: how it is given one of a few values, of which 0 is none, and what it has.
struct Attribute {
    char const* name;
    void (*set)(Node& node, unsigned value);
    std::string (*picture)(Node& node);
    bool isChild = false;
};

std::string pictureOf(Qor::Ptr<Lab::Leaf> const& leaf) {
    return leaf ? std::to_string(leaf->number()) : "none";
}

Attribute const attributes[] = {
    {"Scalar", [](Node& node, unsigned value) { node.levelIs(value); },
     [](Node& node) { return std::to_string(node.level()); }},
    {"Text", [](Node& node, unsigned value) { node.textIs(inWords(value)); },
     [](Node& node) { return std::string(node.text().view()); }},
    {"Flag",
     [](Node& node, unsigned value) {
         value == 0 ? static_cast<void>(node.flagDel(textKey))
                    : node.flagIs(textKey, value % 2 != 0);
     },
     [](Node& node) { return std::to_string(node.flags()) + (node.flag(textKey) ? "yes" : "no"); }},
    {"NumberedText",
     [](Node& node, unsigned value) {
         value == 0 ? static_cast<void>(node.slotDel(3)) : node.slotIs(3, inWords(value));
     },
     [](Node& node) { return std::string(node.slot(3).view()); }},
    {"NamedText",
     [](Node& node, unsigned value) {
         value == 0 ? static_cast<void>(node.labelDel(textKey))
                    : node.labelIs(textKey, inWords(value));
     },
     [](Node& node) { return std::string(node.label(textKey).view()); }},
    {"Reference",
     [](Node& node, unsigned value) {
         value == 0 ? static_cast<void>(node.linkDel(1))
                    : node.linkIs(1, node.node(Name(inWords(value))));
     },
     [](Node& node) {
         return node.link(1) ? std::string(node.link(1)->name().view()) : std::string("none");
     }},
    {"NamedChild",
     [](Node& node, unsigned value) {
         node.leafDel(childKey);
         if (value != 0) node.leafIs(childKey)->numberIs(value);
     },
     [](Node& node) { return pictureOf(node.leaf(childKey)); }, true},
    {"SingleChild",
     [](Node& node, unsigned value) {
         node.onlyDel();
         if (value != 0) node.onlyIs(childKey)->numberIs(value);
     },
     [](Node& node) { return pictureOf(node.only()); }, true},
};

struct ValueCase {
    Attribute const& attribute;
    bool isAtCopy;
    bool isFull;
    unsigned first;
    unsigned peers;
    unsigned handlers;
};

std::string nameOfValueCase(testing::TestParamInfo<ValueCase> const& info) {
    ValueCase const& one = info.param;
    return std::string(one.attribute.name) + (one.isAtCopy ? "AtCopy" : "AtOriginal") +
           (one.isFull ? "WithoutRoomFrom" : "WithRoomFrom") + std::to_string(one.first) + "Over" +
           std::to_string(one.peers) + "To" + std::to_string(one.handlers);
}

void PrintTo(ValueCase const& one, std::ostream* out) { *out << nameOfValueCase({one, 0}); }

class ValueHandlers : public testing::TestWithParam<ValueCase> {};

TEST_P(ValueHandlers, BothEndsHoldWhatTheHandlerLeft) {
    auto const& [attribute, isAtCopy, isFull, first, peers, handlers] = GetParam();
    Peers ends;
    auto const original = make<Node>(Name("node"));
    auto const copy = make<Node>(Name("node"));
    for (unsigned target = 1; target <= 3; ++target) original->nodeIs(Name(inWords(target)));
    attribute.set(*original, first);
    ends.mount(original, copy);
    Node& here = isAtCopy ? *copy : *original;
    Node& there = isAtCopy ? *original : *copy;
    Peer& from = isAtCopy ? ends.source : ends.reader;
    Peer& to = isAtCopy ? ends.reader : ends.source;
    auto const once = make<OnceOfNode>();
    once->notifierIs(Qor::Ptr<Node>(&here));
    std::string left;
    once->what = [&, set = attribute.set, value = handlers, picture = attribute.picture] {
        set(here, value);
        left = picture(here);
    };
    attribute.set(there, peers);
    if (isFull) to.out().hasLiveBufferIs(false);
    carry(from, to);
    EXPECT_FALSE(once->what);
    to.out().hasLiveBufferIs(true);
    ends.settle();
    EXPECT_EQ(attribute.picture(*original), attribute.picture(*copy));
    EXPECT_EQ(attribute.picture(here), left);
    EXPECT_EQ(ends.source.failure + ends.reader.failure, String8());
    EXPECT_EQ(ends.source.demuxer->flows() + ends.reader.demuxer->flows(), 0U);
    EXPECT_EQ(ends.source.demuxer->adapters(), ends.reader.demuxer->adapters());
}

std::vector<ValueCase> valueCases() {
    std::vector<ValueCase> result;
    for (Attribute const& attribute : attributes) {
        for (unsigned bits = 0; bits < 32; ++bits) {
            unsigned const first = (bits & 4U) != 0 ? 1 : 0;
            unsigned const peers = (bits & 8U) != 0 ? 2 : 0;
            unsigned const handlers = (bits & 16U) != 0 ? 3 : 0;
            // A child that takes another's place is two records: the second comes behind the
            // handler's.
            bool const isReplaced = attribute.isChild && first != 0 && peers != 0;
            if (first == peers || peers == handlers || isReplaced) continue;
            result.push_back(
                {attribute, (bits & 1U) != 0, (bits & 2U) != 0, first, peers, handlers});
        }
    }
    return result;
}

INSTANTIATE_TEST_SUITE_P(All, ValueHandlers, testing::ValuesIn(valueCases()), nameOfValueCase);

}  // namespace
