#include "ShapeOf.h"
#include "VgwShapes.h"

#include <late/LateList.h>
#include <late/attrlog/Comet.h>
#include <late/attrlog/Nova.h>
#include <late/attrlog/Star.h>

namespace Sim {

std::vector<Shape const*> lateShapes(Knowledge knowledge) {
    std::vector<Shape const*> all;
    Late::LateEntities::forEach([&]<class X>() { all.push_back(&shapeOf<X>(knowledge)); });
    return all;
}

}  // namespace Sim
