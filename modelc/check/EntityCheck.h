// Third pass of the check: entities, bases before the classes derived from them.
#ifndef MODELC_CHECK_ENTITYCHECK_H
#define MODELC_CHECK_ENTITYCHECK_H

#include <cstddef>
#include <set>
#include <string>
#include <vector>

#include <modelc/check/Context.h>
#include <modelc/check/Numbering.h>

namespace Modelc {

class EntityCheck {
  public:
    static constexpr std::uint32_t deepest = 64;

    explicit EntityCheck(Context const& context) : context_(context) {}

    // The base of a class; run over all classes before members() is run over any.
    void base(Tree::Entity const& tree, Entity& result);
    void members(Tree::Entity const& tree, Entity& result);
    // What the class owns can be built from a name; run once members() has been run over all.
    void ownership(Tree::Entity const& tree, Entity const& result);

  private:
    void checkChain(Tree::Entity const& tree, Entity& result);
    void constructor(Tree::Entity const& tree, Entity& result);
    void constructorArgument(Tree::Entity const& tree, Entity& result);
    void kind(Tree::Entity const& tree, Entity& result);
    void member(Tree::EntityMember const& tree, bool gapsAllowed, Numbering& numbering,
                Entity& result);
    bool checkName(Tree::EntityMember const& tree, Entity const& result);
    void attribute(Tree::EntityMember const& tree, Tree::AttributeForm const& form, Entity& result);
    void operation(Tree::EntityMember const& tree, Tree::OperationForm const& form, Entity& result);
    void checkOverride(Tree::EntityMember const& tree, Operation const& declared,
                       Operation& result);

    // The kinds of attribute; each returns whether the form fits.
    bool scalar(Tree::EntityMember const& tree, Tree::AttributeForm const& form, Attribute& result);
    bool keyed(Tree::AttributeForm const& form, Attribute& result);
    bool related(Tree::AttributeForm const& form, Attribute& result);
    // Entities that members name are declared above, or are the class itself.
    bool checkAbove(Tree::Word const& name, Type const* type, Entity const& result);
    bool owned(Tree::AttributeForm const& form, Attribute const& result);
    void checkModifiers(Tree::EntityMember const& tree, Tree::AttributeForm const& form,
                        Attribute const& result);

    Context const& context_;
    std::set<Entity const*>
        baseless_;  // whose base is not known: rules that need it are not held against them
    std::set<Entity const*> complete_;
    std::set<Enumerator const*> kinds_;
};

// The member of that name in the class or its bases; null if there is none.
Member const* findMember(Entity const& entity, std::string const& name);

}  // namespace Modelc

#endif
