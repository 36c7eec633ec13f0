// What stands in a directory: its place, and what happens when one thing gives way to another.
#include <gtest/gtest.h>

#include <functional>

#include <qor/registry/QorType.h>
#include <qor/tree/Dir.h>

namespace {

class Ending : public Qor::Dir {
  public:
    using Dir::Dir;
    void zeroReferencesIs(bool) override { onEnd(); }
    std::function<void()> onEnd;
};

TEST(DirEntry, KnowsTheAttributeThatHoldsIt) {
    auto const dir = Qor::make<Qor::Dir>("top");
    auto const child = Qor::make<Qor::Dir>("child");
    EXPECT_EQ(child->parentAttr(), nullptr);
    dir->entryIs("n", child);
    ASSERT_NE(child->parentAttr(), nullptr);
    EXPECT_EQ(child->parentAttr()->name(), "entry");
    EXPECT_EQ(child->parentAttr()->id(), child->parentAttrId());
    dir->entryDel("n");
    EXPECT_EQ(child->parentAttr(), nullptr);
}

TEST(DirEntry, OldOneMayTakeTheNameAwayWhenItEnds) {
    auto const dir = Qor::make<Qor::Dir>("top");
    auto old = Qor::make<Ending>("old");
    old->onEnd = [&] { dir->entryDel("n"); };
    dir->entryIs("n", old);
    old = nullptr;
    auto const next = Qor::make<Qor::Dir>("next");
    dir->entryIs("n", next);
    EXPECT_EQ(dir->entrys(), 0U);
    EXPECT_FALSE(next->parent());
}

}  // namespace
