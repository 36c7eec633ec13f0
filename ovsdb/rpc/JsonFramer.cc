#include <ovsdb/rpc/JsonFramer.h>

#include <ovsdb/rpc/ProtocolError.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <new>
#include <string>

namespace Ovsdb {
namespace {

enum class Kind : unsigned char { refused, blank, plain, quote, open, close };

constexpr std::array<Kind, 256> kindTable() {
    std::array<Kind, 256> table{};
    for (char c : std::string_view(" \t\r\n")) table[static_cast<unsigned char>(c)] = Kind::blank;
    for (char c : std::string_view("0123456789+-.eE,:truefalsn"))
        table[static_cast<unsigned char>(c)] = Kind::plain;
    table['"'] = Kind::quote;
    table['{'] = table['['] = Kind::open;
    table['}'] = table[']'] = Kind::close;
    return table;
}

constexpr std::array<Kind, 256> kinds = kindTable();

// What stays allocated between values, so that the usual small message costs no allocation.
constexpr std::size_t keptCapacity = std::size_t{1} << 20;

}  // namespace

std::span<char> JsonFramer::prepare(std::size_t room) {
    compact();
    if (end_ + room + padding > capacity_) grow(end_ + room + padding);
    return {data_.get() + end_, capacity_ - padding - end_};
}

// Moves what is left to the front once at least as much was handed out: each byte is moved at most
// once a doubling.
void JsonFramer::compact() {
    if (begin_ == 0 || begin_ < end_ - begin_) return;
    std::size_t const left = end_ - begin_;
    if (left != 0) std::memmove(data_.get(), data_.get() + begin_, left);
    dropped_ += begin_;
    scan_ -= begin_;
    stringBegin_ -= std::min(stringBegin_, begin_);
    begin_ = 0;
    end_ = left;
    if (left == 0 && capacity_ > keptCapacity) {
        data_.reset();
        capacity_ = 0;
    }
}

void JsonFramer::grow(std::size_t need) {
    std::size_t const size = std::max(need, capacity_ + capacity_ / 2);
    char* const grown = static_cast<char*>(std::realloc(data_.get(), size));
    if (grown == nullptr) throw std::bad_alloc();
    static_cast<void>(data_.release());
    data_.reset(grown);
    capacity_ = size;
}

std::optional<std::string_view> JsonFramer::next() {
    if (depth_ == 0 && !inString_) begin_ = scan_;
    while (scan_ < end_) {
        if (inString_ ? scanString() : scanPlain()) {
            std::string_view const value(data_.get() + begin_, scan_ - begin_);
            checkLimit();
            begin_ = scan_;
            return value;
        }
    }
    checkLimit();
    return std::nullopt;
}

void JsonFramer::checkLimit() const {
    if (scan_ - begin_ <= limit_) return;
    throw ProtocolError("a JSON value longer than " + std::to_string(limit_) +
                        " bytes begins at offset " + std::to_string(streamOffset(begin_)));
}

// True when the outermost bracket closed.
bool JsonFramer::scanPlain() {
    char const* const data = data_.get();
    while (scan_ < end_) {
        char const c = data[scan_];
        Kind const kind = kinds[static_cast<unsigned char>(c)];
        if (kind == Kind::plain && depth_ != 0) {
            ++scan_;
            continue;
        }
        if (kind == Kind::blank) {
            ++scan_;
            if (depth_ == 0) begin_ = scan_;
            continue;
        }
        if (kind == Kind::quote && depth_ != 0) {
            stringBegin_ = ++scan_;
            inString_ = true;
            return false;
        }
        if (kind != Kind::open && (kind != Kind::close || depth_ == 0)) refuse(scan_);
        if (scanBracket(c, kind == Kind::open)) return true;
    }
    return false;
}

bool JsonFramer::scanBracket(char bracket, bool opens) {
    if (opens) open(bracket);
    bool const whole = !opens && close(bracket);
    ++scan_;
    return whole;
}

// A quote ends the string unless an odd number of backslashes stands before it. Only the
// backslashes directly before a quote are counted, so none is counted twice.
bool JsonFramer::scanString() {
    char const* const data = data_.get();
    auto const* quote = static_cast<char const*>(std::memchr(data + scan_, '"', end_ - scan_));
    if (quote == nullptr) {
        scan_ = end_;
        return false;
    }
    std::size_t const at = static_cast<std::size_t>(quote - data);
    std::size_t slash = at;
    while (slash > stringBegin_ && data[slash - 1] == '\\') --slash;
    inString_ = (at - slash) % 2 != 0;
    scan_ = at + 1;
    if (inString_) stringBegin_ = scan_;
    return false;
}

void JsonFramer::open(char bracket) {
    if (depth_ == maxDepth)
        throw ProtocolError("JSON nested deeper than " + std::to_string(maxDepth) +
                            " levels at offset " + std::to_string(streamOffset(scan_)));
    std::uint64_t const bit = std::uint64_t{1} << depth_;
    kinds_ = bracket == '[' ? kinds_ | bit : kinds_ & ~bit;
    ++depth_;
}

bool JsonFramer::close(char bracket) {
    bool const square = (kinds_ >> (depth_ - 1) & 1) != 0;
    if (square != (bracket == ']')) refuse(scan_);
    return --depth_ == 0;
}

void JsonFramer::refuse(std::size_t at) const {
    unsigned const byte = static_cast<unsigned char>(data_.get()[at]);
    std::array<char, 40> shown{};
    if (byte > 0x20 && byte < 0x7f)
        std::snprintf(shown.data(), shown.size(), "'%c'", static_cast<int>(byte));
    else
        std::snprintf(shown.data(), shown.size(), "byte 0x%02x", byte);
    throw ProtocolError(std::string("not JSON: ") + shown.data() + " at offset " +
                        std::to_string(streamOffset(at)) +
                        (depth_ == 0 ? ", where an object or array was expected" : ""));
}

}  // namespace Ovsdb
