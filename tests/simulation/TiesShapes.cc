#include "ShapeOf.h"
#include "VgwShapes.h"

#include <ties/TiesList.h>
#include <ties/attrlog/Knot.h>
#include <ties/attrlog/Target.h>

namespace Sim {

std::vector<Shape const*> tiesShapes(Knowledge knowledge) {
    std::vector<Shape const*> all;
    Ties::TiesEntities::forEach([&]<class X>() { all.push_back(&shapeOf<X>(knowledge)); });
    return all;
}

}  // namespace Sim
