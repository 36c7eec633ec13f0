#include <qor/core/Pool.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <set>
#include <vector>

namespace {

// Both sides of each border between the classes of sizes, and far beyond the greatest.
std::vector<std::size_t> borderSizes() {
    std::vector<std::size_t> sizes{0, 1};
    for (std::size_t border = 16; border <= 544; border += 16) {
        sizes.insert(sizes.end(), {border - 1, border, border + 1});
    }
    sizes.insert(sizes.end(), {4096, 65536, 1 << 20, (1 << 20) + 1, 5000000});
    return sizes;
}

TEST(Pool, EveryByteOfABlockIsItsOwn) {
    struct Held {
        unsigned char* block;
        std::size_t size;
        unsigned char fill;
    };
    std::vector<Held> held;
    unsigned char fill = 0;
    for (std::size_t const size : borderSizes()) {
        for (int i = 0; i < 3; ++i) {
            auto* const block = static_cast<unsigned char*>(Qor::memNew(size));
            std::memset(block, ++fill, size);
            held.push_back({block, size, fill});
        }
    }
    for (auto const& [block, size, value] : held) {
        for (std::size_t i = 0; i < size; ++i) {
            ASSERT_EQ(block[i], value) << "byte " << i << " of a block of " << size;
        }
        Qor::memDel(block, size);
    }
}

TEST(Pool, BlocksAreAlignedForAnyTypeOfTheirSize) {
    for (std::size_t const size : borderSizes()) {
        // A type of alignment 16 has a size that is a multiple of it.
        std::size_t const needed = size != 0 && size % 16 == 0 ? 16 : 8;
        void* const block = Qor::memNew(size);
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(block) % needed, 0U) << size;
        Qor::memDel(block, size);
    }
}

TEST(Pool, BlocksThatAreHeldAreAllDifferent) {
    std::set<void*> seen;
    std::vector<void*> held;
    for (int i = 0; i < 20000; ++i) {
        held.push_back(Qor::memNew(24));
        ASSERT_TRUE(seen.insert(held.back()).second);
    }
    for (void* const block : held) {
        Qor::memDel(block, 24);
    }
}

TEST(Pool, NullIsIgnored) {
    Qor::memDel(nullptr, 16);
    Qor::memDel(nullptr, 100000);
}

TEST(Pool, ImpossibleSizeIsRefused) {
    // Volatile, so that the compiler does not object to the size before the pool does.
    std::size_t volatile const impossible = static_cast<std::size_t>(-1) / 4;
#ifndef QOR_PLAIN_NEW  // a sanitizer's operator new stops at such a size itself
    EXPECT_THROW(static_cast<void>(Qor::memNew(impossible)), std::bad_alloc);
    EXPECT_EQ(Qor::memNewOrNull(impossible), nullptr);
#else
    static_cast<void>(impossible);
#endif
}

TEST(Pool, RepeatedRoundsTakeNothingMoreFromTheSystem) {
    auto const round = [] {
        std::vector<std::pair<void*, std::size_t>> held;
        for (std::size_t size = 1; size <= 512; size += 7) {
            for (int i = 0; i < 100; ++i) {
                held.emplace_back(Qor::memNew(size), size);
            }
        }
        for (auto const& [block, size] : held) {
            Qor::memDel(block, size);
        }
    };
    round();
    std::size_t const after = Qor::memFromSystem();
    for (int i = 0; i < 20; ++i) {
        round();
    }
    EXPECT_EQ(Qor::memFromSystem(), after);
}

TEST(Pool, SizeAtABorderIsReusedBySizesOfItsClass) {
    // A block of 32 serves 25 to 32 bytes; what was given back as 25 may come out as 32, whole.
    void* const small = Qor::memNew(25);
    Qor::memDel(small, 25);
    auto* const whole = static_cast<unsigned char*>(Qor::memNew(32));
    std::memset(whole, 0xAA, 32);
    EXPECT_EQ(whole[31], 0xAA);
    Qor::memDel(whole, 32);
}

struct Record : Qor::QorMemPool {
    char bytes[40] = {};
};

TEST(Pool, RecordsOfTheBaseClassComeFromThePool) {
    std::vector<Record*> records;
    for (int i = 0; i < 1000; ++i) {
        records.push_back(new Record);
    }
    for (Record* const record : records) {
        delete record;
    }
    std::size_t const after = Qor::memFromSystem();
    records.clear();
    for (int i = 0; i < 1000; ++i) {
        records.push_back(new Record);
    }
    EXPECT_EQ(Qor::memFromSystem(), after);
    for (Record* const record : records) {
        delete record;
    }
}

}  // namespace
