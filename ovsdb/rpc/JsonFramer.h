#ifndef OVSDB_RPC_JSON_FRAMER_H
#define OVSDB_RPC_JSON_FRAMER_H

// Finds where each JSON value of a byte stream ends (RFC 7047 section 4: values follow each other
// without delimiter, and arrive in any pieces). The framer owns the receive buffer: a caller reads
// into prepare(), tells commit() how much came, and takes whole values with next() until there is
// none.
//
// Each byte is looked at once, however the stream is cut; 23 MB in one value is normal. The buffer
// grows with the bytes that came, never by what a peer announces, and is given back after a great
// value. A byte that can't stand where it is, a bracket that closes another kind, more than 64
// levels and a value over the limit raise ProtocolError with the offset in the stream. Whether a
// framed value is JSON to the last comma is for the parser to say.
//
// A view of next() is followed by at least `padding` readable bytes, and lives until the next call
// of next() or prepare(). Not thread-safe.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <optional>
#include <span>
#include <string_view>

namespace Ovsdb {

class JsonFramer {
  public:
    static constexpr unsigned maxDepth = 64;
    static constexpr std::size_t padding = 64;
    static constexpr std::size_t defaultLimit = std::size_t{1} << 30;

    explicit JsonFramer(std::size_t limit = defaultLimit) : limit_(limit) {}

    /// At least `room` bytes to read into.
    std::span<char> prepare(std::size_t room);
    /// `size` bytes of what prepare() gave were filled. REQUIRES: size <= the room prepared.
    void commit(std::size_t size) { end_ += size; }
    /// The next whole object or array, nothing while it is incomplete.
    std::optional<std::string_view> next();

    /// Bytes of a value that has begun and not ended.
    std::size_t pending() const { return end_ - begin_; }
    /// Bytes of memory held.
    std::size_t capacity() const { return capacity_; }

  private:
    struct Free {
        void operator()(char* p) const { std::free(p); }
    };

    bool scanPlain();
    bool scanBracket(char bracket, bool opens);
    bool scanString();
    void open(char bracket);
    bool close(char bracket);
    void compact();
    void grow(std::size_t need);
    std::size_t streamOffset(std::size_t at) const {
        return static_cast<std::size_t>(dropped_) + at;
    }
    void checkLimit() const;
    [[noreturn]] void refuse(std::size_t at) const;

    std::unique_ptr<char, Free> data_;
    std::size_t capacity_ = 0;
    std::size_t begin_ = 0;        // first byte that is not yet handed out
    std::size_t scan_ = 0;         // first byte that is not yet looked at
    std::size_t end_ = 0;          // end of the bytes received
    std::size_t stringBegin_ = 0;  // behind the quote of the string being scanned
    std::uint64_t dropped_ = 0;    // bytes of the stream that lie before data_[0]
    std::uint64_t kinds_ = 0;      // bit n: the bracket at depth n + 1 is a square one
    unsigned depth_ = 0;
    bool inString_ = false;
    std::size_t limit_;
};

}  // namespace Ovsdb

#endif
