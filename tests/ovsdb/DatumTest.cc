#include "JsonText.h"

#include <ovsdb/rpc/ProtocolError.h>
#include <ovsdb/store/Datum.h>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <map>
#include <random>
#include <set>

namespace Ovsdb {
namespace {

constexpr ColumnType oneText{Shape::one, AtomType::string, AtomType::string};
constexpr ColumnType integer{Shape::one, AtomType::integer, AtomType::string};
constexpr ColumnType maybeInteger{Shape::optional, AtomType::integer, AtomType::string};
constexpr ColumnType texts{Shape::set, AtomType::string, AtomType::string};
constexpr ColumnType uuids{Shape::set, AtomType::uuid, AtomType::string};
constexpr ColumnType numbers{Shape::set, AtomType::integer, AtomType::string};
constexpr ColumnType textToText{Shape::map, AtomType::string, AtomType::string};
constexpr ColumnType vlanToUuid{Shape::map, AtomType::integer, AtomType::uuid};

std::string datum(ColumnType const& type, std::string_view json) {
    JsonText const value(json);
    std::string out;
    appendDatum(out, type, value.root());
    return out;
}

std::string refusal(ColumnType const& type, std::string_view json) {
    try {
        static_cast<void>(datum(type, json));
    } catch (ProtocolError const& e) {
        return e.what();
    }
    return "";
}

std::string modified(ColumnType const& type, std::string_view old, std::string_view modify) {
    std::string out;
    appendModified(out, type, datum(type, old), datum(type, modify));
    return out;
}

TEST(Datum, ASetOfOneMayComeAsTheBareAtom) {
    EXPECT_EQ(datum(texts, R"("192.0.2.1")"), datum(texts, R"(["set",["192.0.2.1"]])"));
    EXPECT_EQ(datum(uuids, R"(["uuid","00000000-0000-4000-8000-000000000001"])"),
              datum(uuids, R"(["set",[["uuid","00000000-0000-4000-8000-000000000001"]]])"));
    EXPECT_EQ(datum(texts, R"(["set",[]])"), "");
}

TEST(Datum, TheOrderOfAMessageDoesNotMatter) {
    EXPECT_EQ(datum(texts, R"(["set",["b","a","c"]])"), datum(texts, R"(["set",["c","b","a"]])"));
    EXPECT_EQ(datum(textToText, R"(["map",[["x","1"],["a","2"]]])"),
              datum(textToText, R"(["map",[["a","2"],["x","1"]]])"));
}

TEST(Datum, AnOptionalIsTheAtomOrTheEmptySet) {
    EXPECT_EQ(optionalIntegerOf(datum(maybeInteger, "5000")), 5000);
    EXPECT_EQ(optionalIntegerOf(datum(maybeInteger, R"(["set",[5000]])")), 5000);
    EXPECT_EQ(optionalIntegerOf(datum(maybeInteger, R"(["set",[]])")), std::nullopt);
    EXPECT_EQ(optionalIntegerOf(datum(maybeInteger, "0")), 0);
}

TEST(Datum, IntegersKeepAllSixtyFourBits) {
    EXPECT_EQ(integerOf(datum(integer, "9223372036854775807")), INT64_MAX);
    EXPECT_EQ(integerOf(datum(integer, "-9223372036854775808")), INT64_MIN);
    EXPECT_EQ(refusal(integer, "9223372036854775808"), "expected integer, got 9223372036854775808");
    EXPECT_EQ(refusal(integer, "1.5"), "expected integer, got 1.5");
}

TEST(Datum, StringsKeepEscapesAndSurrogatePairs) {
    EXPECT_EQ(datum(oneText, R"("Geb\u00e4ude \"1\" \ud83d\udca1\n")"),
              "Geb\xc3\xa4ude \"1\" \xf0\x9f\x92\xa1\n");
}

TEST(Datum, WhatIsOfAnotherTypeIsRefusedByName) {
    EXPECT_EQ(refusal(oneText, "17"), "expected string, got 17");
    EXPECT_EQ(refusal(uuids, R"(["uuid","junk"])"), R"(expected set of uuid, got ["uuid","junk"])");
    EXPECT_EQ(refusal(uuids, R"(["set",["x"]])"), R"(expected set of uuid, got ["set",["x"]])");
    EXPECT_EQ(refusal(maybeInteger, R"(["set",[1,2]])"),
              R"(expected optional integer, got ["set",[1,2]])");
    EXPECT_EQ(refusal(vlanToUuid, R"(["map",[[1]]])"),
              R"(expected map of integer to uuid, got ["map",[[1]]])");
    EXPECT_EQ(refusal(textToText, R"(["set",[]])"),
              R"(expected map of string to string, got ["set",[]])");
}

TEST(Datum, AModifiedOptionalIsTheNewValue) {
    EXPECT_EQ(modified(maybeInteger, "5", "7"), datum(maybeInteger, "7"));
    EXPECT_EQ(modified(maybeInteger, "5", R"(["set",[]])"), datum(maybeInteger, R"(["set",[]])"));
}

TEST(Datum, AModifiedMapTakesAddsAndDropsKeys) {
    EXPECT_EQ(modified(textToText, R"(["map",[["a","1"],["b","2"],["c","3"]]])",
                       R"(["map",[["a","1"],["b","9"],["d","4"]]])"),
              datum(textToText, R"(["map",[["b","9"],["c","3"],["d","4"]]])"));
}

TEST(Datum, SymmetricDifferencesAreThoseOfTheNaiveReference) {
    std::mt19937 random(20);
    auto const draw = [&](unsigned n) { return static_cast<int>(random() % n); };
    for (int round = 0; round < 3000; ++round) {
        std::set<int> old;
        std::set<int> modify;
        std::map<std::string, std::string> oldMap;
        std::map<std::string, std::string> modifyMap;
        for (int n = draw(8); n > 0; --n) old.insert(draw(10) - 5);
        for (int n = draw(8); n > 0; --n) modify.insert(draw(10) - 5);
        for (int n = draw(8); n > 0; --n)
            oldMap[std::to_string(draw(12))] = std::string(static_cast<std::size_t>(draw(3)), 'v');
        for (int n = draw(8); n > 0; --n)
            modifyMap[std::to_string(draw(12))] =
                std::string(static_cast<std::size_t>(draw(3)), 'v');
        std::set<int> wanted;
        for (int const i : old)
            if (!modify.contains(i)) wanted.insert(i);
        for (int const i : modify)
            if (!old.contains(i)) wanted.insert(i);
        std::map<std::string, std::string> wantedMap = oldMap;
        for (auto const& [k, v] : modifyMap) {
            auto const at = oldMap.find(k);
            if (at != oldMap.end() && at->second == v)
                wantedMap.erase(k);
            else
                wantedMap[k] = v;
        }
        auto const set = [](std::set<int> const& s) { return nlohmann::json{"set", s}.dump(); };
        auto const map = [](std::map<std::string, std::string> const& m) {
            nlohmann::json pairs = nlohmann::json::array();
            for (auto const& [k, v] : m) pairs.push_back({k, v});
            return nlohmann::json{"map", pairs}.dump();
        };
        ASSERT_EQ(modified(numbers, set(old), set(modify)), datum(numbers, set(wanted)))
            << "round " << round;
        ASSERT_EQ(modified(textToText, map(oldMap), map(modifyMap)),
                  datum(textToText, map(wantedMap)))
            << "round " << round;
    }
}

TEST(Uuid, TextsAndBytesComeBackTheSame) {
    std::string const written = "0123abcd-4567-89ef-cdef-0123456789ab";
    std::optional<Uuid> const uuid = Uuid::parse(written);
    ASSERT_TRUE(uuid);
    EXPECT_EQ(uuid->text(), written);
    auto const bytes = uuid->bytes();
    EXPECT_EQ(Uuid::fromBytes({bytes.data(), bytes.size()}), *uuid);
    EXPECT_EQ(Uuid::parse("0123ABCD-4567-89EF-CDEF-0123456789AB"), uuid);
}

TEST(Uuid, OtherTextsAreNone) {
    for (char const* const bad :
         {"", "0123abcd-4567-89ef-cdef-0123456789a", "0123abcd-4567-89ef-cdef-0123456789abc",
          "0123abcd_4567-89ef-cdef-0123456789ab", "0123abcg-4567-89ef-cdef-0123456789ab"})
        EXPECT_FALSE(Uuid::parse(bad)) << bad;
}

TEST(Uuid, TheOrderIsThatOfTheTexts) {
    EXPECT_LT(*Uuid::parse("00000000-0000-4000-8000-ffffffffffff"),
              *Uuid::parse("00000001-0000-4000-8000-000000000000"));
}

}  // namespace
}  // namespace Ovsdb
