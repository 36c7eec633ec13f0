#include <ovsdb/rpc/JsonFramer.h>
#include <ovsdb/rpc/ProtocolError.h>

#include <tests/support/LinearCost.h>
#include <tests/support/Settings.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstring>
#include <map>
#include <random>
#include <string>
#include <vector>

namespace Ovsdb {
namespace {

void feed(JsonFramer& framer, std::string_view bytes) {
    if (bytes.empty()) return;
    std::span<char> const room = framer.prepare(bytes.size());
    std::memcpy(room.data(), bytes.data(), bytes.size());
    framer.commit(bytes.size());
}

std::vector<std::string> frames(std::string_view text, std::vector<std::size_t> const& cuts) {
    JsonFramer framer;
    std::vector<std::string> found;
    std::size_t from = 0;
    auto const take = [&](std::size_t to) {
        feed(framer, text.substr(from, to - from));
        from = to;
        while (auto const value = framer.next()) found.emplace_back(*value);
    };
    for (std::size_t const cut : cuts) take(cut);
    take(text.size());
    return found;
}

std::string refusal(std::string_view text) {
    try {
        JsonFramer framer;
        feed(framer, text);
        while (framer.next()) {
        }
    } catch (ProtocolError const& e) {
        return e.what();
    }
    return "";
}

// The reference: one character at a time, brackets counted outside strings.
std::vector<std::string> naiveFrames(std::string const& text) {
    std::vector<std::string> found;
    std::string value;
    int depth = 0;
    bool inString = false;
    bool escaped = false;
    for (char const c : text) {
        if (depth == 0 && (c == ' ' || c == '\n')) continue;
        value += c;
        if (inString) {
            if (escaped)
                escaped = false;
            else if (c == '\\')
                escaped = true;
            else if (c == '"')
                inString = false;
        } else if (c == '"') {
            inString = true;
        } else if (c == '{' || c == '[') {
            ++depth;
        } else if ((c == '}' || c == ']') && --depth == 0) {
            found.push_back(std::move(value));
            value.clear();
        }
    }
    return found;
}

class Generator {
  public:
    explicit Generator(unsigned seed) : random_(seed) {}

    unsigned below(unsigned n) { return static_cast<unsigned>(random_() % n); }

    std::string string() {
        static std::vector<std::string> const pieces{"a", "\\\\",    "\\\"", "{",   "}", "[",
                                                     "]", "\\u00e4", " ",    "\\n", ",", "uuid"};
        std::string text = "\"";
        for (unsigned n = below(9); n > 0; --n)
            text += pieces[below(static_cast<unsigned>(pieces.size()))];
        return text + "\"";
    }

    std::string value(unsigned depth) {
        switch (depth == 0 ? below(3) : below(5)) {
            case 0:
                return std::to_string(static_cast<int>(below(2000)) - 1000);
            case 1:
                return string();
            case 2:
                return below(2) == 0 ? "null" : "true";
            case 3:
                return array(depth - 1);
            default:
                return object(depth - 1);
        }
    }

    std::string array(unsigned depth) {
        std::string text = "[";
        for (unsigned i = 0, n = below(4); i < n; ++i) text += (i == 0 ? "" : ", ") + value(depth);
        return text + "]";
    }

    std::string object(unsigned depth) {
        std::string text = "{";
        for (unsigned i = 0, n = below(4); i < n; ++i)
            text += (i == 0 ? "" : ",") + string() + ": " + value(depth);
        return text + "}";
    }

  private:
    std::mt19937 random_;
};

TEST(JsonFramer, FramesAsTheNaiveReferenceHoweverTheStreamIsCut) {
    for (unsigned seed = 1; seed <= 2000; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        Generator generator(seed);
        std::string text;
        for (unsigned n = 1 + generator.below(6); n > 0; --n)
            text += (generator.below(2) == 0 ? generator.object(5) : generator.array(5)) +
                    (generator.below(2) == 0 ? " \n" : "");
        std::vector<std::size_t> cuts;
        for (unsigned n = generator.below(20); n > 0; --n)
            cuts.push_back(generator.below(static_cast<unsigned>(text.size()) + 1));
        std::sort(cuts.begin(), cuts.end());
        ASSERT_EQ(frames(text, cuts), naiveFrames(text));
    }
}

TEST(JsonFramer, OneByteAtATimeGivesTheSameValues) {
    std::string const text = R"({"a":"}\\\"{","b":[1,2,{}]} [] {"id":null})";
    std::vector<std::size_t> cuts;
    for (std::size_t i = 0; i < text.size(); ++i) cuts.push_back(i);
    EXPECT_EQ(frames(text, cuts), naiveFrames(text));
    EXPECT_EQ(frames(text, cuts).size(), 3U);
}

TEST(JsonFramer, TwoValuesMayShareARead) {
    EXPECT_EQ(frames(R"({"a":1}{"b":2})", {}),
              (std::vector<std::string>{R"({"a":1})", R"({"b":2})"}));
}

TEST(JsonFramer, AValueIsFollowedByReadablePadding) {
    JsonFramer framer;
    feed(framer, "{}");
    ASSERT_TRUE(framer.next());
    EXPECT_GE(framer.capacity(), 2 + JsonFramer::padding);
}

TEST(JsonFramer, GarbageIsRefusedWithItsOffset) {
    EXPECT_EQ(refusal("HTTP/1.1 400"),
              "not JSON: 'H' at offset 0, where an object or array was expected");
    EXPECT_EQ(refusal("{}  17"),
              "not JSON: '1' at offset 4, where an object or array was expected");
    EXPECT_EQ(refusal("{\"a\":\x01}"), "not JSON: byte 0x01 at offset 5");
    EXPECT_EQ(refusal("{hello}"), "not JSON: 'h' at offset 1");
    EXPECT_EQ(refusal("\"text\""),
              "not JSON: '\"' at offset 0, where an object or array was expected");
}

TEST(JsonFramer, TheOffsetCountsFromTheBeginningOfTheStream) {
    JsonFramer framer;
    for (int i = 0; i < 1000; ++i) {
        feed(framer, "{\"n\":1}");
        ASSERT_TRUE(framer.next());
    }
    feed(framer, "{}x");
    ASSERT_TRUE(framer.next());
    try {
        static_cast<void>(framer.next());
        FAIL() << "x was taken";
    } catch (ProtocolError const& e) {
        EXPECT_STREQ(e.what(),
                     "not JSON: 'x' at offset 7002, where an object or array was expected");
    }
}

TEST(JsonFramer, ABracketThatClosesAnotherKindIsRefused) {
    EXPECT_EQ(refusal("[1}"), "not JSON: '}' at offset 2");
    EXPECT_EQ(refusal("{\"a\":[1,2}]"), "not JSON: '}' at offset 9");
    EXPECT_EQ(refusal("]"), "not JSON: ']' at offset 0, where an object or array was expected");
}

TEST(JsonFramer, SixtyFourLevelsAreTakenAndOneMoreIsRefused) {
    EXPECT_EQ(refusal(std::string(64, '[') + std::string(64, ']')), "");
    EXPECT_EQ(refusal(std::string(65, '[')), "JSON nested deeper than 64 levels at offset 64");
}

TEST(JsonFramer, AValueOverTheLimitIsRefused) {
    JsonFramer framer(100);
    feed(framer, "{\"a\":\"" + std::string(100, 'x'));
    EXPECT_THROW(static_cast<void>(framer.next()), ProtocolError);
}

TEST(JsonFramer, MemoryGrowsWithTheBytesThatCameAndIsGivenBack) {
    JsonFramer framer;
    std::string const piece(std::size_t{1} << 16, 'x');
    feed(framer, "[\"");
    std::size_t sent = 2;
    for (int i = 0; i < 320; ++i) {
        feed(framer, piece);
        sent += piece.size();
        ASSERT_FALSE(framer.next());
        ASSERT_LE(framer.capacity(), 2 * sent + (std::size_t{1} << 17));
    }
    feed(framer, "\"]");
    ASSERT_TRUE(framer.next());
    ASSERT_FALSE(framer.next());
    static_cast<void>(framer.prepare(4096));
    EXPECT_LE(framer.capacity(), std::size_t{1} << 17);
}

double secondsFor(std::string_view text, std::size_t chunk) {
    JsonFramer framer;
    return timeOf([&] {
        for (std::size_t at = 0; at < text.size(); at += chunk) {
            feed(framer, text.substr(at, chunk));
            static_cast<void>(framer.next());
        }
    });
}

std::string longArray(std::size_t items) {
    std::string text = "[";
    for (std::size_t i = 0; i < items; ++i)
        text += R"(["uuid","00000000-0000-4000-8000-000000000000"],"\\\\",)";
    return text + "1]";
}

TEST(JsonFramer, TwiceTheInputTakesTwiceTheTime) {
    constexpr std::size_t items = Settings::volume(200000, 80000, 40000);
    std::map<std::size_t, std::string> texts;
    for (std::size_t const count : {items, 2 * items}) texts[count] = longArray(count);
    for (std::size_t const chunk : {std::size_t{64}, std::size_t{1} << 18}) {
        SCOPED_TRACE("in chunks of " + std::to_string(chunk));
        expectLinearCost(items,
                         [&](std::size_t count) { return secondsFor(texts.at(count), chunk); });
    }
}

TEST(JsonFramer, BackslashesBeforeManyQuotesAreCountedOnce) {
    std::string text = "[\"";
    for (int i = 0; i < 200000; ++i) text += "\\\\\\\"";
    text += "\"]";
    auto const begin = std::chrono::steady_clock::now();
    EXPECT_EQ(frames(text, {}).size(), 1U);
    EXPECT_LT(std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count(), 1.0);
}

}  // namespace
}  // namespace Ovsdb
