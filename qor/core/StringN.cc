#include <qor/core/StringN.h>

#include <qor/core/Exception.h>
#include <qor/core/Format.h>
#include <qor/core/Pool.h>
#include <qor/core/TextHash.h>

#include <algorithm>
#include <new>
#include <ostream>

namespace Qor {

namespace {

using Text = StringN<unsigned char>;

std::uint32_t checkedLength(std::size_t length) {
    if (length > Text::maxLength) {
        throwRangeException(format("a text of %llu bytes is over the limit of %u",
                                   static_cast<unsigned long long>(length), Text::maxLength));
    }
    return static_cast<std::uint32_t>(length);
}

}  // namespace

Text::Data* Text::Data::make(std::uint32_t length) {
    static_assert(sizeof(Data) == 3 * sizeof(std::uint32_t),
                  "entries() counts the head as three words");
    auto* const data = new (memNew(entries(length))) Data(length);
    data->bytes()[length] = '\0';
    return data;
}

void Text::Data::end() noexcept {
    auto const size = entries(length_);
    this->~Data();
    memDel(this, size);
}

std::uint32_t Text::Data::computeHash() const noexcept {
    auto const hash = hashOfText({bytes(), length_});
    hash_.store(hash, std::memory_order_relaxed);
    return hash;
}

void Text::Data::lengthIs(std::uint32_t length) noexcept {
    length_ = length;
    bytes()[length] = '\0';
    hash_.store(0, std::memory_order_relaxed);
}

Text::Data* Text::copyOf(std::string_view text) {
    if (text.empty()) return nullptr;
    auto* const data = Data::make(checkedLength(text.size()));
    std::memcpy(data->bytes(), text.data(), text.size());
    return data;
}

Text::Data* Text::joined(std::string_view left, std::string_view right) {
    if (left.empty()) return copyOf(right);
    if (right.empty()) return copyOf(left);
    auto* const data = Data::make(checkedLength(left.size() + right.size()));
    std::memcpy(data->bytes(), left.data(), left.size());
    std::memcpy(data->bytes() + left.size(), right.data(), right.size());
    return data;
}

StringN<unsigned char>::StringN(char const* text) : data_(copyOf(textOf(text))) {}

StringN<unsigned char>::StringN(std::string_view text) : data_(copyOf(text)) {}

Text& Text::operator=(char const* text) { return *this = Text(text); }

void Text::init(char const* buffer, unsigned int start, unsigned int length) {
    *this = buffer != nullptr ? Text(std::string_view(buffer + start, length)) : Text();
}

bool Text::appendInPlace(std::string_view text) noexcept {
    if (data_ == nullptr || data_->isShared()) return false;
    auto const length = std::size_t{data_->length()} + text.size();
    if (length > maxLength) return false;
    auto const newLength = static_cast<std::uint32_t>(length);
    if (Data::entries(newLength) != Data::entries(data_->length())) return false;
    std::memmove(data_->bytes() + data_->length(), text.data(), text.size());
    data_->lengthIs(newLength);
    return true;
}

Text& Text::operator+=(std::string_view text) {
    if (text.empty() || appendInPlace(text)) return *this;
    auto* const data = joined(view(), text);
    auto* const old = std::exchange(data_, data);
    if (old != nullptr) old->give();
    return *this;
}

Text& Text::operator+=(Text const& other) {
    if (data_ == nullptr) return *this = other;
    return *this += other.view();
}

Text& Text::operator+=(char const* text) { return *this += textOf(text); }

Text Text::operator+(Text const& other) const {
    if (other.data_ == nullptr) return *this;
    if (data_ == nullptr) return other;
    Text sum;
    sum.data_ = joined(view(), other.view());
    return sum;
}

Text Text::substr(long long start, unsigned int count) const {
    long long const size = length();
    long long const begin = start >= 0 ? start : start < -size ? 0 : size + start;
    if (begin >= size || count == 0) return Text();
    if (begin == 0 && count >= size) return *this;
    return Text(view().substr(static_cast<std::size_t>(begin), count));
}

std::uint32_t Text::hashOfEmpty() noexcept {
    constexpr std::uint32_t hash = hashOfText({});
    return hash;
}

std::ostream& operator<<(std::ostream& stream, Text const& text) { return stream << text.view(); }

}  // namespace Qor
