// The process's operator new, counted, and failing when told: for tests in a program of their own.
// The library's pool stands aside in them, so that every block is asked for here.
#ifndef TESTS_MEMORY_COUNTINGNEW_H
#define TESTS_MEMORY_COUNTINGNEW_H

#include <cstddef>
#include <cstdint>

namespace Memory {

// Bytes and blocks that are held now, and blocks that were asked for so far.
std::size_t heldBytes();
std::size_t heldBlocks();
std::uint64_t asked();

// The nth request from now on fails, once; 0 for none.
void failAt(std::uint64_t nth);
// Whether it has.
bool hasFailed();

}  // namespace Memory

#endif
