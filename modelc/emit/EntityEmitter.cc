#include <modelc/emit/EntityEmitter.h>

#include <algorithm>

#include <modelc/check/Spelling.h>
#include <modelc/emit/DocText.h>
#include <modelc/emit/EachMember.h>
#include <modelc/emit/Includes.h>
#include <modelc/emit/Origin.h>
#include <modelc/emit/TypeText.h>

namespace Modelc {
namespace {

constexpr std::string_view frameworkEntity = "Qor::Entity";

Attribute const* constructedAttribute(Entity const& entity) {
    for (Member const& member : entity.members) {
        auto const* attribute = std::get_if<Attribute>(&member);
        if (attribute != nullptr && attribute->kind == AttributeKind::constructed) return attribute;
    }
    return nullptr;
}

}  // namespace

EntityEmitter::EntityEmitter(Entity const& entity) : entity_(entity) {
    for (Member const& member : entity.members)
        members_.push_back(makeMemberEmitter(entity, member));
    nameHoles();
    constructorHoles();
    memberHoles();
}

void EntityEmitter::nameHoles() {
    Unit const& unit = *entity_.unit;
    // A base of another namespace stands in full.
    bool const isNear = !entity_.isRoot() && entity_.base->type->nameSpace() == unit.nameSpace;
    std::string const base = entity_.isRoot() ? std::string(frameworkEntity)
                             : isNear         ? entity_.base->name
                                              : entity_.base->type->fullName;
    holes_["Class"] = entity_.name;
    holes_["fullName"] = entity_.type->fullName;
    holes_["header"] = entity_.type->header;
    holes_["guard"] = includeGuard(entity_.type->header);
    holes_["namespace"] = unit.nameSpace;
    holes_["export"] = unit.exportMacro.empty() ? "" : unit.exportMacro + " ";
    holes_["Base"] = base;
    holes_["Parent"] =
        entity_.isCollected ? "Qor::NameKeyed<" + entity_.name + ", " + base + ">" : base;
    holes_["NotifieeParent"] =
        entity_.isRoot() ? "Qor::RootNotifiee<" + entity_.name + ">" : base + "::NotifieeConst";
    holes_["doc"] = docText(entity_.doc, 0);
    holes_["factory"] = lowerFirst(entity_.name) + "Factory";
}

void EntityEmitter::constructorHoles() {
    Unit const& unit = *entity_.unit;
    Argument const& argument = entity_.constructorArgument;
    Attribute const* const own = constructedAttribute(entity_);
    bool const isBases = !entity_.isNamed && own == nullptr;
    std::string const handed = entity_.isNamed ? "std::move(name)"
                               : isBases       ? argument.name
                                               : "Qor::Name()";
    std::string const parent = entity_.isCollected ? "NameKeyed" : holes_["Base"];
    std::string initializers = parent + "(" + handed + ")";
    if (own != nullptr) {
        initializers +=
            ", " + Spelling(own->name).field() + "(" + handedOn(*own->type, own->name) + ")";
    }
    bool const passesCopy = isText(*argument.type) || argument.type->kind == TypeKind::builtin;
    holes_["constructorParameter"] =
        passesCopy ? typeText(*argument.type, unit) + " " + argument.name
                   : typeText(*argument.type, unit) + " const& " + argument.name;
    holes_["initializers"] = initializers;
    holes_["constructorBody"] = "";
    if (entity_.kind) {
        holes_["constructorBody"] = Spelling(entity_.kind->attribute->name).setter() + "(" +
                                    typeText(*entity_.kind->attribute->type, unit) +
                                    "::" + entity_.kind->enumerator->name + ");";
    }
}

void EntityEmitter::memberHoles() {
    bool const isRoot = entity_.isRoot();
    holes_["notifierRoot"] = isRoot ? "using NotifierRoot = " + entity_.name + ";" : "";
    holes_["descriptorNames"] = descriptorNames();
    holes_["descriptorList"] = descriptorList();
    holes_["aliases"] = eachMember(members_, &MemberEmitter::aliases, "");
    holes_["declarations"] = declarations();
    holes_["fields"] = eachMember(members_, &MemberEmitter::field, "");
    holes_["handlers"] = eachMember(members_, &MemberEmitter::handlers, "");
    holes_["pendingKeys"] = eachMember(members_, &MemberEmitter::pendingKey, "");
    holes_["pendingKeyDrops"] = eachMember(members_, &MemberEmitter::pendingKeyDrop, "");
    holes_["descriptors"] = eachMember(members_, &MemberEmitter::descriptor, "\n");
    holes_["inlineDefinitions"] = eachMember(members_, &MemberEmitter::inlineDefinitions, "\n");
    holes_["definitions"] = eachMember(members_, &MemberEmitter::definitions, "\n");
    holes_["handlerDefinitions"] = eachMember(members_, &MemberEmitter::handlerDefinitions, "");
    holes_["overrides"] = overrides();
    holes_["privatePart"] = privatePart();
    holes_["overrideDefinitions"] = overrideDefinitions();
    holes_["destructorDefinition"] = destructorDefinition();
    holes_["factoryDeclaration"] = factoryDeclaration();
    holes_["factoryDefinition"] = factoryDefinition();
    holes_["notifieeClasses"] = notifieeClasses();
    holes_["notifieeDefinitions"] = notifieeDefinitions();
    holes_["origin"] = origin();
    holes_["includes"] = includes();
    holes_["class"] = classBody();
}

std::string EntityEmitter::descriptorNames() const {
    std::string result;
    for (auto const& member : members_) {
        std::string const name = member->descriptorName();
        if (!name.empty()) result += "struct " + name + ";\n";
    }
    return result;
}

std::string EntityEmitter::descriptorList() const {
    std::string result;
    for (auto const& member : members_) {
        std::string const name = member->descriptorName();
        if (!name.empty()) result += (result.empty() ? "" : ", ") + name;
    }
    return result;
}

std::string EntityEmitter::declarations() const {
    std::string introduced;
    std::string others;
    for (auto const& member : members_) {
        std::string& place = member->isIntroduced() ? introduced : others;
        place += (place.empty() ? "" : "\n") + member->declarations();
    }
    return introduced + (introduced.empty() || others.empty() ? "" : "\n") + others;
}

std::string EntityEmitter::includes() const {
    Includes result;
    result.add(entity_.isRoot() ? "qor/entity/Entity.h" : entity_.base->type->header);
    result.add("qor/model/Class.h");
    result.add(entity_.unit->exportHeader);
    result.add(entity_.constructorArgument.type->header);
    if (entity_.kind) result.add(entity_.kind->attribute->type->header);
    for (auto const& member : members_) {
        for (std::string const& header : member->headers()) {
            if (header != entity_.type->header) result.add(header);
        }
    }
    if (holes_.at("inlineDefinitions").find("std::move") != std::string::npos)
        result.add("utility");
    return result.text();
}

std::string EntityEmitter::origin() const {
    std::vector<std::string> byHand;
    for (Member const& member : entity_.members) {
        if (auto const* operation = std::get_if<Operation>(&member))
            byHand.push_back(operation->name);
    }
    return originText(*entity_.unit, byHand);
}

bool EntityEmitter::hasKeyed() const {
    return std::any_of(members_.begin(), members_.end(),
                       [](auto const& m) { return m->isKeyed(); });
}

bool EntityEmitter::hasOwned() const {
    return std::any_of(members_.begin(), members_.end(),
                       [](auto const& m) { return m->isOwner(); });
}

std::string EntityEmitter::header() const {
    return fillIn(R"(
$origin$
#ifndef $guard$
#define $guard$

$includes$

namespace $namespace$ {

$class$

$notifieeClasses$

$descriptors$

$inlineDefinitions$

$factoryDeclaration$

}  // namespace $namespace$

#endif
)");
}

std::string EntityEmitter::classBody() const {
    return fillIn(R"(
$doc$
class $export$$Class$ : public $Parent$ {
  public:
    using Ptr = Qor::Ptr<$Class$>;
    using PtrConst = Qor::Ptr<$Class$ const>;
    $notifierRoot$
    class NotifieeConst;
    class Notifiee;
    class QorNboAttrLogSa;
    class _Type;
    class GenericIf_;
    template <class N, class W>
    class QorForward;
    $descriptorNames$
    using QorBase = $Base$;
    using QorAttributes = Qor::AttributeList<$descriptorList$>;
    static constexpr char const* qorTypeName = "$fullName$";

    $aliases$

    explicit $Class$($constructorParameter$);
    ~$Class$() override;

    /// The run-time record of this class; never null.
    static Qor::QorType* _fwkType();
    Qor::QorType* fwkType() const override;

    $declarations$

    $overrides$

  $privatePart$
};
)");
}

std::string EntityEmitter::source() const {
    return fillIn(R"(
$origin$
#include <$header$>

#include <utility>

namespace $namespace$ {

constinit Qor::NotifieeKind const $Class$::NotifieeConst::qorKind{Qor::NotifieeKind::Below{}, $Base$::NotifieeConst::qorKind};

$Class$::$Class$($constructorParameter$) : $initializers$ {
    $constructorBody$
}

$destructorDefinition$

$definitions$

$overrideDefinitions$

$notifieeDefinitions$

$factoryDefinition$

}  // namespace $namespace$
)");
}

}  // namespace Modelc
