#include <vgwctl/options/Failure.h>
#include <vgwctl/output/Table.h>

#include <nlohmann/json.hpp>

#include <gtest/gtest.h>

#include <sstream>

namespace {

using namespace Vgwctl;

Value number(char const* text) { return {Value::Kind::number, text, {}}; }

Value bindings() {
    return {
        Value::Kind::map, {}, {{number("7"), textValue("red")}, {number("8"), textValue("a b")}}};
}

Value addresses() {
    return {Value::Kind::set, {}, {{textValue("192.0.2.1"), {}}, {textValue("192.0.2.2"), {}}}};
}

Table sample() {
    Table table({"name", "key", "bindings"});
    table.rowInc({textValue("red"), number("5001"), bindings()});
    table.rowInc({textValue("r\xC3\xA9"
                            "d"),
                  number("7"),
                  {Value::Kind::map, {}, {}}});
    return table;
}

std::string printed(TableStyle const& style) {
    std::ostringstream out;
    sample().print(out, style);
    return out.str();
}

TEST(ValueText, IsQuotedWhereItCouldBeTakenForSomethingElse) {
    EXPECT_EQ(textOf(textValue("red")), "red");
    EXPECT_EQ(textOf(textValue("00:00:5e:00:53:01")), "00:00:5e:00:53:01");
    EXPECT_EQ(textOf(textValue("")), "\"\"");
    EXPECT_EQ(textOf(textValue("a b")), "\"a b\"");
    EXPECT_EQ(textOf(textValue("a,b")), "\"a,b\"");
    EXPECT_EQ(textOf(textValue("say \"hi\"")), "\"say \\\"hi\\\"\"");
    EXPECT_EQ(textOf(textValue("a\nb\xFF")), "\"a\\u000ab\\xff\"");
    EXPECT_EQ(textOf(textValue("a b"), TextForm::bare), "a b");
    EXPECT_EQ(textOf(textValue("a b"), TextForm::json), "\"a b\"");
}

TEST(ValueText, OfCollectionsIsInBraces) {
    EXPECT_EQ(textOf(bindings()), "{7=red, 8=\"a b\"}");
    EXPECT_EQ(textOf(addresses()), "{192.0.2.1, 192.0.2.2}");
    EXPECT_EQ(textOf(addresses(), TextForm::bare), "192.0.2.1 192.0.2.2");
    EXPECT_EQ(textOf({Value::Kind::set, {}, {}}), "{}");
    EXPECT_EQ(textOf({}), "[]");
}

TEST(ValueText, NeverHoldsBytesThatATerminalCouldObey) {
    EXPECT_EQ(printable("red\033[2J"), "red\\x1b[2J");
    EXPECT_EQ(printable("\xC2\x9B"), "\\xc2\\x9b");
    EXPECT_EQ(printable("\xFF"), "\\xff");
    EXPECT_EQ(printable("\n\t\x7F"), "\\x0a\\x09\\x7f");
    EXPECT_EQ(printable("r\xC3\xA9"
                        "d"),
              "r\xC3\xA9"
              "d");
    for (TextForm const form : {TextForm::string, TextForm::bare, TextForm::json}) {
        for (char const c : textOf(textValue("a\033[2J\xC2\x9B\x07"), form)) EXPECT_GE(c, ' ');
    }
}

TEST(ValueJson, IsAsTheOvsdbToolsWriteIt) {
    EXPECT_EQ(jsonText(jsonOf(bindings())), R"(["map",[[7,"red"],[8,"a b"]]])");
    EXPECT_EQ(jsonText(jsonOf(addresses())), R"(["set",["192.0.2.1","192.0.2.2"]])");
    EXPECT_EQ(jsonText(jsonOf({Value::Kind::boolean, "true", {}})), "true");
    EXPECT_EQ(jsonText(jsonOf(number("0.25"))), "0.25");
    EXPECT_EQ(jsonText(jsonOf(number("18446744073709551615"))), "18446744073709551615");
    EXPECT_EQ(jsonText(jsonOf({})), "null");
    EXPECT_EQ(jsonText(jsonOf({Value::Kind::record, {}, {{textValue("mac"), textValue("x")}}})),
              R"({"mac":"x"})");
}

TEST(Table, AlignsItsColumnsByWhatIsSeen) {
    EXPECT_EQ(printed({}),
              "name key  bindings\n"
              "---- ---- ----------------\n"
              "red  5001 {7=red, 8=\"a b\"}\n"
              "r\xC3\xA9"
              "d  7    {}\n");
}

TEST(Table, AsAListHasALineAValue) {
    TableStyle style;
    style.format = Format::list;
    style.columns = {"key", "name"};
    EXPECT_EQ(printed(style),
              "key                 : 5001\n"
              "name                : red\n"
              "\n"
              "key                 : 7\n"
              "name                : r\xC3\xA9"
              "d\n");
}

TEST(Table, AsCsvQuotesWhatHasCommas) {
    TableStyle style;
    style.format = Format::csv;
    EXPECT_EQ(printed(style),
              "name,key,bindings\n"
              "red,5001,\"{7=red, 8=\"\"a b\"\"}\"\n"
              "r\xC3\xA9"
              "d,7,{}\n");
}

TEST(Table, AsJsonHasHeadingsAndData) {
    TableStyle style;
    style.format = Format::json;
    style.columns = {"name", "key"};
    EXPECT_EQ(printed(style),
              "{\"data\":[[\"red\",5001],[\"r\\u00e9d\",7]],\"headings\":[\"name\",\"key\"]}\n");
}

TEST(Table, WithoutHeadingsPrintsRowsAlone) {
    TableStyle style;
    style.hasHeadings = false;
    style.columns = {"key"};
    EXPECT_EQ(printed(style), "5001\n7\n");
    style.format = Format::csv;
    EXPECT_EQ(printed(style), "5001\n7\n");
}

TEST(Table, NamesAColumnThatItDoesNotHave) {
    TableStyle style;
    style.columns = {"color"};
    try {
        printed(style);
        FAIL() << "nothing was raised";
    } catch (Failure const& e) {
        EXPECT_STREQ(e.what(), "there is no column color; there are name, key, bindings");
        EXPECT_EQ(e.code(), ExitCode::fatal);
    }
}

}  // namespace
