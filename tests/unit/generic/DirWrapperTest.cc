// A tree of directories, walked and changed by names and texts alone.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include <qor/generic/GenericException.h>
#include <qor/generic/GenericList.h>
#include <qor/registry/Builtin.h>
#include <qor/tree/Dir.h>

namespace {

using Qor::GenericIf;
using Qor::QorType;
using OpId = GenericIf::AttributeOp::OpId;

GenericIf::Ptr text(char const* type, char const* value) {
    return QorType::type(type)->genericIfFromStrep(value, false);
}

GenericIf::Ptr directory(char const* name) {
    QorType* const type = QorType::type("Qor::Dir");
    return type->genericIf_(type->newEntity(name, nullptr).ptr(), false);
}

class Heard : public GenericIf::Watcher {
  public:
    std::vector<std::string> told;
    void onAttribute(GenericIf& wrapper, Qor::AttributeId id, GenericIf::PtrConst& key) override {
        told.push_back(std::string(wrapper.attributeString(id).view()) + " " +
                       (key ? std::string(key->strRep().view()) : "all"));
    }
};

class DirWrapper : public testing::Test {
  protected:
    void put(char const* name, GenericIf::Ptr const& entity) {
        root->attributeOp(entry, OpId::opSet, text("Qor::Name", name), entity);
    }
    GenericIf::Ptr at(char const* name) {
        return root->attributeOp(entry, OpId::opGet, text("Qor::Name", name));
    }

    GenericIf::Ptr const root = directory("top");
    Qor::AttributeId const entry = root->attributeId("entry");
};

TEST_F(DirWrapper, TellsWhatADirectoryIs) {
    QorType* const type = root->fwkType();
    EXPECT_EQ(type->fullName(), "Qor::Dir");
    EXPECT_EQ(type->base(), Qor::Entity::_fwkType());
    EXPECT_TRUE(type->isEntity());
    auto const record = type->attr(Qor::Name("entry"));
    EXPECT_EQ(record->keyType(), Qor::Name::_fwkType());
    EXPECT_EQ(record->valueType(), Qor::Entity::_fwkType());
    EXPECT_TRUE(record->flags().isCollection());
    EXPECT_TRUE(record->flags().isEntity());
    EXPECT_FALSE(record->flags().isInstantiating());
}

TEST_F(DirWrapper, EntityThatIsPutInIsFoundWithItsOwnClass) {
    put("'a'", directory("a"));
    EXPECT_EQ(at("'a'")->fwkType()->fullName(), "Qor::Dir");
    EXPECT_EQ(at("'a'")->entity()->uriPath(), "/top/a");
    EXPECT_EQ(at("'a'")->strRep(), "'/top/a'");
    EXPECT_FALSE(at("'b'")->entity());
}

TEST_F(DirWrapper, WalksCountsAndRemovesEntries) {
    for (char const* const name : {"'a'", "'b'", "'c'"}) {
        put(name, directory("x"));
    }
    EXPECT_EQ(root->attributeOp(entry, OpId::opCount)->strRep(), "3");
    unsigned met = 0;
    for (auto step = root->attributeIteratorConst(entry); step; ++step) {
        EXPECT_TRUE(step.value()->entity());
        ++met;
    }
    EXPECT_EQ(met, 3U);
    EXPECT_EQ(root->attributeOp(entry, OpId::opDel, text("Qor::Name", "'b'"))->strRep(), "true");
    EXPECT_EQ(root->attributeOp(entry, OpId::opDel, text("Qor::Name", "'b'"))->strRep(), "false");
    EXPECT_EQ(root->attributeOp(entry, OpId::opCount)->strRep(), "2");
}

TEST_F(DirWrapper, IsWatched) {
    Heard heard;
    root->watcherIs(&heard);
    put("'a'", directory("a"));
    root->attributeOp(entry, OpId::opDel, text("Qor::Name", "'a'"));
    EXPECT_EQ(heard.told, (std::vector<std::string>{"entry 'a'", "entry 'a'"}));
    root->watcherIs(nullptr);
}

TEST_F(DirWrapper, ReferenceIsReadBackFromItsPathAsNullAlone) {
    EXPECT_FALSE(QorType::type("Qor::Dir")->genericIfFromStrep("null", false)->entity());
    EXPECT_THROW(QorType::type("Qor::Dir")->genericIfFromStrep("null x", false),
                 Qor::RangeException);
}

TEST_F(DirWrapper, ConstOneGivesConstEntries) {
    put("'a'", directory("a"));
    auto const readOnly = QorType::type("Qor::Dir")->genericIf_(root->entity().ptr(), true);
    auto const found = readOnly->attributeOp(entry, OpId::opGet, text("Qor::Name", "'a'"));
    EXPECT_TRUE(found->isConst());
    EXPECT_THROW(found->attributeOp(entry, OpId::opDel, text("Qor::Name", "'a'")),
                 Qor::ConstException);
    EXPECT_THROW(root->attributeOp(entry, OpId::opSet, text("Qor::Name", "'b'"), found),
                 Qor::ConstException)
        << "what is only read is not put where it can be written";
}

TEST_F(DirWrapper, RefusesAValueInThePlaceOfAnEntity) {
    EXPECT_THROW(put("'a'", text("U16", "7")), Qor::TypeException);
    EXPECT_THROW(put("'a'", nullptr), Qor::TypeException);
    EXPECT_EQ(root->attributeOp(entry, OpId::opCount)->strRep(), "0");
}

TEST(Dir, RefusesItselfAndWhatItStandsIn) {
    auto const top = Qor::make<Qor::Dir>(Qor::Name("top"));
    auto const low = Qor::make<Qor::Dir>(Qor::Name("low"));
    top->entryIs(Qor::Name("low"), low);
    EXPECT_THROW(top->entryIs(Qor::Name("x"), top), Qor::RangeException);
    EXPECT_THROW(low->entryIs(Qor::Name("x"), top), Qor::RangeException);
    EXPECT_EQ(top->entrys(), 1U);
    EXPECT_EQ(low->entrys(), 0U);
    EXPECT_EQ(low->uriPath(), "/top/low");
}

}  // namespace
