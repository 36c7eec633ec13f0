// What comes out of a small description, file by file, and the registration of the real ones.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <sstream>

#include <tests/modelc/TestFiles.h>

namespace {

namespace fs = std::filesystem;

fs::path goldenFolder() { return ModelcTest::tree() / "tests/modelc/golden"; }

std::map<std::string, std::string> filesBelow(fs::path const& root) {
    std::map<std::string, std::string> files;
    for (fs::directory_entry const& entry : fs::recursive_directory_iterator(root)) {
        if (!entry.is_regular_file()) continue;
        files[fs::relative(entry.path(), root).generic_string()] = ModelcTest::textOf(entry.path());
    }
    return files;
}

TEST(GoldenOutput, OfTheSampleIsAsExpected) {
    Modelc::Compilation const done = ModelcTest::compileFiles(goldenFolder(), {"Sample.model"});
    ASSERT_EQ(done.errors, std::vector<std::string>());
    std::map<std::string, std::string> made;
    for (Modelc::OutputFile const& file : done.files) made[file.path + ".expected"] = file.text;
    std::map<std::string, std::string> const expected = filesBelow(goldenFolder() / "expected");
    for (auto const& [path, text] : expected) EXPECT_EQ(made[path], text) << path;
    EXPECT_EQ(made.size(), expected.size());
}

TEST(GoldenOutput, RegistrationOfAllClassesIsAsExpected) {
    Modelc::Compilation const done = ModelcTest::compileFiles(
        ModelcTest::tree() / "vgw", {"OvsdbDataTypes.model", "VgwTypes.model"});
    ASSERT_EQ(done.errors, std::vector<std::string>());
    EXPECT_EQ(done.registrations, ModelcTest::textOf(goldenFolder() / "registrations.txt"));
}

TEST(GoldenOutput, DependsOnNoFolder) {
    std::string const text = ModelcTest::textOf(goldenFolder() / "Sample.model");
    Modelc::Compilation const here = Modelc::compile(text, "Sample.model");
    Modelc::Compilation const there = Modelc::compile(text, "/some/where/else/Sample.model");
    ASSERT_EQ(here.files.size(), there.files.size());
    for (std::size_t i = 0; i < here.files.size(); ++i) {
        EXPECT_EQ(here.files[i].path, there.files[i].path);
        EXPECT_EQ(here.files[i].text, there.files[i].text);
    }
}

TEST(GoldenOutput, IsTheSameEachTimeAndInAnyOrderOfTheFiles) {
    fs::path const vgw = ModelcTest::tree() / "vgw";
    auto const filesOf = [&](std::vector<std::string> const& names) {
        std::map<std::string, std::string> files;
        for (Modelc::OutputFile const& file : ModelcTest::compileFiles(vgw, names).files) {
            files[file.path] = file.text;
        }
        return files;
    };
    auto const first = filesOf({"OvsdbDataTypes.model", "VgwTypes.model"});
    EXPECT_EQ(first, filesOf({"OvsdbDataTypes.model", "VgwTypes.model"}));
    EXPECT_EQ(first, filesOf({"VgwTypes.model", "OvsdbDataTypes.model"}));
}

TEST(GoldenOutput, HasNothingOfWhatIsOnlyImported) {
    fs::path const vgw = ModelcTest::tree() / "vgw";
    Modelc::Compilation const done = ModelcTest::compileFiles(vgw, {"VgwTypes.model"});
    ASSERT_EQ(done.errors, std::vector<std::string>());
    for (Modelc::OutputFile const& file : done.files) {
        EXPECT_EQ(file.path.find("vgw/tables/"), std::string::npos) << file.path;
    }
}

// Attributes and operations that a class introduces: not what the framework gives it, not what it
// overrides.
bool isIntroduced(std::string const& row) {
    for (char const* other :
         {" literal ", " isNondestructing ", " qorHasAttrLogInterface ", " fwkKey ", " clone "}) {
        if (row.find(other) != std::string::npos) return false;
    }
    return row.starts_with("  ");
}

// The measure of the compiler: it may fall, not rise.
TEST(GoldenOutput, LinesForAnAttributeDoNotRise) {
    Modelc::Compilation const done = ModelcTest::compileFiles(
        ModelcTest::tree() / "vgw", {"OvsdbDataTypes.model", "VgwTypes.model"});
    // The classes themselves, what registers and wraps them, and what streams them.
    double classes = 0;
    double registry = 0;
    double adapters = 0;
    for (Modelc::OutputFile const& file : done.files) {
        bool const registers = file.path.find("/registry/") != std::string::npos;
        bool const streams = file.path.find("/attrlog/") != std::string::npos;
        (registers ? registry
         : streams ? adapters
                   : classes) +=
            static_cast<double>(std::count(file.text.begin(), file.text.end(), '\n'));
    }
    std::istringstream rows(done.registrations);
    int attributes = 0;
    for (std::string row; std::getline(rows, row);) attributes += isIntroduced(row) ? 1 : 0;
    ASSERT_EQ(attributes, 122);
    RecordProperty("lines", static_cast<int>(classes + registry + adapters));
    EXPECT_LE(classes / attributes, 59.0);
    EXPECT_LE(registry / attributes, 26.0);
    EXPECT_LE(adapters / attributes, 35.0);
}

}  // namespace
