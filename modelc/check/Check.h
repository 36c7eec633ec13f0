// Trees -> the checked model.
//
// All rules of the language are held here. If any is broken the model is not to be used; if none
// is, every pointer in the model that its comments do not allow to be null is set.
#ifndef MODELC_CHECK_CHECK_H
#define MODELC_CHECK_CHECK_H

#include <modelc/check/Model.h>
#include <modelc/check/Sources.h>
#include <modelc/syntax/Diagnostics.h>

namespace Modelc {

void check(Sources const& sources, Model& model, Diagnostics& diagnostics);

}  // namespace Modelc

#endif
