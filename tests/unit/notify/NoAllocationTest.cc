// What a change costs in memory. Every way to get memory in this program counts.
#include <tests/unit/notify/TestListeners.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <new>

namespace {

long allocations = 0;

void* counted(std::size_t size) {
    ++allocations;
    return std::malloc(size == 0 ? 1 : size);
}

}  // namespace

// None of these is inlined, so that the compiler sees pairs of new and delete where they are used.
[[gnu::noinline]] void* operator new(std::size_t size) {
    if (void* const block = counted(size)) {
        return block;
    }
    throw std::bad_alloc();
}
[[gnu::noinline]] void* operator new(std::size_t size, std::nothrow_t const&) noexcept {
    return counted(size);
}
[[gnu::noinline]] void* operator new[](std::size_t size) { return ::operator new(size); }
[[gnu::noinline]] void* operator new[](std::size_t size, std::nothrow_t const&) noexcept {
    return counted(size);
}
[[gnu::noinline]] void operator delete(void* block) noexcept { std::free(block); }
[[gnu::noinline]] void operator delete(void* block, std::size_t) noexcept { std::free(block); }
[[gnu::noinline]] void operator delete(void* block, std::nothrow_t const&) noexcept {
    std::free(block);
}
[[gnu::noinline]] void operator delete[](void* block) noexcept { std::free(block); }
[[gnu::noinline]] void operator delete[](void* block, std::size_t) noexcept { std::free(block); }
[[gnu::noinline]] void operator delete[](void* block, std::nothrow_t const&) noexcept {
    std::free(block);
}

using namespace Sample;

namespace {

// Counts what it hears and keeps nothing.
struct Counting : Port::NotifieeConst {
    void onSpeed() override { ++heard; }
    void onLabel(Qor::U16) override { ++heard; }
    int heard = 0;
};

template <class Work>
long allocationsOf(Work work) {
    long const before = allocations;
    work();
    return allocations - before;
}

class NoAllocation : public testing::Test {
  protected:
    void attach(std::size_t count) {
        while (notifiees.size() < count) {
            notifiees.push_back(Qor::make<Counting>());
            notifiees.back()->notifierIs(port);
        }
    }
    Port::Ptr port = Qor::make<Port>("ethernet1");
    std::vector<Qor::Ptr<Counting>> notifiees;
};

TEST_F(NoAllocation, TheCountersWork) {
    EXPECT_EQ(allocationsOf([] { ::operator delete(::operator new(16)); }), 1);
#ifdef QOR_PLAIN_NEW
    EXPECT_EQ(allocationsOf([] { Qor::memDel(Qor::memNew(100), 100); }), 1);
#endif
}

TEST_F(NoAllocation, ByAChangeThatNobodyHears) {
    EXPECT_EQ(allocationsOf([this] {
                  for (Qor::U32 i = 1; i <= 1000; ++i) {
                      port->speedIs(i);
                      port->modeIs(i);
                  }
              }),
              0);
}

TEST_F(NoAllocation, ByAKeyedChangeThatNobodyHears) {
    port->labelIs(7, "a");
    Qor::String8 const a("a");
    Qor::String8 const b("b");
    EXPECT_EQ(allocationsOf([&] {
                  for (int i = 0; i < 1000; ++i) {
                      port->labelIs(7, i % 2 ? a : b);
                  }
              }),
              0);
}

TEST_F(NoAllocation, ByAChangeThatUpToSixteenHear) {
    for (std::size_t const many : {1U, 8U, 9U, 16U}) {
        attach(many);
        EXPECT_EQ(allocationsOf([this] { port->speedIs(port->speed() + 1); }), 0) << many;
    }
    EXPECT_EQ(notifiees.front()->heard, 4);
    EXPECT_EQ(notifiees.back()->heard, 1);
}

TEST_F(NoAllocation, OneArrayForAChangeThatMoreThanSixteenHear) {
    for (std::size_t const many : {17U, 50U}) {
        attach(many);
        EXPECT_EQ(allocationsOf([this] { port->speedIs(port->speed() + 1); }), 1) << many;
    }
    EXPECT_EQ(notifiees.front()->heard, 2);
    EXPECT_EQ(notifiees.back()->heard, 1);
}

TEST_F(NoAllocation, ByAWalkOverACollection) {
    for (Qor::U16 i = 0; i < 100; ++i) {
        port->labelIs(i, "x");
    }
    Qor::U32 met = 0;
    EXPECT_EQ(allocationsOf([&] {
                  for (auto walk = port->labelIterator(); walk; ++walk) {
                      met += walk->key();
                  }
              }),
              0);
    EXPECT_EQ(met, 4950U);
}

TEST_F(NoAllocation, OneForAMemberAtMost) {
    port->labelIs(1, "x");
    Qor::String8 const text("x");
    // The second member fits without more buckets than the doubling it asks for.
    EXPECT_LE(allocationsOf([&] { port->labelIs(2, text); }), 2);
}

#ifndef QOR_PLAIN_NEW
TEST_F(NoAllocation, AttachingAndDetachingTakesNothingFromTheSystem) {
    attach(1);
    std::size_t const before = Qor::memFromSystem();
    EXPECT_EQ(allocationsOf([this] {
                  for (int i = 0; i < 1000; ++i) {
                      notifiees[0]->notifierIs(nullptr);
                      notifiees[0]->notifierIs(port);
                  }
              }),
              0);
    EXPECT_EQ(Qor::memFromSystem(), before);
}
#endif

}  // namespace
