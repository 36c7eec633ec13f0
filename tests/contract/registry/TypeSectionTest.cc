// The names of the library's types in the library file itself, where tools read them without
// loading it.
#include <elf.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <optional>

#include <gtest/gtest.h>

#include "RegistryTable.h"

namespace Contract {
namespace {

std::string fileContents(char const* path) {
    std::string contents(std::filesystem::file_size(path), '\0');
    std::ifstream(path, std::ios::binary)
        .read(contents.data(), static_cast<std::streamsize>(contents.size()));
    return contents;
}

template <class T>
T at(std::string const& file, std::size_t offset) {
    T value;
    if (offset + sizeof value > file.size()) {
        throw std::out_of_range("cut file");
    }
    std::memcpy(&value, file.data() + offset, sizeof value);
    return value;
}

struct Section {
    Elf64_Shdr header;
    std::string contents;
};

std::optional<Section> section(std::string const& file, std::string const& name) {
    auto const header = at<Elf64_Ehdr>(file, 0);
    auto const headerOf = [&](std::size_t i) {
        return at<Elf64_Shdr>(file, header.e_shoff + i * header.e_shentsize);
    };
    auto const names = headerOf(header.e_shstrndx);
    for (std::size_t i = 0; i < header.e_shnum; ++i) {
        Elf64_Shdr const one = headerOf(i);
        if (name == file.c_str() + names.sh_offset + one.sh_name) {
            return Section{one, file.substr(one.sh_offset, one.sh_size)};
        }
    }
    return std::nullopt;
}

class TypeSection : public testing::Test {
  protected:
    std::optional<Section> const section_ = section(fileContents(VGW_STATEMART_FILE), ".qor.type");
    void SetUp() override { ASSERT_TRUE(section_); }
};

TEST_F(TypeSection, HoldsTheNamesInTheOrderOfRegistration) {
    std::string expected;
    for (auto const& type : registryTable()) {
        expected += type.name + '\0';
    }
    EXPECT_EQ(section_->contents, expected);
}

TEST_F(TypeSection, IsReadOnlyDataOfItsSizeAlignedToBytes) {
    EXPECT_EQ(section_->header.sh_size, 0x211U);
    EXPECT_EQ(section_->header.sh_addralign, 1U);
    EXPECT_EQ(section_->header.sh_type, Elf64_Word{SHT_PROGBITS});
    EXPECT_FALSE(section_->header.sh_flags & SHF_WRITE);
    EXPECT_FALSE(section_->header.sh_flags & SHF_EXECINSTR);
}

// The two accesses are inlined wherever they are called; a debugger finds these copies.
TEST(LibraryFile, HoldsACopyOfTheAccessesOfEachEntitysPointer) {
    auto const names = section(fileContents(VGW_STATEMART_FILE), ".strtab");
    ASSERT_TRUE(names);
    for (auto const& type : registryTable()) {
        if (type.sort != Sort::entity) {
            continue;
        }
        std::string const name = type.name.substr(type.name.rfind(':') + 1);
        std::string const pointer =
            "_ZNK3Qor3PtrIN3Vgw" + std::to_string(name.size()) + name + "EE";
        for (char const* const access : {"deEv", "ptEv"}) {
            EXPECT_NE(names->contents.find(pointer + access), std::string::npos) << name << access;
        }
    }
}

// What it registers may print while it is loaded, and when the process ends.
TEST(LibraryFile, HoldsTheStreamsOfTheLanguageWhileItIsLoaded) {
    auto const names = section(fileContents(VGW_STATEMART_FILE), ".dynstr");
    ASSERT_TRUE(names);
    EXPECT_NE(names->contents.find("_ZNSt8ios_base4InitD1Ev"), std::string::npos);
}

}  // namespace
}  // namespace Contract
