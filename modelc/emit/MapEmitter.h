// What keyed values and keyed references have in common: accessors over a map of members of the
// attribute's own class.
#ifndef MODELC_EMIT_MAPEMITTER_H
#define MODELC_EMIT_MAPEMITTER_H

#include <modelc/emit/KeyedEmitter.h>

namespace Modelc {

class MapEmitter : public KeyedEmitter {
  public:
    MapEmitter(Entity const& entity, Attribute const& attribute);

    std::string field() const override;

  protected:
    // A kind fills these holes: Result, what is read and removed; value, the setter's parameter;
    // valueArgument, as it is handed on; store, the statement of the setter.
    //
    // A reader of the member itself; none unless told.
    virtual std::string memberDeclaration() const { return {}; }
    virtual std::string memberDefinition() const { return {}; }

    std::string accessorDeclarations() const final;
    std::string accessorDefinitions() const final;
};

}  // namespace Modelc

#endif
