// A counted, immutable byte string that is used as a value: one pointer wide, copied by taking a
// reference. Bytes are the only width of character that is built; they may be any bytes, NUL
// included.
//
// - Ownership: each copy holds one reference on the shared block; the last one to go frees it. The
//   empty string has no block.
// - Threads: references may be taken and given up on any thread. One StringN object belongs to one
//   thread at a time.
// - Invalidation: charPtr() and view() hold as long as the string (or a copy of it) lives and is
//   not assigned to or appended to.
// - Cost: a copy is one count change, without the locked instruction while the process has one
//   thread. The hash is computed once a block. Appending to a block that no one shares takes time
//   in proportion to what is appended, over many appends.
#ifndef QOR_CORE_STRINGN_H
#define QOR_CORE_STRINGN_H

#include <qor/core/Export.h>
#include <qor/core/SingleThread.h>

#include <atomic>
#include <compare>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>
#include <iosfwd>
#include <string_view>
#include <utility>

namespace Qor {

template <class Char>
class StringN;

template <>
class QOR_EXPORT StringN<unsigned char> {
  public:
    class Data;
    class IteratorConst;
    class Iterator;

    // The greatest length in bytes; more raises RangeException before anything is copied.
    static constexpr std::uint32_t maxLength = 0xFFFFFFFF;

    constexpr StringN() noexcept = default;
    StringN(char const* text);  // a null pointer gives the empty string
    StringN(std::string_view text);
    StringN(StringN const& other) noexcept;
    StringN(StringN&& other) noexcept : data_(std::exchange(other.data_, nullptr)) {}
    ~StringN();

    StringN& operator=(StringN const& other) noexcept;
    StringN& operator=(StringN&& other) noexcept;
    StringN& operator=(char const* text);

    // Replaces the contents by `length` bytes of `buffer` from `start`. The bytes may lie in this
    // string.
    void init(char const* buffer, unsigned int start, unsigned int length);

    StringN& operator+=(StringN const& other);
    StringN& operator+=(char const* text);
    StringN& operator+=(std::string_view text);
    StringN operator+(StringN const& other) const;
    friend StringN operator+(char const* left, StringN const& right) {
        return StringN(left) + right;
    }

    // At most `count` bytes from `start`. A negative start counts from the end (-1 is the last
    // byte) and goes no further back than the first byte. A part that is the whole string shares
    // its block.
    StringN substr(long long start, unsigned int count = maxLength) const;

    std::uint32_t length() const noexcept;
    bool empty() const noexcept { return data_ == nullptr; }
    char const* charPtr() const noexcept;  // NUL behind the last byte
    std::string_view view() const noexcept { return {charPtr(), length()}; }

    // 32 bits over all bytes, the same on every machine; never 0.
    std::uint32_t hash() const noexcept {
        return data_ != nullptr ? hashOf(*data_) : hashOfEmpty();
    }

    // The shared block, null for the empty string.
    Data const* data() const noexcept { return data_; }

    IteratorConst begin() const noexcept;
    IteratorConst end() const noexcept;
    IteratorConst iteratorConst() const noexcept;

    friend bool operator==(StringN const& left, StringN const& right) noexcept {
        return equal(left, right);
    }
    friend bool operator==(StringN const& left, std::string_view right) noexcept {
        return left.view() == right;
    }
    friend bool operator==(StringN const& left, char const* right) noexcept {
        return left.view() == textOf(right);
    }
    friend std::strong_ordering operator<=>(StringN const& left, StringN const& right) noexcept {
        return compare(left.view(), right.view());
    }
    friend std::strong_ordering operator<=>(StringN const& left, std::string_view right) noexcept {
        return compare(left.view(), right);
    }
    friend std::strong_ordering operator<=>(StringN const& left, char const* right) noexcept {
        return compare(left.view(), textOf(right));
    }

  private:
    static std::string_view textOf(char const* text) noexcept {
        return text != nullptr ? std::string_view(text) : std::string_view();
    }
    static bool equal(StringN const& left, StringN const& right) noexcept;
    static std::strong_ordering compare(std::string_view left, std::string_view right) noexcept {
        return left.compare(right) <=> 0;
    }
    static std::uint32_t hashOf(Data const& data) noexcept;
    static std::uint32_t hashOfEmpty() noexcept;
    static Data* copyOf(std::string_view text);
    static Data* joined(std::string_view left, std::string_view right);
    bool appendInPlace(std::string_view text) noexcept;

    Data* data_ = nullptr;
};

// The block that strings share: count, length, cached hash, the bytes and a NUL, in one piece from
// the pool.
class StringN<unsigned char>::Data {
  public:
    // Bytes of the block of a string of `length` bytes: what the block is taken and given back
    // with. From 256 bytes on the size goes up in steps of an eighth, which is the room that
    // appending in place uses.
    static constexpr std::size_t entries(std::uint32_t length) noexcept;

    // A block with count 1, its NUL set and its other bytes unset.
    static Data* make(std::uint32_t length);

    void take() noexcept;
    void give() noexcept;
    bool isShared() const noexcept { return count_.load(std::memory_order_acquire) != 1; }
    std::uint32_t count() const noexcept { return count_.load(std::memory_order_relaxed); }

    std::uint32_t length() const noexcept { return length_; }
    char* bytes() noexcept { return reinterpret_cast<char*>(this + 1); }
    char const* bytes() const noexcept { return reinterpret_cast<char const*>(this + 1); }
    std::uint32_t hash() const noexcept {
        auto const known = hash_.load(std::memory_order_relaxed);
        return known != 0 ? known : computeHash();
    }

    bool operator==(Data const& other) const noexcept;
    bool operator<(Data const& other) const noexcept {
        return std::string_view(bytes(), length_) < std::string_view(other.bytes(), other.length_);
    }

    // Sets a new length within the same block and forgets the hash. REQUIRES: nobody shares the
    // block.
    void lengthIs(std::uint32_t length) noexcept;

  private:
    explicit Data(std::uint32_t length) noexcept : length_(length) {}
    std::uint32_t computeHash() const noexcept;
    void end() noexcept;

    std::atomic<std::uint32_t> count_{1};
    std::uint32_t length_;
    mutable std::atomic<std::uint32_t> hash_{0};  // 0: not computed yet
};

// A position in a string: it holds the string, so that what it reads stays, and an index. Positions
// compare by index alone.
class StringN<unsigned char>::IteratorConst {
  public:
    IteratorConst() noexcept = default;
    explicit IteratorConst(StringN text, std::uint32_t index = 0) noexcept
        : text_(std::move(text)), index_(index) {}

    // The byte at the position, 0 at the end.
    unsigned char operator*() const noexcept {
        return index_ < text_.length() ? static_cast<unsigned char>(text_.charPtr()[index_]) : 0;
    }
    IteratorConst& operator++() noexcept {  // stays where it is at the end
        index_ += index_ < text_.length() ? 1U : 0U;
        return *this;
    }
    explicit operator bool() const noexcept { return index_ < text_.length(); }

    std::uint32_t index() const noexcept { return index_; }
    void indexIs(std::uint32_t index) noexcept {
        index_ = index < text_.length() ? index : text_.length();
    }
    StringN const& text() const noexcept { return text_; }
    // The bytes from here to the end, or to an end that stands before it.
    std::string_view rest() const noexcept { return rest(length()); }
    std::string_view rest(IteratorConst const& end) const noexcept { return rest(end.index_); }

    friend bool operator==(IteratorConst const& left, IteratorConst const& right) noexcept {
        return left.index_ == right.index_;
    }

  private:
    std::uint32_t length() const noexcept { return text_.length(); }
    std::string_view rest(std::uint32_t end) const noexcept {
        end = end < length() ? end : length();
        auto const start = index_ < end ? index_ : end;
        return {text_.charPtr() + start, end - start};
    }

    StringN text_;
    std::uint32_t index_ = 0;
};

// The place at which a string that arrives in pieces grows. It holds the string gathered so far.
class StringN<unsigned char>::Iterator {
  public:
    Iterator() noexcept = default;
    explicit Iterator(StringN text) noexcept : text_(std::move(text)) {}

    void append(std::string_view bytes) { text_ += bytes; }
    // The position at which the next piece goes on; 0 once the text is whole.
    std::uint32_t index() const noexcept { return isWhole_ ? 0 : text_.length(); }
    void isWholeIs(bool isWhole) noexcept { isWhole_ = isWhole; }
    StringN const& text() const noexcept { return text_; }

  private:
    StringN text_;
    bool isWhole_ = false;
};

constexpr std::size_t StringN<unsigned char>::Data::entries(std::uint32_t length) noexcept {
    constexpr std::size_t exactBelow = 256;
    std::size_t const exact = 3 * sizeof(std::uint32_t) + length + 1;
    if (exact < exactBelow) return exact;
    std::size_t step = exactBelow / 8;
    while (step * 16 <= exact) step *= 2;
    return (exact + step - 1) / step * step;
}

inline void StringN<unsigned char>::Data::take() noexcept {
    if (isSingleThreaded()) {
        count_.store(count_.load(std::memory_order_relaxed) + 1, std::memory_order_relaxed);
    } else {
        count_.fetch_add(1, std::memory_order_relaxed);
    }
}

inline void StringN<unsigned char>::Data::give() noexcept {
    // Who holds the only reference need not change the count: nobody else can take one.
    // NOLINTNEXTLINE(bugprone-branch-clone): the middle one stores, which the last has done.
    if (count_.load(std::memory_order_acquire) == 1) {
        end();
    } else if (isSingleThreaded()) {
        count_.store(count_.load(std::memory_order_relaxed) - 1, std::memory_order_relaxed);
    } else if (count_.fetch_sub(1, std::memory_order_acq_rel) == 1) {
        end();
    }
}

inline bool StringN<unsigned char>::Data::operator==(Data const& other) const noexcept {
    if (length_ != other.length_) return false;
    return std::memcmp(bytes(), other.bytes(), length_) == 0;
}

inline std::uint32_t StringN<unsigned char>::hashOf(Data const& data) noexcept {
    return data.hash();
}

inline StringN<unsigned char>::StringN(StringN const& other) noexcept : data_(other.data_) {
    if (data_ != nullptr) data_->take();
}

inline StringN<unsigned char>::~StringN() {
    if (data_ != nullptr) data_->give();
}

// NOLINTNEXTLINE(bugprone-unhandled-self-assignment): it takes before it gives.
inline StringN<unsigned char>& StringN<unsigned char>::operator=(StringN const& other) noexcept {
    if (other.data_ != nullptr) other.data_->take();
    auto* const old = std::exchange(data_, other.data_);
    if (old != nullptr) old->give();
    return *this;
}

inline StringN<unsigned char>& StringN<unsigned char>::operator=(StringN&& other) noexcept {
    auto* const theirs = std::exchange(other.data_, nullptr);
    auto* const old = std::exchange(data_, theirs);
    if (old != nullptr) old->give();
    return *this;
}

inline std::uint32_t StringN<unsigned char>::length() const noexcept {
    return data_ != nullptr ? data_->length() : 0;
}

inline char const* StringN<unsigned char>::charPtr() const noexcept {
    return data_ != nullptr ? data_->bytes() : "";
}

inline bool StringN<unsigned char>::equal(StringN const& left, StringN const& right) noexcept {
    if (left.data_ == right.data_) return true;
    if (left.data_ == nullptr || right.data_ == nullptr) return false;
    return *left.data_ == *right.data_;
}

inline StringN<unsigned char>::IteratorConst StringN<unsigned char>::begin() const noexcept {
    return IteratorConst(*this);
}

inline StringN<unsigned char>::IteratorConst StringN<unsigned char>::end() const noexcept {
    return IteratorConst(*this, length());
}

inline StringN<unsigned char>::IteratorConst StringN<unsigned char>::iteratorConst()
    const noexcept {
    return begin();
}

// Writes the bytes as they are, honouring the stream's width.
QOR_EXPORT std::ostream& operator<<(std::ostream& stream, StringN<unsigned char> const& text);

}  // namespace Qor

template <>
struct std::hash<Qor::StringN<unsigned char>> {
    std::size_t operator()(Qor::StringN<unsigned char> const& text) const noexcept {
        return text.hash();
    }
};

#endif
