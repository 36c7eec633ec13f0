// The comment at the head of an emitted file: what made it, from what, and what of it is written by
// hand.
#ifndef MODELC_EMIT_ORIGIN_H
#define MODELC_EMIT_ORIGIN_H

#include <string>
#include <vector>

#include <modelc/check/Model.h>

namespace Modelc {

std::string originText(Unit const& unit, std::vector<std::string> const& byHand);

}  // namespace Modelc

#endif
