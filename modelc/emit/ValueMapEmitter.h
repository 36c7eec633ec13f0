// Keyed values: a set, `fault : Bool[Qor::String8]`, or a map, `vlanBinding : Qor::String8[U16]`.
#ifndef MODELC_EMIT_VALUEMAPEMITTER_H
#define MODELC_EMIT_VALUEMAPEMITTER_H

#include <modelc/emit/MapEmitter.h>

namespace Modelc {

class ValueMapEmitter : public MapEmitter {
  public:
    ValueMapEmitter(Entity const& entity, Attribute const& attribute);
};

}  // namespace Modelc

#endif
