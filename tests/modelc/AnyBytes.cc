// Whatever the text, the compiler ends with files or with errors, and takes time in proportion to
// the text.
#include <tests/support/LinearCost.h>
#include <tests/support/Settings.h>

#include <gtest/gtest.h>

#include <random>

#include <tests/modelc/TestFiles.h>

namespace {

constexpr unsigned seed = 20;

void expectAnAnswer(std::string const& text, unsigned round) {
    Modelc::Compilation const done = Modelc::compile(text);
    // A description without classes is none of either.
    bool const hasClasses = !done.registrations.empty();
    EXPECT_EQ(done.files.empty(), !hasClasses) << "seed " << seed << " round " << round;
    EXPECT_FALSE(hasClasses && !done.errors.empty()) << "seed " << seed << " round " << round;
    for (std::string const& error : done.errors) {
        EXPECT_EQ(error.find('\n'), std::string::npos);
        EXPECT_NE(error.find(": error: "), std::string::npos) << error;
        EXPECT_NE(error.find("; expected "), std::string::npos) << error;
    }
}

// A few bytes changed, left out, doubled or moved.
std::string damaged(std::string text, std::mt19937& random) {
    auto const upTo = [&](std::size_t end) {
        return std::uniform_int_distribution<std::size_t>(0, end)(random);
    };
    for (std::size_t changes = 1 + upTo(6); changes > 0 && text.size() > 64; --changes) {
        std::size_t const at = upTo(text.size() - 64);
        std::size_t const length = 1 + upTo(40);
        switch (upTo(4)) {
            case 0:
                text[at] = static_cast<char>(upTo(255));
                break;
            case 1:
                text.erase(at, length);
                break;
            case 2:
                text.insert(at, text.substr(upTo(text.size() - 64), length));
                break;
            case 3:
                text.insert(at, 1, "{}()[]:;,=\"<>/"[upTo(13)]);
                break;
            default:
                text.resize(at + length);
                break;
        }
    }
    return text;
}

TEST(AnyBytes, ADamagedDescriptionGetsFilesOrErrors) {
    std::mt19937 random(seed);
    auto const golden = ModelcTest::tree() / "tests/modelc/golden";
    std::vector<std::string> const texts{
        ModelcTest::textOf(golden / "Sample.model"),
        ModelcTest::textOf(ModelcTest::tree() / "vgw/OvsdbDataTypes.model")};
    for (unsigned round = 0; round < Settings::volume(600, 100, 40); ++round) {
        expectAnAnswer(damaged(texts[round % texts.size()], random), round);
    }
}

TEST(AnyBytes, NoiseGetsErrors) {
    std::mt19937 random(seed);
    for (unsigned round = 0; round < Settings::volume(150, 50, 20); ++round) {
        std::string text(1 + random() % 2000, '\0');
        for (char& c : text) c = static_cast<char>(random());
        expectAnAnswer(text, round);
    }
}

TEST(AnyBytes, DeepNestingIsPassedOverWithoutDepth) {
    for (char const* piece : {"{", "(", "[", "a::", "entity A : B(c : D) {", "///\n", "/"}) {
        std::string text;
        while (text.size() < 200000) text += piece;
        EXPECT_FALSE(Modelc::compile(text).errors.empty()) << piece;
    }
}

TEST(AnyBytes, ATextBeyondTheLimitIsRefusedWhole) {
    std::string const text((std::size_t{1} << 20) + 1, ' ');
    std::vector<std::string> const errors = Modelc::compile(text, "long.model").errors;
    ASSERT_FALSE(errors.empty());
    EXPECT_EQ(errors.back(),
              "long.model:1:1: error: the text has 1048577 bytes; expected at most 1048576");
}

std::string withClasses(std::size_t classes) {
    std::string text = "unit A;\nnamespace B;\nfolder entities \"c\";\n";
    for (std::size_t i = 0; i < classes; ++i) {
        text += "entity E" + std::to_string(i) +
                " : Qor::Entity(name : Qor::Name) {\n258 a : U32;\n259 b : Bool[U16];\n}\n";
    }
    return text;
}

TEST(AnyBytes, TwiceTheClassesTakeTwiceTheTime) {
    expectLinearCost(Settings::volume(150, 50, 40), [](std::size_t classes) {
        std::string const text = withClasses(classes);
        return timeOf([&] { EXPECT_TRUE(Modelc::compile(text).errors.empty()); });
    });
}

}  // namespace
