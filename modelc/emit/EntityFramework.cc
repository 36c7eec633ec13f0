// The parts of an entity's files that come from the framework's side: overrides, the notifiee
// classes, the factory.
#include <modelc/emit/DocText.h>
#include <modelc/emit/EntityEmitter.h>

namespace Modelc {

std::string EntityEmitter::overrides() const {
    std::string result;
    if (entity_.isRoot()) {
        result += fillIn(R"(
void isNondestructingIs(bool isNondestructing) override;
void zeroReferencesIs(bool zeroReferences) override;
)");
    }
    if (!holes_.at("descriptorList").empty()) {
        result += fillIn("Qor::String8 attributeString(Qor::AttributeId id) const override;\n");
    }
    if (hasKeyed()) result += fillIn("bool qorIsCollection(Qor::AttributeId id) const override;\n");
    if (hasOwned()) {
        result += fillIn(
            "Qor::Ptr<Qor::Entity> qorPathStep(Qor::String8 const* elements, std::size_t count, "
            "std::size_t* used) override;\n");
    }
    if (entity_.isRoot()) {
        result += fillIn(R"(
bool qorHasAttrLogInterface() const override;
using Qor::Entity::qorNboAttrLogSa;
Qor::Entity::QorNboAttrLogSa* qorNboAttrLogSa(Qor::Ptr<Qor::NboAttrLog::Out const> const& out) override;
Qor::Entity::QorNboAttrLogSa* qorNboAttrLogSaForMsgChannel(Qor::Ptr<Qor::Entity::QorNboAttrLogSa> const& other) const override;
Qor::Ptr<Qor::Entity::QorNboAttrLogSa> qorNboAttrLogSaDel(Qor::Ptr<Qor::NboAttrLog::Out const> const& out) override;
)");
    }
    result += fillIn(
        "Qor::Ptr<Qor::Entity::QorNboAttrLogSa> qorNboAttrLogSaIs(Qor::BitSet<27, Qor::U32> bits, "
        "Qor::U32 version, Qor::Ptr<Qor::NboAttrLog::Out> const& out, Qor::PtrInterface* owner) "
        "override;\n");
    if (entity_.isRoot()) {
        result += fillIn(
            "Qor::ListRaw<NotifieeConst>& notifierList() const noexcept { return notifierList_; "
            "}\n");
    }
    return result;
}

// The list is the last field: it is emptied before what it tells of goes.
std::string EntityEmitter::privatePart() const {
    std::string const& fields = holes_.at("fields");
    if (fields.empty() && !entity_.isRoot()) return {};
    std::string const list =
        entity_.isRoot() ? "  mutable Qor::ListRaw<NotifieeConst> notifierList_;\n" : "";
    return "private:\n" + fill("  $fields$\n", {{"fields", fields}}) + list;
}

std::string EntityEmitter::destructorDefinition() const {
    if (hasOwned()) {
        return fillIn(R"(
$Class$::~$Class$() {
    Qor::dropOwned<QorAttributes>(*this);
}
)");
    }
    return fillIn("$Class$::~$Class$() = default;\n");
}

std::string EntityEmitter::overrideDefinitions() const {
    std::string result;
    if (entity_.isRoot()) {
        result += fillIn(R"(
void $Class$::isNondestructingIs(bool isNondestructing) {
    Qor::changeNondestructing(*this, isNondestructing);
}

void $Class$::zeroReferencesIs(bool) {
    Qor::tellZeroReferences(*this);
}

bool $Class$::qorHasAttrLogInterface() const {
    return true;
}

)");
    }
    if (!holes_.at("descriptorList").empty()) {
        result += fillIn(R"(
Qor::String8 $Class$::attributeString(Qor::AttributeId id) const {
    char const* const name = QorAttributes::nameOf(id);
    return name ? Qor::String8(name) : $Base$::attributeString(id);
}

)");
    }
    if (hasOwned()) {
        result += fillIn(R"(
Qor::Ptr<Qor::Entity> $Class$::qorPathStep(Qor::String8 const* elements, std::size_t count, std::size_t* used) {
    Qor::Ptr<Qor::Entity> const owned = Qor::ownedAt<QorAttributes>(*this, elements, count, used);
    return owned ? owned : $Base$::qorPathStep(elements, count, used);
}

)");
    }
    if (hasKeyed()) {
        result += fillIn(R"(
bool $Class$::qorIsCollection(Qor::AttributeId id) const {
    return QorAttributes::isKeyed(id) || $Base$::qorIsCollection(id);
}
)");
    }
    return result;
}

std::string EntityEmitter::notifieeClasses() const {
    std::string const nondestructing =
        entity_.isRoot() ? "virtual void onIsNondestructing();\n" : "";
    std::string const& pending = holes_.at("pendingKeys");
    std::string const hears =
        "Hears of a " + entity_.name +
        ". A handler is called on the thread of the setter, after the change; what it throws "
        "goes to its own onNotificationException.";
    Holes const more{
        {"hears", docText({hears}, 0)},
        {"nondestructing", nondestructing},
        {"drop", pending.empty() ? "" : "void qorDropPendingKeys() override;\n"},
        {"protected",
         pending.empty() ? "" : "protected:\n" + fill("  $keys$\n", {{"keys", pending}})}};
    return fill(R"(
$hears$
class $export$$Class$::NotifieeConst : public $NotifieeParent$ {
  public:
    using Ptr = Qor::Ptr<NotifieeConst>;
    static Qor::NotifieeKind const qorKind;

    NotifieeConst();
    ~NotifieeConst() override;
    Qor::Ptr<$Class$ const> notifier() const;

    $nondestructing$
    $handlers$
    $drop$

  $protected$
};

/// The same for one that may change what it hears of.
class $export$$Class$::Notifiee : public $Class$::NotifieeConst {
  public:
    using Ptr = Qor::Ptr<Notifiee>;
    Qor::Ptr<$Class$> notifier() const;
};
)",
                with(holes_, more));
}

std::string EntityEmitter::notifieeDefinitions() const {
    std::string const nondestructing =
        entity_.isRoot() ? fillIn("void $Class$::NotifieeConst::onIsNondestructing() {}\n") : "";
    return fill(R"(
$Class$::NotifieeConst::NotifieeConst() {
    kindIs(qorKind);
}

$Class$::NotifieeConst::~NotifieeConst() = default;

Qor::Ptr<$Class$ const> $Class$::NotifieeConst::notifier() const {
    return dynamic_cast<$Class$ const*>(qorNotifier());
}

Qor::Ptr<$Class$> $Class$::Notifiee::notifier() const {
    auto const* const entity = dynamic_cast<$Class$ const*>(qorNotifier());
    return const_cast<$Class$*>(entity);
}

$nondestructing$
$handlerDefinitions$

$drop$
)",
                with(holes_, {{"nondestructing", nondestructing}, {"drop", pendingKeysDrop()}}));
}

std::string EntityEmitter::pendingKeysDrop() const {
    if (!hasKeyed()) return {};
    return fillIn(R"(
void $Class$::NotifieeConst::qorDropPendingKeys() {
    $pendingKeyDrops$
    $NotifieeParent$::qorDropPendingKeys();
}
)");
}

std::string EntityEmitter::factoryDeclaration() const {
    if (!entity_.hasFactory) return {};
    return fillIn(R"(
/// A new one without a parent. Raises Qor::RangeException "null ValidPtr" if there is none.
$export$Qor::Ptr<$Class$> $factory$(Qor::Name name);
)");
}

std::string EntityEmitter::factoryDefinition() const {
    if (!entity_.hasFactory) return {};
    return fillIn(R"(
Qor::Ptr<$Class$> $factory$(Qor::Name name) {
    return Qor::validPtr(Qor::make<$Class$>(std::move(name)));
}
)");
}

}  // namespace Modelc
