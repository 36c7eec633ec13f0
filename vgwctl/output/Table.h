#ifndef VGWCTL_OUTPUT_TABLE_H
#define VGWCTL_OUTPUT_TABLE_H

// Rows under headings, printed in one of the forms that the OVSDB tools have (ovsdb-client(1),
// "Table Formatting Options").

#include <vgwctl/output/ValueText.h>

#include <iosfwd>
#include <string>
#include <vector>

namespace Vgwctl {

enum class Format { table, list, json, csv };

std::string_view nameOf(Format format);

struct TableStyle {
    Format format = Format::table;
    TextForm data = TextForm::string;
    bool hasHeadings = true;
    /// Those alone, in this order; empty: all.
    std::vector<std::string> columns;
};

class Table {
  public:
    using Row = std::vector<Value>;

    explicit Table(std::vector<std::string> headings) : headings_(std::move(headings)) {}

    /// REQUIRES: as many values as there are headings.
    void rowInc(Row row) { rows_.push_back(std::move(row)); }
    std::size_t rows() const { return rows_.size(); }
    std::vector<std::string> const& headings() const { return headings_; }

    /// Prints it all. Raises Failure for a column that it doesn't have.
    void print(std::ostream& to, TableStyle const& style) const;

  private:
    using Columns = std::vector<std::size_t>;

    Columns chosen(TableStyle const& style) const;
    void printTable(std::ostream& to, TableStyle const& style, Columns const& columns) const;
    void printList(std::ostream& to, TableStyle const& style, Columns const& columns) const;
    void printCsv(std::ostream& to, TableStyle const& style, Columns const& columns) const;
    void printJson(std::ostream& to, Columns const& columns) const;

    std::vector<std::string> headings_;
    std::vector<Row> rows_;
};

/// A field of comma separated values (RFC 4180): in double quotes where it has to be.
std::string csvField(std::string const& text);

}  // namespace Vgwctl

#endif
