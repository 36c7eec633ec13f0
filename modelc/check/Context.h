// What every rule needs: the model under construction, the names, and the file whose description is
// being held against it.
#ifndef MODELC_CHECK_CONTEXT_H
#define MODELC_CHECK_CONTEXT_H

#include <cstdint>
#include <string>
#include <string_view>

#include <modelc/check/Model.h>
#include <modelc/check/SymbolTable.h>
#include <modelc/syntax/Diagnostics.h>
#include <modelc/syntax/Tree.h>

namespace Modelc {

struct Context {
    Model& model;
    SymbolTable& symbols;
    Diagnostics& diagnostics;
    // Pieces of the run could not be read: a name that nobody declares may stand in one of them,
    // and is no error then.
    bool isIncomplete = false;
    Unit* unit = nullptr;
    std::uint32_t file = 0;

    void report(Position at, std::string what, std::string expected) const {
        diagnostics.report({file, at}, std::move(what), std::move(expected));
    }

    // The type of that name; null, and reported, if there is none.
    Type const* resolve(Tree::Word const& name, std::string_view expected) const {
        if (Symbol const* found = symbols.lookUp(name.text, *unit)) return found->type;
        if (!isIncomplete) {
            report(name.at, "unknown type " + quoted(name.text), std::string(expected));
        }
        return nullptr;
    }
};

}  // namespace Modelc

#endif
