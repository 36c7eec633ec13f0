#include <qor/core/Name.h>

#include <gtest/gtest.h>

#include <type_traits>
#include <unordered_set>

namespace {

using Qor::Name;
using Qor::String8;

TEST(Name, IsATypeOfItsOwn) {
    EXPECT_FALSE((std::is_same_v<Name, String8>));
    EXPECT_EQ(sizeof(Name), sizeof(String8));
}

TEST(Name, ConvertsBothWaysByPassingOnTheBlock) {
    String8 const text("ps-1");
    Name const name = text;
    EXPECT_EQ(name.data(), text.data());
    String8 const back = name;
    EXPECT_EQ(back.data(), text.data());
    EXPECT_EQ(text.data()->count(), 3U);
}

TEST(Name, IsBuiltAndComparedLikeAString) {
    EXPECT_EQ(Name("a"), String8("a"));
    EXPECT_EQ(Name(std::string_view("a")), "a");
    EXPECT_LT(Name("a"), Name("b"));
    EXPECT_EQ(Name("a") + "b", "ab");
    EXPECT_TRUE(Name().empty());
    char const* const nothing = nullptr;
    EXPECT_TRUE(Name(nothing).empty());
}

TEST(Name, TakesTextsByAssignment) {
    Name name;
    name = "a";
    EXPECT_EQ(name, "a");
    name = String8("b");
    EXPECT_EQ(name, "b");
}

TEST(Name, HashesLikeTheStringOfTheSameBytes) {
    EXPECT_EQ(Name("ps-1").hash(), String8("ps-1").hash());
    std::unordered_set<Name> const names{Name("a"), Name("b"), Name("a")};
    EXPECT_EQ(names.size(), 2U);
}

}  // namespace
