#include "ShapeOf.h"
#include "VgwShapes.h"

#include <lab/LabList.h>
#include <lab/attrlog/Branch.h>
#include <lab/attrlog/Leaf.h>
#include <lab/attrlog/Node.h>

namespace Sim {

std::vector<Shape const*> labShapes(Knowledge knowledge) {
    std::vector<Shape const*> all;
    Lab::LabEntities::forEach([&]<class X>() { all.push_back(&shapeOf<X>(knowledge)); });
    return all;
}

}  // namespace Sim
