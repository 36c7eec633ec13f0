#include <qor/core/String8.h>

#include "MapRows.h"

#include "Columns.h"

namespace Bench {

void addTextMaps() {
    addMapColumns<std::string, Qor::String8>("UUID", [](std::size_t count) {
        return MapSources<std::string>{uuids(count, 1), uuids(count, 2)};
    });
}

}  // namespace Bench
