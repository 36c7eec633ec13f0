// A process that knows no class loads the library, puts it away and loads it again. Each test is
// run in a process of its own, since what is registered stays.
#include <dlfcn.h>
#include <malloc.h>

#include <algorithm>
#include <fstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <qor/generic/GenericList.h>
#include <qor/registry/IntrospectionReactor.h>
#include <qor/registry/TypeUnit.h>

namespace {

using Qor::GenericIf;
using Qor::QorType;
using OpId = GenericIf::AttributeOp::OpId;

class Library {
  public:
    Library() : handle_(dlopen(VGW_STATEMART_FILE, RTLD_NOW | RTLD_LOCAL)) {
        if (!handle_) {
            ADD_FAILURE() << dlerror();
        }
    }
    Library(Library const&) = delete;
    Library& operator=(Library const&) = delete;
    ~Library() { EXPECT_EQ(dlclose(handle_), 0); }

    /// A unit's registration, by the name that its function has in the library file.
    Qor::TypeUnit& unit(char const* symbol) const {
        auto const function = reinterpret_cast<Qor::TypeUnit& (*)()>(dlsym(handle_, symbol));
        return function();
    }
    std::vector<Qor::TypeRecord*> records() const {
        std::vector<Qor::TypeRecord*> all;
        for (char const* const symbol :
             {"_ZN3Vgw18ovsdbDataTypesUnitEv", "_ZN3Vgw12vgwTypesUnitEv"}) {
            auto const part = unit(symbol).records();
            all.insert(all.end(), part.begin(), part.end());
        }
        return all;
    }

  private:
    void* handle_;
};

std::vector<QorType*> vgwTypes() {
    std::vector<QorType*> all = QorType::types();
    std::erase_if(all, [](QorType* type) { return !type->fullName().view().starts_with("Vgw::"); });
    return all;
}

void introspectionIs(bool isOn) { Qor::IntrospectionReactor::global()->isOnIs(isOn); }

/// Reads all that the registry tells of the types, virtual functions included.
std::size_t attributesRead() {
    std::size_t attributes = 0;
    for (QorType* const type : vgwTypes()) {
        EXPECT_EQ(QorType::type(Qor::Name(type->fullName())), type);
        EXPECT_TRUE(type->hasGenericIfSupport() || type->attributes().empty());
        for (auto const& attribute : type->attributes()) {
            EXPECT_EQ(type->attr(attribute->name()), attribute);
            EXPECT_NE(attribute->valueType(), nullptr);
            ++attributes;
        }
    }
    return attributes;
}

/// The handles to attributes that the library keeps for itself.
void expectHandles(Library const& library, bool isFilled) {
    std::size_t handles = 0;
    for (Qor::TypeRecord const* const record : library.records()) {
        for (std::size_t i = 0; i < record->handles.size(); ++i, ++handles) {
            EXPECT_EQ(record->handles[i] != nullptr, isFilled)
                << record->fullName << " " << record->handleNames[i];
            EXPECT_EQ(record->handles[i], record->type->attr(Qor::Name(record->handleNames[i])));
        }
    }
    EXPECT_GT(handles, 150U);
}

GenericIf::Ptr text(char const* value) {
    return QorType::type("Qor::String8")->genericIfFromStrep(value, false);
}

/// An entity by its type's name, changed and read by its attribute's name.
void useByName() {
    auto const config = QorType::type("Vgw::Config")->newEntity("config", nullptr);
    GenericIf::Ptr const wrapper = config->fwkType()->genericIf_(config.ptr(), false);
    Qor::AttributeId const id = wrapper->attributeId("ovsdbRunDir");
    wrapper->attributeOp(id, OpId::opSet, nullptr, text("'/run/ovsdb'"));
    EXPECT_EQ(wrapper->attributeOp(id)->strRep(), "'/run/ovsdb'");
}

TEST(Loading, PublishesTheTypesOfTheLibraryByTheirNames) {
    EXPECT_TRUE(vgwTypes().empty());
    Library const library;
    EXPECT_EQ(vgwTypes().size(), 28U);
    EXPECT_GT(attributesRead(), 200U);
    useByName();
}

TEST(Loading, WithIntrospectionOffGivesTypesWithoutAttributes) {
    introspectionIs(false);
    Library const library;
    ASSERT_EQ(vgwTypes().size(), 28U);
    for (QorType* const type : vgwTypes()) {
        EXPECT_TRUE(type->attributes().empty()) << type->fullName();
        EXPECT_TRUE(type->constructorArgs().empty()) << type->fullName();
    }
    QorType* const row = QorType::type("Vgw::BackupManager");
    EXPECT_EQ(row->base(), QorType::type("Vgw::Manager")) << "the chain of bases is there";
    auto const config = QorType::type("Vgw::Config")->newEntity("config", nullptr);
    EXPECT_EQ(config->name(), "config") << "and instances are made";
}

TEST(Loading, SwitchedOnLaterFillsTheSameTypes) {
    introspectionIs(false);
    Library const library;
    std::vector<QorType*> const before = vgwTypes();
    expectHandles(library, false);
    introspectionIs(true);
    expectHandles(library, true);
    EXPECT_EQ(vgwTypes(), before);
    EXPECT_GT(attributesRead(), 200U);
    EXPECT_EQ(QorType::type("Vgw::LogicalSwitch")->attr(Qor::Name("tunnelKey"))->id(), 388);
    EXPECT_TRUE(QorType::type("Vgw::SessionState")->valAttr());
    useByName();
}

TEST(Loading, SwitchedOnAfterTheLibraryWasPutAwayHarmsNothing) {
    introspectionIs(false);
    { Library const library; }
    introspectionIs(true);
    attributesRead();
    Library const library;
    EXPECT_GT(attributesRead(), 200U);
    useByName();
}

TEST(Loading, SwitchedOffAgainKeepsWhatWasDescribed) {
    Library const library;
    std::size_t const described = attributesRead();
    introspectionIs(false);
    EXPECT_EQ(attributesRead(), described);
    useByName();
}

TEST(Loading, EntityOutlivesWhoLoadedItsLibrary) {
    Qor::Ptr<Qor::Entity> config;
    {
        Library const library;
        config = QorType::type("Vgw::Config")->newEntity("config", nullptr);
    }
    EXPECT_EQ(config->name(), "config");
    EXPECT_EQ(config->fwkType()->fullName(), "Vgw::Config");
    config = nullptr;
}

struct Memory {
    std::size_t inUse;
    std::size_t resident;
};

Memory memory() {
    std::ifstream file("/proc/self/statm");
    std::size_t total = 0;
    std::size_t resident = 0;
    file >> total >> resident;
    return {mallinfo2().uordblks, resident * 4096};
}

TEST(Loading, AThousandTimesGrowsNothing) {
    constexpr int warmUp = 50;
    Memory start{};
    std::size_t described = 0;
    for (int i = 0; i < 1000 + warmUp; ++i) {
        introspectionIs(i % 2 == 1);
        {
            Library const library;
            ASSERT_EQ(vgwTypes().size(), 28U);
            introspectionIs(i % 3 != 0);
            if (i > 1) {
                useByName();
            }
        }
        attributesRead();
        if (i == warmUp) {
            start = memory();
            described = attributesRead();
        }
    }
    EXPECT_EQ(attributesRead(), described);
#ifndef QOR_PLAIN_NEW  // under the sanitizers memory in use is not the program's own
    EXPECT_LT(memory().inUse, start.inUse + 16 * 1024);
    EXPECT_LT(memory().resident, start.resident + 512 * 1024);
#endif
}

}  // namespace
