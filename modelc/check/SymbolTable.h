// Names -> types, and which file sees which.
//
// A name is looked up in the namespace of the file that uses it, then in the namespaces around that
// one; a file sees what it declares and what its imports see.
#ifndef MODELC_CHECK_SYMBOLTABLE_H
#define MODELC_CHECK_SYMBOLTABLE_H

#include <map>
#include <set>
#include <string>

#include <modelc/check/Model.h>
#include <modelc/syntax/Diagnostics.h>

namespace Modelc {

struct Symbol {
    Type const* type = nullptr;
    Place place;
    std::set<Unit const*>
        units;  // by which it is declared; more than one for a type written by hand
};

class SymbolTable {
  public:
    // False if the name is taken.
    bool add(Type const* type, Place place, Unit const* unit);
    // Another unit declares the same hand-written type.
    void share(std::string const& fullName, Unit const* unit);

    Symbol const* symbol(std::string const& fullName) const;
    // As `unit` sees it; null if it sees no such name.
    Symbol const* lookUp(std::string const& name, Unit const& unit) const;

    void visibleIs(Unit const* from, Unit const* imported);

  private:
    Symbol const* visible(std::string const& fullName, Unit const& unit) const;

    std::map<std::string, Symbol> symbols_;
    std::map<Unit const*, std::set<Unit const*>> sees_;
};

}  // namespace Modelc

#endif
