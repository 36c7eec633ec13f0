// The two files that bind an entity's class to the attribute log: the class's stream adapter with
// its resynchronisation state and the notifiee that hears for it.
#ifndef MODELC_EMIT_ATTRLOGEMITTER_H
#define MODELC_EMIT_ATTRLOGEMITTER_H

#include <memory>
#include <string>
#include <vector>

#include <modelc/check/Model.h>
#include <modelc/emit/AttrLogMember.h>
#include <modelc/emit/Holes.h>

namespace Modelc {

// What the adapter of the class is included by.
std::string adapterHeader(Entity const& entity);

class AttrLogEmitter {
  public:
    explicit AttrLogEmitter(Entity const& entity);

    std::string header() const;
    std::string source() const;

  private:
    void nameHoles();
    void docHoles();
    void memberHoles();
    std::string streamNames() const;
    std::string streamList() const;
    // The handlers of the class and of its bases, base first.
    std::string forwardings() const;
    std::string headerIncludes() const;
    std::string sourceIncludes() const;
    std::string classBody() const;
    std::string flowOutClass() const;
    std::string companionClass() const;
    std::string entityDefinitions() const;
    std::string adapterDefinitions() const;
    std::string fillIn(std::string_view text) const { return fill(text, holes_); }

    Entity const& entity_;
    std::vector<std::unique_ptr<AttrLogMember>> members_;
    Holes holes_;
};

}  // namespace Modelc

#endif
