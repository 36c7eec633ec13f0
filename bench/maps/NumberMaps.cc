#include "MapRows.h"

#include "Columns.h"

namespace Bench {

void addNumberMaps() {
    addMapColumns<std::uint32_t, std::uint32_t>("u32", [](std::size_t count) {
        auto const all = static_cast<std::uint32_t>(count);
        return MapSources<std::uint32_t>{numbers(count, 1), numbers(count, all + 1)};
    });
}

}  // namespace Bench
