// The two tools of the emitters: text with holes, and the layout.
#include <gtest/gtest.h>
#include <modelc/emit/DocText.h>
#include <modelc/emit/Holes.h>
#include <modelc/emit/Layout.h>

#include <stdexcept>

namespace {

using Modelc::docText;
using Modelc::fill;
using Modelc::layout;

TEST(Holes, InsideALineTakeATextInPlace) {
    EXPECT_EQ(fill("a $b$ c$d$\n", {{"b", "x"}, {"d", ""}}), "a x c\n");
}

TEST(Holes, AloneOnALineHandTheirIndentationToEachLine) {
    EXPECT_EQ(fill("{\n    $b$\n}\n", {{"b", "x\n\ny\n"}}), "{\n    x\n\n    y\n}\n");
}

TEST(Holes, AloneOnALineAndEmptyTakeTheLineWithThem) {
    EXPECT_EQ(fill("a\n    $b$\nc\n", {{"b", ""}}), "a\nc\n");
}

TEST(Holes, ThatNothingIsKnownOfStopTheCompiler) {
    EXPECT_THROW(fill("a $b$\n", {}), std::logic_error);
    EXPECT_THROW(fill("$b$\n", {}), std::logic_error);
    EXPECT_THROW(fill("a $b\n", {{"b", "x"}}), std::logic_error);
}

TEST(Layout, PutsAShortBodyBehindItsHead) {
    EXPECT_EQ(layout("int f() {\n    return 1;\n}\n"), "int f() { return 1; }\n");
    EXPECT_EQ(layout("X::X() : a_(1) {\n}\n"), "X::X() : a_(1) {}\n");
}

TEST(Layout, LeavesALongBodyOnItsOwnLines) {
    std::string const body = "    return " + std::string(85, 'x') + ";\n";
    EXPECT_EQ(layout("int f() {\n" + body + "}\n"), "int f() {\n" + body + "}\n");
}

TEST(Layout, BreaksParametersBehindTheBracketIfTheyFit) {
    std::string const name(70, 'f');
    EXPECT_EQ(
        layout("void " + name + "(int first, int second, int third);\n"),
        "void " + name + "(int first, int second,\n" + std::string(76, ' ') + "int third);\n");
}

TEST(Layout, LeavesSingleEmptyLinesAndNoneAtTheEdgesOfBlocks) {
    EXPECT_EQ(layout("struct A {\n\n    int a;\n\n\n    int b;\n\n};\n\n"),
              "struct A {\n    int a;\n\n    int b;\n};\n");
}

TEST(Documentation, IsBrokenAnewForItsPlace) {
    std::string const words =
        "one two three four five six seven eight nine ten eleven twelve thirteen "
        "fourteen fifteen sixteen";
    std::string const text = docText({words, "", " as it is"}, 4);
    EXPECT_EQ(
        text,
        "/// one two three four five six seven eight nine ten eleven twelve thirteen fourteen "
        "fifteen\n/// sixteen\n///\n///  as it is\n");
}

TEST(Documentation, DrawsNoNextLineIntoItself) {
    EXPECT_EQ(docText({"ends with a \\"}, 0), "/// ends with a \\.\n");
}

}  // namespace
