#include <modelc/emit/WrapperEmitter.h>

#include <modelc/check/Spelling.h>
#include <modelc/emit/EachMember.h>
#include <modelc/emit/Includes.h>
#include <modelc/emit/Origin.h>
#include <modelc/emit/RegistryPlace.h>
#include <modelc/emit/TypeText.h>

namespace Modelc {
namespace {

// A base of the same namespace stands shortly.
std::string baseName(Entity const& entity) {
    bool const isNear = entity.base->type->nameSpace() == entity.unit->nameSpace;
    return isNear ? entity.base->name : entity.base->type->fullName;
}

}  // namespace

WrapperEmitter::WrapperEmitter(Entity const& entity) : entity_(entity) {
    for (Member const& member : entity.members)
        members_.push_back(makeMemberEmitter(entity, member));
    Unit const& unit = *entity.unit;
    std::string const header = registryHeader(unit, entity.name);
    bool const isRoot = entity.isRoot();
    std::string const base = isRoot ? "" : baseName(entity);
    holes_ = {
        {"origin", originText(unit, {})},
        {"guard", includeGuard(header)},
        {"header", header},
        {"namespace", unit.nameSpace},
        {"export", unit.exportMacro.empty() ? "" : unit.exportMacro + " "},
        {"Class", entity.name},
        {"BaseWrapper", isRoot ? "Qor::GenericIfEntity" : base + "::GenericIf_"},
        {"BaseForward", isRoot ? "Qor::ForwardingNotifiee" : base + "::QorForward"},
        {"forwardName", isRoot ? "ForwardingNotifiee" : "QorForward"},
        {"Argument", typeText(*entity.constructorArgument.type, unit)},
        {"argument", entity.constructorArgument.name},
        {"factory", lowerFirst(entity.name) + "Factory"},
        {"rootForward", isRoot ? "void onIsNondestructing() override {\n    this->template "
                                 "forward<Qor::NondestructingTold>();\n}\n"
                               : ""},
        {"rootHandler", isRoot ? "virtual void onIsNondestructing();\n" : ""},
        {"rootDefinition", isRoot ? "void " + entity.name +
                                        "::GenericIf_::onIsNondestructing() {\n    "
                                        "qorHeard(Qor::isNondestructingId);\n}\n"
                                  : ""},
    };
    holes_["forwards"] = eachMember(members_, &MemberEmitter::forwards, "");
    holes_["handlers"] = eachMember(members_, &MemberEmitter::handlers, "");
    holes_["definitions"] = eachMember(members_, &MemberEmitter::wrapperDefinitions, "\n");
    holes_["includes"] = includes();
    holes_["forwardingClass"] = forwardingClass();
    holes_["wrapperClass"] = wrapperClass();
    holes_["typeClass"] = typeClass();
    holes_["typeDefinitions"] = typeDefinitions();
}

std::string WrapperEmitter::includes() const {
    Includes result;
    result.add("qor/generic/ClassTypes.h");
    result.add("qor/generic/EntityWrapper.h");
    result.add(entity_.type->header);
    if (!entity_.isRoot()) {
        result.add(registryHeader(*entity_.base->unit, entity_.base->name));
    }
    return result.text();
}

std::string WrapperEmitter::forwardingClass() const {
    return fillIn(R"(
/// Hands on to its owner what a notifiee of $Class$ is told.
template <class N, class W>
class $Class$::QorForward : public $BaseForward$<N, W> {
  public:
    using $BaseForward$<N, W>::$forwardName$;

    $rootForward$
    $forwards$
};
)");
}

std::string WrapperEmitter::wrapperClass() const {
    return fillIn(R"(
/// The generic wrapper over a $Class$.
class $export$$Class$::GenericIf_ : public Qor::EntityWrapper<$Class$, $BaseWrapper$> {
  public:
    class GenericIf_Adapter_;

    GenericIf_(Qor::Ptr<Qor::Entity> const& entity, bool isConst);
    ~GenericIf_() override;

    $rootHandler$
    $handlers$
};

class $Class$::GenericIf_::GenericIf_Adapter_ final : public $Class$::QorForward<$Class$::Notifiee, $Class$::GenericIf_> {
  public:
    using QorForward::QorForward;
};
)");
}

std::string WrapperEmitter::typeClass() const {
    std::string const named = R"(
using EntityType::newEntity;
Qor::Ptr<Qor::Entity> newEntity(Qor::Name const& name, Qor::Dir* directory) override;
)";
    std::string const made = R"(
using EntityType::genericIf;
Qor::Ptr<Qor::GenericIf> genericIf(Qor::GenericIf const* arguments, bool isConst) override;
)";
    bool const isMadeByName = entity_.hasFactory && entity_.isRoot();
    return fill(R"(
/// What the record of $Class$ can do.
class $export$$Class$::_Type : public Qor::EntityType<$Class$, $Argument$> {
  public:
    using EntityType::EntityType;
    $named$
    $made$
};
)",
                with(holes_, {{"named", isMadeByName ? fill(named, {}) : ""},
                              {"made", entity_.hasFactory ? fill(made, {}) : ""}}));
}

std::string WrapperEmitter::typeDefinitions() const {
    std::string result;
    if (entity_.hasFactory && entity_.isRoot()) {
        result += fillIn(R"(
Qor::Ptr<Qor::Entity> $Class$::_Type::newEntity(Qor::Name const& name, Qor::Dir*) {
    return $factory$(name);
}

)");
    }
    if (entity_.hasFactory) {
        result += fillIn(R"(
Qor::Ptr<Qor::GenericIf> $Class$::_Type::genericIf(Qor::GenericIf const* arguments, bool) {
    return Qor::constructed<$Argument$>(arguments, "$Class$", {"$argument$"}, &$factory$);
}
)");
    }
    return result;
}

std::string WrapperEmitter::header() const {
    return fillIn(R"(
$origin$
#ifndef $guard$
#define $guard$

$includes$

namespace $namespace$ {

$forwardingClass$

$wrapperClass$

$typeClass$

}  // namespace $namespace$

#endif
)");
}

std::string WrapperEmitter::source() const {
    return fillIn(R"(
$origin$
#include <$header$>

namespace $namespace$ {

Qor::QorType* $Class$::fwkType() const {
    return _fwkType();
}

$typeDefinitions$

$Class$::GenericIf_::GenericIf_(Qor::Ptr<Qor::Entity> const& entity, bool isConst) : EntityWrapper(entity, isConst) {
}

$Class$::GenericIf_::~GenericIf_() = default;

$rootDefinition$

$definitions$

}  // namespace $namespace$
)");
}

}  // namespace Modelc
