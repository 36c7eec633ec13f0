#include <qor/core/Strep.h>

#include <gtest/gtest.h>

#include <string>

namespace {

using Qor::String8;
using Position = String8::IteratorConst;

template <class Action>
std::string messageOf(Action action) {
    try {
        action();
    } catch (Qor::RangeException const& exception) {
        EXPECT_TRUE(exception.ids().contains(12));
        return exception.what();
    }
    return "no exception";
}

// Where the position stands after the pattern, or -1 when it is refused.
int afterPattern(char const* text, char const* pattern) {
    Position position{String8(text)};
    try {
        Qor::needString(position, position.text().end(), pattern);
    } catch (Qor::RangeException const&) {
        return -1;
    }
    return static_cast<int>(position.index());
}

TEST(NeedString, GoesOverThePattern) {
    EXPECT_EQ(afterPattern("Value(", "Value"), 5);
    EXPECT_EQ(afterPattern("Value", "Value"), 5);
    EXPECT_EQ(afterPattern("x", ""), 0);
}

TEST(NeedString, BlankMatchesAnyRunOfWhiteSpace) {
    EXPECT_EQ(afterPattern(": x", " : "), 2);
    EXPECT_EQ(afterPattern(":x", " : "), 1);
    EXPECT_EQ(afterPattern(" \t\n\r\v\f: \n x", " : "), 10);
    EXPECT_EQ(afterPattern("", " "), 0);
}

TEST(NeedString, OtherTextIsRefusedWithItsColumn) {
    EXPECT_EQ(afterPattern("Valve", "Value"), -1);
    EXPECT_EQ(afterPattern("Val", "Value"), -1);
    EXPECT_EQ(afterPattern("value", "Value"), -1);
    EXPECT_EQ(afterPattern("V alue", "Value"), -1);
    Position position{String8("a Valve")};
    EXPECT_EQ(messageOf([&] { Qor::needString(position, position.text().end(), "a Value"); }),
              "expected \"a Value\" at column 5 deserializing a Valve");
}

TEST(NeedString, RefusalTellsTheWholeTextAlsoBehindAZeroByte) {
    String8 const text(std::string_view("Val\0ve", 6));
    Position position{text};
    try {
        Qor::needString(position, position.text().end(), "Value");
        FAIL() << "no exception";
    } catch (Qor::RangeException const& exception) {
        EXPECT_EQ(exception.message(),
                  String8("expected \"Value\" at column 3 deserializing ") + text);
        try {
            Qor::String8 name("vlan");
            Qor::rethrowFromDeserializeAttr(exception, name);
        } catch (Qor::RangeException const& named) {
            EXPECT_EQ(named.message(), String8("attribute vlan: ") + exception.message());
        }
    }
}

TEST(NeedString, NothingIsReadBehindTheEnd) {
    String8 const text("Value");
    Position position(text);
    EXPECT_THROW(Qor::needString(position, Position(text, 3), "Value"), Qor::RangeException);
}

TEST(QuotedString, IsReadBetweenSingleQuotes) {
    Position position{String8("'mac': 1")};
    String8* const selector = nullptr;
    EXPECT_EQ(Qor::sequenceToValue(position, position.text().end(), selector), "mac");
    EXPECT_EQ(position.index(), 5U);
}

TEST(QuotedString, WhiteSpaceInFrontIsSkipped) {
    EXPECT_EQ(Qor::strepToValue<String8>(" \n'a'"), "a");
}

TEST(QuotedString, EmptyStringIsTwoQuotes) {
    EXPECT_EQ(Qor::valueToStrep(String8()), "''");
    EXPECT_EQ(Qor::strepToValue<String8>("''"), "");
}

TEST(QuotedString, QuoteAndBackslashAreEscaped) {
    EXPECT_EQ(Qor::valueToStrep(String8("it's \\ here")), "'it\\'s \\\\ here'");
    EXPECT_EQ(Qor::strepToValue<String8>("'it\\'s \\\\ here'"), "it's \\ here");
}

TEST(QuotedString, ControlCharactersAreEscaped) {
    EXPECT_EQ(Qor::valueToStrep(String8(std::string_view("\n\r\t\0\x1b\x7f", 6))),
              "'\\n\\r\\t\\x00\\x1b\\x7f'");
    EXPECT_EQ(Qor::strepToValue<String8>("'\\n\\r\\t\\x00\\x1B\\x7f'"),
              std::string_view("\n\r\t\0\x1b\x7f", 6));
}

TEST(QuotedString, Utf8StandsForItselfAndOtherBytesAreEscaped) {
    EXPECT_EQ(Qor::valueToStrep(String8("Zürich")), "'Zürich'");
    EXPECT_EQ(Qor::valueToStrep(String8("\xff\xc3")), "'\\xff\\xc3'");
}

TEST(QuotedString, EveryBytePairComesBack) {
    for (int first = 0; first < 256; ++first) {
        for (int second = 0; second < 256; ++second) {
            char const bytes[] = {static_cast<char>(first), static_cast<char>(second)};
            String8 const text(std::string_view(bytes, 2));
            ASSERT_EQ(Qor::strepToValue<String8>(Qor::valueToStrep(text)), text);
        }
    }
}

TEST(QuotedString, MissingOpeningQuoteIsRefused) {
    EXPECT_EQ(messageOf([] { Qor::strepToValue<String8>("abc"); }),
              "expected a quoted string at column 0 deserializing abc");
    EXPECT_EQ(messageOf([] { Qor::strepToValue<String8>(""); }),
              "expected a quoted string at column 0 deserializing ");
    EXPECT_EQ(messageOf([] { Qor::strepToValue<String8>("\"abc\""); }),
              "expected a quoted string at column 0 deserializing \"abc\"");
}

TEST(QuotedString, MissingClosingQuoteIsRefusedAtTheEnd) {
    EXPECT_EQ(messageOf([] { Qor::strepToValue<String8>("'abc"); }),
              "expected the closing quote at column 4 deserializing 'abc");
    EXPECT_EQ(messageOf([] { Qor::strepToValue<String8>("'ab\\'"); }),
              "expected the closing quote at column 5 deserializing 'ab\\'");
}

TEST(QuotedString, UnknownOrCutEscapeIsRefusedAtItsColumn) {
    for (char const* const text : {"'a\\q'", "'a\\x1'", "'a\\xg0'", "'a\\", "'a\\x", "'a\\N'"}) {
        EXPECT_NE(messageOf([text] {
                      Qor::strepToValue<String8>(text);
                  }).find("behind the backslash at column 3 "),
                  std::string::npos)
            << text;
    }
}

TEST(QuotedString, NamesAreReadLikeStrings) {
    EXPECT_EQ(Qor::strepToValue<Qor::Name>("'ps-1'"), "ps-1");
    EXPECT_EQ(Qor::valueToStrep(Qor::Name("ps-1")), "'ps-1'");
}

TEST(StrepToValue, JunkBehindTheValueIsRefusedWithItsColumn) {
    EXPECT_EQ(messageOf([] { Qor::strepToValue<String8>("'debug'x"); }),
              "junk at column 7 deserializing 'debug'x");
    EXPECT_EQ(messageOf([] { Qor::strepToValue<String8>("'debug' "); }),
              "junk at column 7 deserializing 'debug' ");
    String8* const selector = nullptr;
    EXPECT_EQ(messageOf([&] { Qor::strepToValue<String8>("'' 1", selector); }),
              "junk at column 2 deserializing '' 1");
}

TEST(StrepToValue, RangeExceptionsAreExpectedWhileItReads) {
    struct Probe {
        Probe(Position& position, Position const& end) : wasExpected(Qor::Expect::isExpected(12)) {
            Qor::needString(position, end, "probe");
        }
        bool wasExpected;
    };
    EXPECT_TRUE(Qor::strepToValue<Probe>("probe").wasExpected);
    EXPECT_FALSE(Qor::Expect::isExpected(12));
}

TEST(DeserializeAttr, ErrorTellsTheAttributeAndKeepsTheIds) {
    Position position{String8("x")};
    EXPECT_EQ(
        messageOf([&] { Qor::deserializeAttr<Qor::U16>(position, position.text().end(), "vlan"); }),
        "attribute vlan: expected a decimal number at column 0 deserializing x");
}

TEST(DeserializeAttr, GivesTheValueAndMovesOn) {
    Position position{String8("42, 7")};
    EXPECT_EQ(Qor::deserializeAttr<Qor::U16>(position, position.text().end(), "vlan"), 42);
    EXPECT_EQ(position.index(), 2U);
}

TEST(CannotConvert, TellsTheTextAndTheType) {
    EXPECT_EQ(messageOf([] { Qor::cannotConvert("a'b", typeid(Qor::Name)); }),
              "cannot convert 'a\\'b' to Qor::Name");
    String8 const text("head tail");
    EXPECT_EQ(messageOf([&] { Qor::cannotConvert(Position(text, 5), text.end(), typeid(int)); }),
              "cannot convert 'tail' to int");
}

}  // namespace
