// Keyed values: a set, `fault : Bool[Qor::String8]`, or a map, `vlanBinding : Qor::String8[U16]`.
#ifndef MODELC_EMIT_VALUEMAPEMITTER_H
#define MODELC_EMIT_VALUEMAPEMITTER_H

#include <modelc/emit/KeyedEmitter.h>

namespace Modelc {

class ValueMapEmitter : public KeyedEmitter {
  public:
    ValueMapEmitter(Entity const& entity, Attribute const& attribute);

    std::string field() const override;

  protected:
    std::string accessorDeclarations() const override;
    std::string accessorDefinitions() const override;
};

}  // namespace Modelc

#endif
