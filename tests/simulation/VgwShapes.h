// The shapes of the system's classes, and of the simulation's own.
#ifndef TESTS_SIMULATION_VGWSHAPES_H
#define TESTS_SIMULATION_VGWSHAPES_H

#include "Shape.h"

namespace Sim {

std::vector<Shape const*> vgwShapes(Knowledge knowledge);
std::vector<Shape const*> labShapes(Knowledge knowledge);
std::vector<Shape const*> tiesShapes(Knowledge knowledge);
std::vector<Shape const*> lateShapes(Knowledge knowledge);

}  // namespace Sim

#endif
