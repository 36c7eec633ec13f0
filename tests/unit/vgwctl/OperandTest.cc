#include "SampleTree.h"

#include <vgwctl/options/Failure.h>
#include <vgwctl/output/ValueText.h>
#include <vgwctl/state/Operand.h>

#include <gtest/gtest.h>

namespace {

using namespace Vgwctl;
using Relation = Operand::Relation;

struct Operands : testing::Test, SampleTree {
    bool isHeld(char const* word, Qor::Entity& entity) { return holds(operandOf(word), entity); }
    static std::string failure(auto&& attempt) {
        try {
            attempt();
        } catch (Failure const& e) {
            return e.what();
        }
        return "nothing was raised";
    }
};

TEST_F(Operands, HaveAnAttributeAKeyAndAValue) {
    Operand const plain = operandOf("tunnelKey");
    EXPECT_EQ(plain.attribute, "tunnelKey");
    EXPECT_FALSE(plain.key);
    EXPECT_EQ(plain.relation, Relation::none);
    Operand const keyed = operandOf("vlanBinding:7=red");
    EXPECT_EQ(keyed.attribute, "vlanBinding");
    EXPECT_EQ(keyed.key, "7");
    EXPECT_EQ(keyed.relation, Relation::equal);
    EXPECT_EQ(keyed.value, "red");
    EXPECT_EQ(operandOf("a!=1").relation, Relation::unequal);
    EXPECT_EQ(operandOf("a<=1").relation, Relation::atMost);
    EXPECT_EQ(operandOf("a<1").relation, Relation::less);
    EXPECT_EQ(operandOf("a>=1").relation, Relation::atLeast);
    EXPECT_EQ(operandOf("a>1").relation, Relation::greater);
}

TEST_F(Operands, TakeWhatLooksLikeAnOperatorBetweenQuotes) {
    Operand const operand = operandOf(R"(desc:"a=b"="c \"d\"")");
    EXPECT_EQ(operand.key, "a=b");
    EXPECT_EQ(operand.value, "c \"d\"");
    EXPECT_EQ(operandOf("desc=a=b").value, "a=b");
    EXPECT_EQ(operandOf("desc=").value, "");
}

TEST_F(Operands, OfAnotherFormAreRefused) {
    EXPECT_EQ(failure([] { operandOf("=1"); }), "=1: expected ATTRIBUTE[:KEY][=VALUE]");
    EXPECT_EQ(failure([] { operandOf("a:\"b=1"); }), "no closing quote in \"b=1");
    EXPECT_EQ(failure([] { operandOf("a:\"b\"c"); }),
              "a:\"b\"c: expected =, !=, <, <=, > or >= at c");
}

TEST_F(Operands, CompareByTheAttributesType) {
    EXPECT_TRUE(isHeld("tunnelKey=5001", *red));
    EXPECT_FALSE(isHeld("tunnelKey!=5001", *red));
    EXPECT_TRUE(isHeld("tunnelKey>999", *red));  // as a number, not as a text
    EXPECT_TRUE(isHeld("tunnelKey>=5001", *red));
    EXPECT_FALSE(isHeld("tunnelKey<5001", *red));
    EXPECT_TRUE(isHeld("displayName=tenant red", *red));
    EXPECT_TRUE(isHeld("vlanBinding:7=blue", *port));
    EXPECT_FALSE(isHeld("vlanBinding:8=blue", *port));
    EXPECT_TRUE(isHeld("invalidAttrib:desc=true", *port));
    EXPECT_TRUE(isHeld("vtepListType=sendToAny", *cli));
    EXPECT_FALSE(isHeld("vtepListType!=sendToAny", *cli));
    EXPECT_TRUE(isHeld("managerIp=0.0.0.0", *cli));
}

TEST_F(Operands, TellWhatAnAttributeIsComparedBy) {
    EXPECT_EQ(failure([&] { isHeld("vtepListType<sendToAny", *cli); }),
              "vtepListType is compared by = and != only");
    EXPECT_EQ(failure([&] { isHeld("vlanBinding=red", *port); }),
              "vlanBinding is a collection: write vlanBinding:KEY=VALUE");
    EXPECT_EQ(failure([&] { isHeld("tunnelKey:1=1", *red); }),
              "tunnelKey is no collection: it takes no key");
}

TEST_F(Operands, OfAWrongValueNameItsTypeAndWhatIsExpected) {
    EXPECT_EQ(failure([&] { isHeld("vtepListType=some", *cli); }),
              "vtepListType: some is no Vgw::VtepListType: expected sendToAll, sendToAny");
    std::string const number = failure([&] { isHeld("tunnelKey=many", *red); });
    EXPECT_TRUE(number.starts_with("tunnelKey: many is no U32: ")) << number;
    std::string const address = failure([&] { isHeld("managerIp=192.0.2", *cli); });
    std::string const none = failure([&] { isHeld("tunnelKey>=", *red); });
    EXPECT_TRUE(none.starts_with("tunnelKey: \"\" is no U32: ")) << none;
    EXPECT_TRUE(address.starts_with("managerIp: 192.0.2 is no Kelp::IpAddr: ")) << address;
}

TEST_F(Operands, GiveTheValueOrTellWhatIsMissing) {
    EXPECT_EQ(textOf(valueAt(operandOf("tunnelKey"), *red)), "5001");
    EXPECT_EQ(textOf(valueAt(operandOf("vlanBinding:7"), *port)), "blue");
    EXPECT_EQ(textOf(valueAt(operandOf("invalidAttrib"), *port)), "{desc}");
    EXPECT_EQ(failure([&] { valueAt(operandOf("vlanBinding:9"), *port); }),
              "a member 9 of vlanBinding in /vgw/status/ovsdb/physicalPort/one does not exist");
    EXPECT_TRUE(failure([&] {
                    valueAt(operandOf("color"), *red);
                }).starts_with("Vgw::LogicalSwitch has no attribute color; it has name, "));
    EXPECT_EQ(failure([&] { valueAt(operandOf("reset"), *cli); }),
              "reset is an operation: use call");
}

}  // namespace
