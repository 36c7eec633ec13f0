#include "CountingNew.h"

#include <cstdlib>
#include <new>

namespace {

// In front of each block: its size, and padding that keeps the alignment.
constexpr std::size_t front = 16;

std::size_t bytes = 0;
std::size_t blocks = 0;
std::uint64_t requests = 0;
std::uint64_t failing = 0;
bool failed = false;

void* take(std::size_t size) noexcept {
    ++requests;
    if (failing != 0 && requests == failing) {
        failed = true;
        return nullptr;
    }
    auto* const block = static_cast<unsigned char*>(std::malloc(size + front));
    if (block == nullptr) return nullptr;
    *reinterpret_cast<std::size_t*>(block) = size;
    bytes += size;
    ++blocks;
    return block + front;
}

void giveBack(void* at) noexcept {
    if (at == nullptr) return;
    auto* const block = static_cast<unsigned char*>(at) - front;
    bytes -= *reinterpret_cast<std::size_t*>(block);
    --blocks;
    std::free(block);
}

void* need(std::size_t size) {
    if (void* const block = take(size)) return block;
    throw std::bad_alloc();
}

}  // namespace

void* operator new(std::size_t size) { return need(size); }
void* operator new[](std::size_t size) { return need(size); }
void* operator new(std::size_t size, std::nothrow_t const&) noexcept { return take(size); }
void* operator new[](std::size_t size, std::nothrow_t const&) noexcept { return take(size); }
void operator delete(void* block) noexcept { giveBack(block); }
void operator delete[](void* block) noexcept { giveBack(block); }
void operator delete(void* block, std::size_t) noexcept { giveBack(block); }
void operator delete[](void* block, std::size_t) noexcept { giveBack(block); }
void operator delete(void* block, std::nothrow_t const&) noexcept { giveBack(block); }
void operator delete[](void* block, std::nothrow_t const&) noexcept { giveBack(block); }

namespace Memory {

std::size_t heldBytes() { return bytes; }
std::size_t heldBlocks() { return blocks; }
std::uint64_t asked() { return requests; }

void failAt(std::uint64_t nth) {
    failed = false;
    failing = nth == 0 ? 0 : requests + nth;
}

bool hasFailed() { return failed; }

}  // namespace Memory
