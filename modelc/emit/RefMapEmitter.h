// Keyed references to entities that stand elsewhere: `remoteLocator : refers
// PhysicalLocator[PhysicalLocatorKey]`.
#ifndef MODELC_EMIT_REFMAPEMITTER_H
#define MODELC_EMIT_REFMAPEMITTER_H

#include <modelc/emit/KeyedEmitter.h>

namespace Modelc {

class RefMapEmitter : public KeyedEmitter {
  public:
    RefMapEmitter(Entity const& entity, Attribute const& attribute);

    std::string field() const override;

  protected:
    std::string accessorDeclarations() const override;
    std::string accessorDefinitions() const override;
};

}  // namespace Modelc

#endif
