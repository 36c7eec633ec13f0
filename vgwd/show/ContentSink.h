#ifndef VGWD_SHOW_CONTENT_SINK_H
#define VGWD_SHOW_CONTENT_SINK_H

// Where the contents of the mirror go as text: an object of named members, which are objects,
// values and lists again. Members come in ascending order of their names.

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace Vgwd {

// A text or a number.
struct Cell {
    Cell(std::string_view t) : text(t) {}
    Cell(std::uint64_t n) : text(std::to_string(n)), isNumber(true) {}

    std::string text;
    bool isNumber = false;
};

using CellPair = std::pair<Cell, Cell>;

class ContentSink {
  public:
    virtual ~ContentSink() = default;

    virtual void begin(std::string_view name) = 0;
    virtual void end() = 0;
    virtual void value(std::string_view name, Cell const& cell) = 0;
    virtual void list(std::string_view name, std::vector<Cell> const& cells) = 0;
    virtual void pairs(std::string_view name, std::vector<CellPair> const& pairs) = 0;
};

}  // namespace Vgwd

#endif
