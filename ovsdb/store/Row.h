#ifndef OVSDB_STORE_ROW_H
#define OVSDB_STORE_ROW_H

// The raw values of a row's mirrored columns, as the database has them, in one block of memory:
// where each column ends, then the columns one behind the other in the form of Datum.h. A row never
// changes; equal blocks are equal rows. The raw values are kept beside the model's because
// differences apply to columns, and the model holds some columns in part only. A default-built row
// is no row.

#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace Ovsdb {

class Row {
  public:
    Row() = default;
    /// `ends[i]` is where column i ends in `columns`.
    Row(std::vector<std::uint32_t> const& ends, std::string_view columns);

    explicit operator bool() const { return block_ != nullptr; }
    /// REQUIRES: a row, and column < the number it was built with.
    std::string_view column(std::size_t column) const;

    bool operator==(Row const& other) const;

  private:
    std::uint32_t word(std::size_t at) const {
        std::uint32_t word = 0;
        std::memcpy(&word, block_.get() + 4 * at, 4);
        return word;
    }

    std::unique_ptr<char[]> block_;  // number of columns, their ends, their bytes
};

// Gathers the columns of one row after another; its memory is used again.
class RowBuilder {
  public:
    /// The bytes of the row so far: append to it, then call endColumn().
    std::string& bytes() { return bytes_; }
    void endColumn() { ends_.push_back(static_cast<std::uint32_t>(bytes_.size())); }
    /// The row; the builder is empty again.
    Row take();
    void reset();

  private:
    std::string bytes_;
    std::vector<std::uint32_t> ends_;
};

}  // namespace Ovsdb

#endif
