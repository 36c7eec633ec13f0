// First pass of the check: each file becomes a unit, each class and each hand-written type a name
// that can be found.
#ifndef MODELC_CHECK_DECLAREUNITS_H
#define MODELC_CHECK_DECLAREUNITS_H

#include <deque>
#include <map>
#include <string>
#include <vector>

#include <modelc/check/Context.h>
#include <modelc/check/Sources.h>

namespace Modelc {

// A class under construction, and the tree that it is made of.
template <typename TreeClass, typename ModelClass>
struct Declared {
    TreeClass const* tree = nullptr;
    ModelClass* made = nullptr;
};

// A unit, the file it comes from, and its classes in the order of their declaration.
struct DeclaredUnit {
    Unit* unit = nullptr;
    SourceFile const* source = nullptr;
    std::vector<Declared<Tree::Enumeration, Enumeration>> enumerations;
    std::vector<Declared<Tree::Value, Value>> values;
    std::vector<Declared<Tree::Entity, Entity>> entities;
};

class DeclareUnits {
  public:
    explicit DeclareUnits(Context& context);

    void builtins();
    DeclaredUnit unit(SourceFile const& source);

  private:
    void settings(Tree::File const& tree);
    void needFolder(Tree::Word const& folder, bool isUsed, std::string const& setting);
    void external(Tree::External const& tree);
    void declaration(Tree::Declaration const& tree, DeclaredUnit& unit);
    Type& newType(TypeKind kind);
    bool declare(Type& type, Tree::Word const& name, std::string const& folder);
    // The class of a tree, in the model and in the unit; null, and reported, if its name is taken.
    template <typename ModelClass, typename TreeClass>
    ModelClass* newClass(TreeClass const& tree, Type& type, std::string const& folder,
                         std::deque<ModelClass>& all);

    Context& context_;
    std::map<std::string, std::string> unitNames_;
    std::map<std::string, std::string> headers_;
};

}  // namespace Modelc

#endif
