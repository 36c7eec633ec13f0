// Each rule of the language has a description that breaks it, refused/NAME.model, and beside it the
// lines with which the compiler refuses it, refused/NAME.errors.
#include <gtest/gtest.h>

#include <algorithm>

#include <tests/modelc/TestFiles.h>

namespace {

namespace fs = std::filesystem;

fs::path refusedFolder() { return ModelcTest::tree() / "tests/modelc/refused"; }

std::vector<std::string> refusedNames() {
    std::vector<std::string> names;
    for (fs::directory_entry const& entry : fs::directory_iterator(refusedFolder())) {
        if (entry.path().extension() == ".model") names.push_back(entry.path().stem().string());
    }
    std::sort(names.begin(), names.end());
    return names;
}

class RefusedDescription : public testing::TestWithParam<std::string> {};

TEST_P(RefusedDescription, IsRefusedInTheseLines) {
    Modelc::Compilation const done =
        ModelcTest::compileFiles(refusedFolder(), {GetParam() + ".model"});
    EXPECT_EQ(done.errors, ModelcTest::linesOf(refusedFolder() / (GetParam() + ".errors")));
    EXPECT_FALSE(done.errors.empty());
    EXPECT_TRUE(done.files.empty());
}

std::string testName(testing::TestParamInfo<std::string> const& info) {
    std::string name = info.param;
    std::replace(name.begin(), name.end(), '-', '_');
    return name;
}

INSTANTIATE_TEST_SUITE_P(Rules, RefusedDescription, testing::ValuesIn(refusedNames()), testName);

TEST(Diagnostics, StandInTheOrderOfTheFileWhateverFoundThem) {
    Modelc::Compilation const done = Modelc::compile(
        "unit A;\nnamespace B;\nfolder entities \"c\";\n"
        "entity R : Qor::Entity(name : Qor::Name) { 258 a : Missing; }\n"
        "entity S : Nothing(name : Qor::Name) { }\n"
        "enum class { }\n",
        "d.model");
    ASSERT_EQ(done.errors.size(), 5U);
    EXPECT_EQ(done.errors[0].substr(0, 12), "d.model:1:1:");
    EXPECT_EQ(done.errors[1].substr(0, 13), "d.model:4:52:");
    EXPECT_EQ(done.errors[2].substr(0, 13), "d.model:5:12:");
    EXPECT_EQ(done.errors[3].substr(0, 12), "d.model:6:6:");
    EXPECT_EQ(done.errors[4].substr(0, 12), "d.model:6:6:");
}

TEST(Diagnostics, AnUnreadableClassHidesNoMistakeInAnother) {
    Modelc::Compilation const done = Modelc::compile(
        "unit A;\nnamespace B;\nfolder entities \"c\";\n"
        "entity R Qor::Entity(name : Qor::Name) { 258 a : U32; }\n"
        "entity S : Qor::Entity(name : Qor::Name) { 258 a : Missing; }\n",
        "d.model");
    ASSERT_EQ(done.errors.size(), 2U);
    EXPECT_NE(done.errors[1].find("unknown type 'Missing'"), std::string::npos);
}

TEST(Diagnostics, AnUnreadableMemberIsNotMissedByTheNumbering) {
    Modelc::Compilation const done = Modelc::compile(
        "unit A;\nnamespace B;\nfolder entities \"c\";\n"
        "entity R : Qor::Entity(name : Qor::Name) {\n258 a U32;\n259 b : U32;\n}\n",
        "d.model");
    ASSERT_EQ(done.errors.size(), 1U);
    EXPECT_EQ(done.errors[0],
              "d.model:5:7: error: found 'U32'; expected ':' for an attribute or "
              "'(' for an operation");
}

}  // namespace
