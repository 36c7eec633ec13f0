#include <ovsdb/store/Row.h>

namespace Ovsdb {

Row::Row(std::vector<std::uint32_t> const& ends, std::string_view columns)
    : block_(std::make_unique_for_overwrite<char[]>(4 + 4 * ends.size() + columns.size())) {
    auto const count = static_cast<std::uint32_t>(ends.size());
    std::memcpy(block_.get(), &count, 4);
    std::memcpy(block_.get() + 4, ends.data(), 4 * ends.size());
    std::memcpy(block_.get() + 4 + 4 * ends.size(), columns.data(), columns.size());
}

std::string_view Row::column(std::size_t column) const {
    std::size_t const from = column == 0 ? 0 : word(column);
    char const* const bytes = block_.get() + 4 + 4 * std::size_t{word(0)};
    return {bytes + from, word(column + 1) - from};
}

bool Row::operator==(Row const& other) const {
    if (!block_ || !other.block_) return block_ == other.block_;
    std::size_t const size = 4 + 4 * std::size_t{word(0)};
    if (std::memcmp(block_.get(), other.block_.get(), size) != 0) return false;
    return std::memcmp(block_.get() + size, other.block_.get() + size, word(word(0))) == 0;
}

Row RowBuilder::take() {
    Row row(ends_, bytes_);
    reset();
    return row;
}

void RowBuilder::reset() {
    bytes_.clear();
    ends_.clear();
}

}  // namespace Ovsdb
