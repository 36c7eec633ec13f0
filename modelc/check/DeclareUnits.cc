#include <modelc/check/DeclareUnits.h>

#include <algorithm>

#include <modelc/check/Builtins.h>
#include <modelc/check/NameRules.h>
#include <modelc/check/ReservedNames.h>

namespace Modelc {
namespace {

bool isPlainFolder(std::string const& folder) {
    auto const isPart = [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
               c == '_' || c == '-' || c == '/';
    };
    return !folder.empty() && folder.front() != '/' && folder.back() != '/' &&
           folder.find("//") == std::string::npos &&
           std::all_of(folder.begin(), folder.end(), isPart);
}

std::string siblingFolder(std::string const& folder, std::string const& name) {
    std::size_t const at = folder.rfind('/');
    return at == std::string::npos ? name : folder.substr(0, at + 1) + name;
}

bool isCxxName(std::string const& qualified) {
    std::size_t first = 0;
    for (;;) {
        std::size_t const end = qualified.find("::", first);
        std::string const part = qualified.substr(first, end - first);
        if (isCxxKeyword(part) || part.starts_with("_") || part.find("__") != std::string::npos) {
            return false;
        }
        if (end == std::string::npos) return true;
        first = end + 2;
    }
}

}  // namespace

DeclareUnits::DeclareUnits(Context& context) : context_(context) {}

void DeclareUnits::builtins() {
    for (BuiltinType const& builtin : builtinTypes()) {
        Type& type = context_.model.types.emplace_back();
        type.fullName = builtin.name;
        type.builtin = builtin.kind;
        type.byReference = builtin.byReference;
        context_.symbols.add(&type, {}, nullptr);
    }
}

DeclaredUnit DeclareUnits::unit(SourceFile const& source) {
    Unit& unit = context_.model.units.emplace_back();
    unit.file = source.name;
    context_.unit = &unit;
    context_.file = source.file;
    settings(source.tree);
    for (Tree::External const& tree : source.tree.externals) external(tree);
    DeclaredUnit result;
    result.unit = &unit;
    result.source = &source;
    for (Tree::Declaration const& tree : source.tree.declarations) declaration(tree, result);
    return result;
}

void DeclareUnits::settings(Tree::File const& tree) {
    Unit& unit = *context_.unit;
    unit.doc = tree.doc;
    unit.name = tree.unit.text;
    unit.nameSpace = tree.nameSpace.text;
    unit.exportMacro = tree.exportMacro.text;
    unit.exportHeader = tree.exportHeader.text;
    unit.valuesFolder = tree.valuesFolder.text;
    unit.entitiesFolder = tree.entitiesFolder.text;
    unit.adaptersFolder = siblingFolder(unit.entitiesFolder, "attrlog");
    unit.operationsFolder = tree.operationsFolder.text;
    if (!tree.damaged && unit.name.empty()) {
        context_.report({}, "the description has no unit", "unit NAME;");
    } else if (!unit.name.empty() && !unitNames_.emplace(unit.name, unit.file).second) {
        context_.report(tree.unit.at, "unit " + quoted(unit.name) + " is declared by another file",
                        "a name of its own");
    }
    if (!tree.damaged && unit.nameSpace.empty()) {
        context_.report({}, "the description has no namespace", "namespace NAME;");
    } else if (!isCxxName(unit.nameSpace)) {
        context_.report(tree.nameSpace.at, quoted(unit.nameSpace) + " cannot be a namespace",
                        "names that are no words of C++ and begin with no _");
    }
    auto const isEntity = [](Tree::Declaration const& d) {
        return std::holds_alternative<Tree::Entity>(d);
    };
    auto const& all = tree.declarations;
    bool const hasEntities = std::any_of(all.begin(), all.end(), isEntity);
    bool const hasValues = !std::all_of(all.begin(), all.end(), isEntity);
    needFolder(tree.valuesFolder, hasValues && !tree.damaged, "folder values \"...\";");
    needFolder(tree.entitiesFolder, hasEntities && !tree.damaged, "folder entities \"...\";");
    needFolder(tree.operationsFolder, false, "");
}

void DeclareUnits::needFolder(Tree::Word const& folder, bool isUsed, std::string const& setting) {
    if (folder.text.empty() && isUsed) {
        context_.report(folder.at, "the description does not say where its classes go", setting);
    } else if (!folder.text.empty() && !isPlainFolder(folder.text)) {
        context_.report(folder.at, quoted(folder.text) + " cannot be a folder of headers",
                        "a relative path of letters, digits, _ and - such as \"vgw/tables\"");
    }
}

void DeclareUnits::external(Tree::External const& tree) {
    Symbol const* const known = context_.symbols.symbol(tree.name.text);
    if (known != nullptr) {
        Type const& type = *known->type;
        bool const isSame = type.kind == TypeKind::external && type.header == tree.header.text &&
                            type.byReference == tree.byReference;
        bool const isTwice = known->units.contains(context_.unit);
        if (isSame && !isTwice) {
            context_.symbols.share(tree.name.text, context_.unit);
        } else {
            context_.report(tree.name.at, quoted(tree.name.text) + " is declared already",
                            isTwice ? "one declaration in a description"
                                    : "the same header and passing everywhere");
        }
        return;
    }
    if (tree.name.text.find("::") == std::string::npos) {
        context_.report(tree.name.at, quoted(tree.name.text) + " has no namespace",
                        "the full name of a value class, such as Kelp::IpAddr");
        return;
    }
    Type& type = context_.model.types.emplace_back();
    type.kind = TypeKind::external;
    type.fullName = tree.name.text;
    type.header = tree.header.text;
    type.byReference = tree.byReference;
    context_.symbols.add(&type, {context_.file, tree.name.at}, context_.unit);
}

bool DeclareUnits::declare(Type& type, Tree::Word const& name, std::string const& folder) {
    checkClassName(context_, name);
    type.fullName = context_.unit->nameSpace + "::" + name.text;
    type.header = folder + "/" + name.text + ".h";
    if (!context_.symbols.add(&type, {context_.file, name.at}, context_.unit)) {
        context_.report(name.at, quoted(type.fullName) + " is declared already",
                        "a name of its own");
        return false;
    }
    auto const [other, isNew] = headers_.emplace(type.header, type.fullName);
    if (!isNew) {
        context_.report(name.at,
                        "the header <" + type.header + "> has " + other->second + " already",
                        "another name or another folder");
    }
    return true;
}

Type& DeclareUnits::newType(TypeKind kind) {
    Type& type = context_.model.types.emplace_back();
    type.kind = kind;
    type.byReference = kind == TypeKind::value;
    return type;
}

template <typename ModelClass, typename TreeClass>
ModelClass* DeclareUnits::newClass(TreeClass const& tree, Type& type, std::string const& folder,
                                   std::deque<ModelClass>& all) {
    if (!declare(type, tree.name, folder)) return nullptr;
    ModelClass& result = all.emplace_back();
    result.unit = context_.unit;
    result.type = &type;
    result.name = tree.name.text;
    result.doc = tree.doc;
    context_.unit->classes.emplace_back(&result);
    return &result;
}

void DeclareUnits::declaration(Tree::Declaration const& declaration, DeclaredUnit& unit) {
    std::string const& values = unit.unit->valuesFolder;
    if (auto const* enumeration = std::get_if<Tree::Enumeration>(&declaration)) {
        Type& type = newType(TypeKind::enumeration);
        Enumeration* made = newClass(*enumeration, type, values, context_.model.enumerations);
        type.enumeration = made;
        if (made != nullptr) unit.enumerations.push_back({enumeration, made});
    } else if (auto const* value = std::get_if<Tree::Value>(&declaration)) {
        Type& type = newType(TypeKind::value);
        Value* made = newClass(*value, type, values, context_.model.values);
        type.value = made;
        if (made != nullptr) unit.values.push_back({value, made});
    } else if (auto const* entity = std::get_if<Tree::Entity>(&declaration)) {
        Type& type = newType(TypeKind::entity);
        Entity* made = newClass(*entity, type, unit.unit->entitiesFolder, context_.model.entities);
        type.entity = made;
        if (made != nullptr) unit.entities.push_back({entity, made});
    }
}

}  // namespace Modelc
