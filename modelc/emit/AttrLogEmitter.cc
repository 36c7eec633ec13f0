#include <modelc/emit/AttrLogEmitter.h>

#include <modelc/emit/DocText.h>
#include <modelc/emit/EachMember.h>
#include <modelc/emit/Includes.h>
#include <modelc/emit/Origin.h>

namespace Modelc {
namespace {

// A base of another namespace stands in full.
std::string baseOf(Entity const& entity) {
    if (entity.isRoot()) return "Qor::Entity";
    bool const isNear = entity.base->type->nameSpace() == entity.unit->nameSpace;
    return isNear ? entity.base->name : entity.base->type->fullName;
}

std::string forwardingsOf(Entity const& entity) {
    std::string result = entity.isRoot() ? "void onIsNondestructing() override { "
                                           "forward(&QorNboAttrLogSa::onIsNondestructing); }\n"
                                         : forwardingsOf(*entity.base);
    for (Member const& member : entity.members) {
        auto const* attribute = std::get_if<Attribute>(&member);
        if (attribute == nullptr) continue;
        if (auto const made = makeAttrLogMember(entity, *attribute)) result += made->forwarding();
    }
    return result;
}

}  // namespace

std::string adapterHeader(Entity const& entity) {
    return entity.unit->adaptersFolder + "/" + entity.name + ".h";
}

AttrLogEmitter::AttrLogEmitter(Entity const& entity) : entity_(entity) {
    for (Member const& member : entity.members) {
        auto const* attribute = std::get_if<Attribute>(&member);
        if (attribute == nullptr) continue;
        if (auto made = makeAttrLogMember(entity, *attribute)) members_.push_back(std::move(made));
    }
    nameHoles();
    docHoles();
    memberHoles();
}

void AttrLogEmitter::nameHoles() {
    Unit const& unit = *entity_.unit;
    std::string const base = baseOf(entity_);
    holes_["Class"] = entity_.name;
    holes_["Base"] = base;
    holes_["header"] = adapterHeader(entity_);
    holes_["guard"] = includeGuard(adapterHeader(entity_));
    holes_["namespace"] = unit.nameSpace;
    holes_["export"] = unit.exportMacro.empty() ? "" : unit.exportMacro + " ";
    holes_["origin"] = originText(unit, {});
    holes_["FlowBase"] =
        entity_.isRoot() ? "Qor::EntityFlowOut" : base + "::QorNboAttrLogSa::FlowOut";
    holes_["wordNumber"] = entity_.level() > 1 ? "1" : "0";
    holes_["fullName"] = entity_.type->fullName;
}

void AttrLogEmitter::docHoles() {
    holes_["bindsDoc"] = docText({"Binds a " + entity_.name +
                                  " to one attribute log connection. Made with QorNboAttrLogSaIs."},
                                 0);
    holes_["owesDoc"] = docText({"What is owed to the peer of a " + entity_.name + "."}, 0);
    holes_["hearsDoc"] = docText({"Hears of a " + entity_.name + " for its adapter."}, 0);
}

void AttrLogEmitter::memberHoles() {
    holes_["streamNames"] = streamNames();
    holes_["streamList"] = streamList();
    holes_["declarations"] = eachMember(members_, &AttrLogMember::declarations, "");
    holes_["streams"] = eachMember(members_, &AttrLogMember::stream, "\n");
    holes_["flowOuts"] = eachMember(members_, &AttrLogMember::flowOut, "");
    holes_["forwardings"] = forwardings();
    holes_["definitions"] = eachMember(members_, &AttrLogMember::definitions, "\n");
    holes_["headerIncludes"] = headerIncludes();
    holes_["sourceIncludes"] = sourceIncludes();
    holes_["nondestructing"] = entity_.isRoot() ? "void onIsNondestructing() override;" : "";
    holes_["classBody"] = classBody();
    holes_["flowOutClass"] = flowOutClass();
    holes_["companionClass"] = companionClass();
    holes_["adapterDefinitions"] = adapterDefinitions();
    holes_["entityDefinitions"] = entityDefinitions();
}

std::string AttrLogEmitter::streamNames() const {
    std::string result = entity_.isRoot() ? "using IsNondestructingStream = "
                                            "Qor::StreamNondestructing<" +
                                                entity_.name + ">;\n"
                                          : "";
    for (auto const& member : members_) result += "struct " + member->streamName() + ";\n";
    return result;
}

std::string AttrLogEmitter::streamList() const {
    std::string result = entity_.isRoot() ? "IsNondestructingStream" : "";
    for (auto const& member : members_)
        result += (result.empty() ? "" : ", ") + member->streamName();
    return result;
}

std::string AttrLogEmitter::forwardings() const { return forwardingsOf(entity_); }

std::string AttrLogEmitter::headerIncludes() const {
    Includes result;
    result.add("qor/attrlog/family/MakeAdapter.h");
    result.add(entity_.type->header);
    if (!entity_.isRoot()) result.add(adapterHeader(*entity_.base));
    return result.text();
}

std::string AttrLogEmitter::sourceIncludes() const {
    Includes result;
    for (auto const& member : members_) {
        std::string const header = member->adapterHeaderOfTarget();
        if (header != adapterHeader(entity_)) result.add(header);
    }
    return result.text();
}

std::string AttrLogEmitter::header() const {
    return fillIn(R"(
$origin$
#ifndef $guard$
#define $guard$

$headerIncludes$

namespace $namespace$ {

$classBody$

$streams$

$flowOutClass$

$companionClass$

}  // namespace $namespace$

extern template class Qor::AdapterLevel<$fullName$>;

#endif
)");
}

std::string AttrLogEmitter::classBody() const {
    return fillIn(R"(
$bindsDoc$
class $export$$Class$::QorNboAttrLogSa : public Qor::AdapterLevel<$Class$> {
  public:
    using Ptr = Qor::Ptr<QorNboAttrLogSa>;
    class FlowOut;
    class QorNboAttrLogSaAdapter_;
    $streamNames$
    using QorStreamed = Qor::StreamList<$streamList$>;

    QorNboAttrLogSa(Qor::AdapterState::Bits bits, Qor::U32 version, Qor::Ptr<Qor::NboAttrLog::Out> const& out, Qor::PtrInterface* owner);
    ~QorNboAttrLogSa() override;
    static Ptr QorNboAttrLogSaIs(Qor::AdapterState::Bits bits, Qor::Ptr<$Class$> const& entity, Qor::U32 version, Qor::Ptr<Qor::NboAttrLog::Out> const& out, Qor::PtrInterface* owner);
    /// The state of a resynchronisation, or null.
    Qor::Ptr<FlowOut> flowOut() const;

    $nondestructing$
    $declarations$
};
)");
}

std::string AttrLogEmitter::flowOutClass() const {
    return fillIn(R"(
$owesDoc$
class $export$$Class$::QorNboAttrLogSa::FlowOut : public Qor::FlowOutLevel<QorStreamed, $FlowBase$> {
  public:
    using Ptr = Qor::Ptr<FlowOut>;
    using FlowOutLevel::FlowOutLevel;

    using QorDirtyBitSet$wordNumber$ = Qor::U32;
    QorDirtyBitSet$wordNumber$ qorDirtyBitSet$wordNumber$() const { return qorDirtyBitSet(); }
    $flowOuts$
};
)");
}

std::string AttrLogEmitter::companionClass() const {
    return fillIn(R"(
$hearsDoc$
class $export$$Class$::QorNboAttrLogSa::QorNboAttrLogSaAdapter_ : public Qor::Companion<QorNboAttrLogSa, $Class$::NotifieeConst> {
  public:
    using Companion::Companion;

    $forwardings$
};
)");
}

std::string AttrLogEmitter::source() const {
    return fillIn(R"(
$origin$
#include <$header$>

$sourceIncludes$

template class Qor::AdapterLevel<$fullName$>;

namespace $namespace$ {

$adapterDefinitions$

$definitions$

$entityDefinitions$

}  // namespace $namespace$
)");
}

std::string AttrLogEmitter::adapterDefinitions() const {
    std::string const nondestructing = entity_.isRoot() ? fillIn(R"(

void $Class$::QorNboAttrLogSa::onIsNondestructing() {
    Qor::serializeScalar<IsNondestructingStream>(*this);
}
)")
                                                        : "";
    return fillIn(R"(
$Class$::QorNboAttrLogSa::QorNboAttrLogSa(Qor::AdapterState::Bits bits, Qor::U32 version, Qor::Ptr<Qor::NboAttrLog::Out> const& out, Qor::PtrInterface* owner) : AdapterLevel(bits, version, out, owner) {
}

$Class$::QorNboAttrLogSa::~QorNboAttrLogSa() {
    Qor::endAdapter(*this);
}

$Class$::QorNboAttrLogSa::Ptr $Class$::QorNboAttrLogSa::QorNboAttrLogSaIs(Qor::AdapterState::Bits bits, Qor::Ptr<$Class$> const& entity, Qor::U32 version, Qor::Ptr<Qor::NboAttrLog::Out> const& out, Qor::PtrInterface* owner) {
    return Qor::makeAdapter<QorNboAttrLogSa>(bits, entity, version, out, owner);
}

Qor::Ptr<$Class$::QorNboAttrLogSa::FlowOut> $Class$::QorNboAttrLogSa::flowOut() const {
    return static_cast<FlowOut*>(StreamAdapter::flowOut());
}
)") + nondestructing;
}

std::string AttrLogEmitter::entityDefinitions() const {
    std::string const ofRoot = entity_.isRoot() ? fillIn(R"(
Qor::Entity::QorNboAttrLogSa* $Class$::qorNboAttrLogSa(Qor::Ptr<Qor::NboAttrLog::Out const> const& out) {
    return Qor::NboAttrLog::adapterOnList(notifierList_, out);
}

Qor::Entity::QorNboAttrLogSa* $Class$::qorNboAttrLogSaForMsgChannel(Qor::Ptr<Qor::Entity::QorNboAttrLogSa> const& other) const {
    return Qor::NboAttrLog::adapterForMsgChannel(notifierList_, *other);
}

Qor::Ptr<Qor::Entity::QorNboAttrLogSa> $Class$::qorNboAttrLogSaDel(Qor::Ptr<Qor::NboAttrLog::Out const> const& out) {
    return Qor::NboAttrLog::deleteAdapter(*this, out);
}

)")
                                                : "";
    return ofRoot + fillIn(R"(
Qor::Ptr<Qor::Entity::QorNboAttrLogSa> $Class$::qorNboAttrLogSaIs(Qor::BitSet<27, Qor::U32> bits, Qor::U32 version, Qor::Ptr<Qor::NboAttrLog::Out> const& out, Qor::PtrInterface* owner) {
    return Qor::findOrMakeAdapter(*this, Qor::AdapterState::Bits(bits.word()), version, out, owner);
}
)");
}

}  // namespace Modelc
