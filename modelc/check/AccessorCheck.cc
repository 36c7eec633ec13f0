#include <modelc/check/AccessorCheck.h>

#include <algorithm>
#include <map>
#include <vector>

#include <modelc/check/Spelling.h>

namespace Modelc {
namespace {

std::vector<std::string> accessorsOf(Attribute const& attribute) {
    Spelling const spelling(attribute.name);
    switch (attribute.kind) {
        case AttributeKind::scalar:
            return spelling.scalarAccessors();
        case AttributeKind::constructed:
            return {};
        case AttributeKind::child:
            return spelling.childAccessors();
        case AttributeKind::set:
        case AttributeKind::map:
        case AttributeKind::reference:
        case AttributeKind::owning:
            break;
    }
    return spelling.keyedAccessors();
}

std::vector<std::string> spellingsOf(Member const& member) {
    std::vector<std::string> result{nameOf(member)};
    if (auto const* attribute = std::get_if<Attribute>(&member)) {
        std::vector<std::string> const accessors = accessorsOf(*attribute);
        result.insert(result.end(), accessors.begin(), accessors.end());
    }
    return result;
}

Position positionOf(Tree::Entity const& tree, std::string const& name) {
    auto const found =
        std::find_if(tree.members.begin(), tree.members.end(),
                     [&](Tree::EntityMember const& m) { return m.name.text == name; });
    return found == tree.members.end() ? tree.name.at : found->name.at;
}

using Taken = std::map<std::string, std::string>;

// The first collision alone is told: the further spellings of the two names would only repeat it.
void enter(Context const& context, Tree::Entity const& tree, Member const& member, bool isOwn,
           Taken& taken) {
    std::string const& name = nameOf(member);
    bool isTold = !isOwn;
    for (std::string const& spelling : spellingsOf(member)) {
        auto const [other, isNew] = taken.emplace(spelling, name);
        if (isNew || other->second == name || isTold) continue;
        isTold = true;
        context.report(
            positionOf(tree, name),
            quoted(name) + " and " + quoted(other->second) + " both take " + quoted(spelling),
            "a name whose accessors are its own");
    }
}

}  // namespace

void checkAccessors(Context const& context, Tree::Entity const& tree, Entity const& entity) {
    std::vector<Entity const*> line;
    for (Entity const* at = &entity; at != nullptr; at = at->base) line.push_back(at);
    Taken taken;
    for (auto at = line.rbegin(); at != line.rend(); ++at) {
        for (Member const& member : (*at)->members) {
            enter(context, tree, member, *at == &entity, taken);
        }
    }
}

}  // namespace Modelc
