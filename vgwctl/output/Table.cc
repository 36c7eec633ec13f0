#include <vgwctl/output/Table.h>

#include <vgwctl/options/Failure.h>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <numeric>
#include <ostream>

namespace Vgwctl {
namespace {

constexpr std::size_t listWidth = 20;

// Characters that a text takes on a terminal, near enough: continuation bytes take none.
std::size_t widthOf(std::string_view text) {
    return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), [](char c) {
        return (static_cast<unsigned char>(c) >> 6) != 2;
    }));
}

void pad(std::string& line, std::string_view text, std::size_t width) {
    line += text;
    line.append(width - std::min(width, widthOf(text)), ' ');
}

void printLine(std::ostream& to, std::string line) {
    line.erase(line.find_last_not_of(' ') + 1);
    to << line << '\n';
}

}  // namespace

std::string_view nameOf(Format format) {
    switch (format) {
        case Format::table:
            return "table";
        case Format::list:
            return "list";
        case Format::json:
            return "json";
        case Format::csv:
            break;
    }
    return "csv";
}

std::string csvField(std::string const& text) {
    if (text.find_first_of("\",\r\n") == std::string::npos) return text;
    std::string field = "\"";
    for (char const c : text) {
        if (c == '"') field += '"';
        field += c;
    }
    return field + '"';
}

Table::Columns Table::chosen(TableStyle const& style) const {
    Columns columns(headings_.size());
    std::iota(columns.begin(), columns.end(), std::size_t{0});
    if (style.columns.empty()) return columns;
    columns.clear();
    for (std::string const& name : style.columns) {
        auto const found = std::find(headings_.begin(), headings_.end(), name);
        if (found == headings_.end()) {
            std::string known;
            for (std::string const& heading : headings_)
                known += (known.empty() ? "" : ", ") + heading;
            throw Failure("there is no column " + name + "; there are " + known);
        }
        columns.push_back(static_cast<std::size_t>(found - headings_.begin()));
    }
    return columns;
}

void Table::print(std::ostream& to, TableStyle const& style) const {
    Columns const columns = chosen(style);
    switch (style.format) {
        case Format::table:
            return printTable(to, style, columns);
        case Format::list:
            return printList(to, style, columns);
        case Format::csv:
            return printCsv(to, style, columns);
        case Format::json:
            return printJson(to, columns);
    }
}

void Table::printTable(std::ostream& to, TableStyle const& style, Columns const& columns) const {
    std::vector<std::size_t> widths;
    for (std::size_t const column : columns)
        widths.push_back(style.hasHeadings ? widthOf(headings_[column]) : 0);
    std::vector<std::vector<std::string>> cells;
    for (Row const& row : rows_) {
        auto& line = cells.emplace_back();
        for (std::size_t n = 0; n < columns.size(); ++n) {
            line.push_back(textOf(row[columns[n]], style.data));
            widths[n] = std::max(widths[n], widthOf(line.back()));
        }
    }
    auto const printCells = [&](auto const& cellAt) {
        std::string line;
        for (std::size_t n = 0; n < columns.size(); ++n)
            pad(line, cellAt(n), widths[n] + (n + 1 < columns.size() ? 1 : 0));
        printLine(to, std::move(line));
    };
    if (style.hasHeadings) {
        printCells([&](std::size_t n) { return headings_[columns[n]]; });
        printCells([&](std::size_t n) { return std::string(widths[n], '-'); });
    }
    for (auto const& line : cells) printCells([&](std::size_t n) { return line[n]; });
}

void Table::printList(std::ostream& to, TableStyle const& style, Columns const& columns) const {
    bool isFirst = true;
    for (Row const& row : rows_) {
        if (!isFirst) to << '\n';
        isFirst = false;
        for (std::size_t const column : columns) {
            std::string line;
            if (style.hasHeadings) {
                pad(line, headings_[column], listWidth);
                line += ": ";
            }
            printLine(to, line + textOf(row[column], style.data));
        }
    }
}

void Table::printCsv(std::ostream& to, TableStyle const& style, Columns const& columns) const {
    auto const printFields = [&](auto const& fieldAt) {
        std::string line;
        for (std::size_t const column : columns)
            line += (column == columns.front() ? "" : ",") + csvField(fieldAt(column));
        to << line << '\n';
    };
    if (style.hasHeadings) printFields([&](std::size_t column) { return headings_[column]; });
    for (Row const& row : rows_)
        printFields([&](std::size_t column) { return textOf(row[column], style.data); });
}

void Table::printJson(std::ostream& to, Columns const& columns) const {
    nlohmann::json table{{"headings", nlohmann::json::array()}, {"data", nlohmann::json::array()}};
    for (std::size_t const column : columns) table["headings"].push_back(headings_[column]);
    for (Row const& row : rows_) {
        nlohmann::json line = nlohmann::json::array();
        for (std::size_t const column : columns) line.push_back(jsonOf(row[column]));
        table["data"].push_back(std::move(line));
    }
    to << jsonText(table) << '\n';
}

}  // namespace Vgwctl
