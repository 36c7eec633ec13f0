// Owned entities, keyed by their names: `logicalSwitch : owns LogicalSwitch[Qor::Name]`.
#ifndef MODELC_EMIT_CHILDMAPEMITTER_H
#define MODELC_EMIT_CHILDMAPEMITTER_H

#include <modelc/emit/KeyedEmitter.h>

namespace Modelc {

class ChildMapEmitter : public KeyedEmitter {
  public:
    ChildMapEmitter(Entity const& entity, Attribute const& attribute);

    std::string field() const override;
    bool isOwner() const override { return true; }

  protected:
    std::string accessorDeclarations() const override;
    std::string accessorDefinitions() const override;
};

}  // namespace Modelc

#endif
