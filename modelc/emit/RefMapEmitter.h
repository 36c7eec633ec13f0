// Keyed references to entities that stand elsewhere: `remoteLocator : refers
// PhysicalLocator[PhysicalLocatorKey]`.
#ifndef MODELC_EMIT_REFMAPEMITTER_H
#define MODELC_EMIT_REFMAPEMITTER_H

#include <modelc/emit/MapEmitter.h>

namespace Modelc {

class RefMapEmitter : public MapEmitter {
  public:
    RefMapEmitter(Entity const& entity, Attribute const& attribute);

  protected:
    std::string memberDeclaration() const override;
    std::string memberDefinition() const override;
};

}  // namespace Modelc

#endif
