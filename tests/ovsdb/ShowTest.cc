#include <vgwd/show/JsonText.h>
#include <vgwd/show/TreeText.h>

#include <gtest/gtest.h>

namespace Vgwd {
namespace {

TEST(JsonText, IsIndentedByOneAndEndsWithANewline) {
    JsonText json;
    json.list("a", {});
    json.begin("b");
    json.value("n", std::uint64_t{7});
    json.pairs("p", {{Cell("k"), Cell(std::uint64_t{1})}});
    json.end();
    json.begin("c");
    json.end();
    json.list("d", {Cell("x"), Cell("y")});
    EXPECT_EQ(json.take(),
              "{\n \"a\": [],\n \"b\": {\n  \"n\": 7,\n  \"p\": [\n   [\n    \"k\",\n    1\n   ]\n "
              " ]\n },\n"
              " \"c\": {},\n \"d\": [\n  \"x\",\n  \"y\"\n ]\n}\n");
}

TEST(JsonText, AllButPrintableAsciiIsEscaped) {
    JsonText json;
    json.value("t",
               std::string_view("\"\\\b\f\n\r\t\x01\x7f \xc3\xa4 \xe4\xb8\xad \xf0\x9f\x92\xa1/"));
    EXPECT_EQ(json.take(),
              "{\n \"t\": \"\\\"\\\\\\b\\f\\n\\r\\t\\u0001\\u007f \\u00e4 \\u4e2d "
              "\\ud83d\\udca1/\"\n}\n");
}

TEST(JsonText, WhatIsNoUtf8IsReplaced) {
    JsonText json;
    json.value("t", std::string_view("a\xff"
                                     "b\xc3"));
    EXPECT_EQ(json.take(), "{\n \"t\": \"a\\ufffdb\\ufffd\"\n}\n");
}

TEST(TreeText, LeavesOutWhatIsEmpty) {
    TreeText tree;
    tree.begin("/vgw");
    tree.begin("empty");
    tree.list("none", {});
    tree.end();
    tree.begin("row");
    tree.value("name", std::string_view("a \"b\"\n"));
    tree.value("desc", std::string_view(""));
    tree.list("ips", {Cell("192.0.2.1"), Cell("192.0.2.2")});
    tree.pairs("vlans", {{Cell(std::uint64_t{100}), Cell("u")}});
    tree.end();
    tree.end();
    EXPECT_EQ(tree.take(),
              "/vgw\n  row\n    name = \"a \\\"b\\\" \"\n    ips = {\"192.0.2.1\", "
              "\"192.0.2.2\"}\n    vlans = {100: \"u\"}\n");
}

}  // namespace
}  // namespace Vgwd
