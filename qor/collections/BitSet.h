// A fixed number of flags in one word. A position outside the set is a programming error.
#ifndef QOR_COLLECTIONS_BIT_SET_H
#define QOR_COLLECTIONS_BIT_SET_H

#include <qor/core/Assert.h>
#include <qor/core/Types.h>

namespace Qor {

template <int bits, class Word>
class BitSet {
  public:
    constexpr BitSet() noexcept = default;
    constexpr explicit BitSet(Word word) noexcept : word_(word) {}

    constexpr Word word() const noexcept { return word_; }
    bool bit(int pos) const {
        check(pos, 37, "bit");
        return (word_ >> pos) & 1;
    }
    /// Sets or clears one flag. REQUIRES: pos>=0 && pos<bits
    void bitIs(int pos, bool on) {
        if (on) {
            check(pos, 37, "bitIs");
            word_ |= Word{1} << pos;
        } else {
            check(pos, 43, "bitIs");
            word_ &= ~(Word{1} << pos);
        }
    }

    constexpr bool operator==(BitSet const&) const noexcept = default;
    constexpr BitSet operator&(BitSet other) const noexcept { return BitSet(word_ & other.word_); }
    constexpr BitSet operator|(BitSet other) const noexcept { return BitSet(word_ | other.word_); }
    constexpr BitSet operator~() const noexcept { return BitSet(~word_); }

  private:
    static void check(int pos, int line, char const* function) {
        assertThat(pos >= 0 && pos < bits, "pos>=0 && pos<bits", "Qor/BitSet", line, function);
    }

    Word word_ = 0;
};

}  // namespace Qor

#endif
