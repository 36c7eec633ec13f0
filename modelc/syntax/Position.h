// Where a piece of a description stands in its file: line and column, both from 1, the column in
// bytes.
#ifndef MODELC_SYNTAX_POSITION_H
#define MODELC_SYNTAX_POSITION_H

#include <compare>
#include <cstdint>

namespace Modelc {

struct Position {
    std::uint32_t line = 1;
    std::uint32_t column = 1;

    friend auto operator<=>(Position const&, Position const&) = default;
};

}  // namespace Modelc

#endif
