// The two files of an entity: its header, and the source with what need not be inline.
#ifndef MODELC_EMIT_ENTITYEMITTER_H
#define MODELC_EMIT_ENTITYEMITTER_H

#include <memory>
#include <string>
#include <vector>

#include <modelc/check/Model.h>
#include <modelc/emit/Holes.h>
#include <modelc/emit/MemberEmitter.h>

namespace Modelc {

class EntityEmitter {
  public:
    explicit EntityEmitter(Entity const& entity);

    std::string header() const;
    std::string source() const;

  private:
    void nameHoles();
    void constructorHoles();
    void memberHoles();
    std::string descriptorNames() const;
    std::string descriptorList() const;
    std::string includes() const;
    std::string origin() const;
    std::string declarations() const;
    bool hasKeyed() const;
    bool hasOwned() const;

    std::string classBody() const;
    std::string overrides() const;
    std::string overrideDefinitions() const;
    std::string destructorDefinition() const;
    std::string privatePart() const;
    std::string notifieeClasses() const;
    std::string notifieeDefinitions() const;
    std::string pendingKeysDrop() const;
    std::string factoryDeclaration() const;
    std::string factoryDefinition() const;
    std::string fillIn(std::string_view text) const { return fill(text, holes_); }

    Entity const& entity_;
    std::vector<std::unique_ptr<MemberEmitter>> members_;
    Holes holes_;
};

}  // namespace Modelc

#endif
