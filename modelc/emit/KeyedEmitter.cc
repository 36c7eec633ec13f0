#include <modelc/emit/KeyedEmitter.h>

#include <modelc/emit/TypeText.h>

namespace Modelc {

KeyedEmitter::KeyedEmitter(Entity const& entity, Attribute const& attribute,
                           std::string const& keyName)
    : MemberEmitter(entity, attribute.name, attribute.doc), attribute_(attribute) {
    hole("id", std::to_string(attribute.id));
    hole("Key", typeText(*attribute.key, unit()));
    hole("PassedKey", passedType(*attribute.key, unit()));
    hole("keyName", keyName);
    hole("key", parameter(*attribute.key, keyName, unit()));
    hole("keyArgument", handedOn(*attribute.key, keyName));
    hole("overridable", "");
    if (attribute.isVirtual) {
        hole("overridable", fillIn(R"(
static void set(Entity& entity, Key const& key, Value const& value) { entity.$setter$(key, value); }
static Value del(Entity& entity, Key const& key) { return entity.$remover$(key); }
)"));
    }
}

std::string KeyedEmitter::aliases() const {
    return fillIn(R"(
$memberAlias$
using $Iterator$ = Qor::AttributeIterator<$Attr$>;
using $IteratorConst$ = Qor::AttributeIteratorConst<$Attr$>;
using $MemberIterator$ = Qor::AttributeIterator<$Attr$>;
)");
}

std::string KeyedEmitter::declarations() const {
    return fillIn("$doc$\n") + accessorDeclarations() + fillIn(R"(
Qor::U32 $count$() const { return $field$.size(); }
$Iterator$ $iterator$();
$Iterator$ $iterator$($key$);
$IteratorConst$ $iterator$() const;
$IteratorConst$ $iterator$($key$) const;
$IteratorConst$ $iteratorConst$() const;
$IteratorConst$ $iteratorConst$($key$) const;
)");
}

std::string KeyedEmitter::handlers() const {
    return fillIn(R"(
virtual void $handler$($key$);
virtual void $immediateHandler$();
virtual void $handler$();
)");
}

std::string KeyedEmitter::forwards() const {
    return fillIn(R"(
void $handler$($key$) override {
    this->template forward<$Attr$>($keyName$);
}
void $handler$() override {
    this->template forwardWhole<$Attr$>();
}
auto& $pendingReader$() {
    return this->$pending$;
}
)");
}

std::string KeyedEmitter::wrapperDefinitions() const {
    return fillIn(R"(
void $Class$::GenericIf_::$handler$($key$) {
    qorHeardKey<$Attr$>($keyName$);
}

void $Class$::GenericIf_::$immediateHandler$() {}

void $Class$::GenericIf_::$handler$() {
    onAttribute($Attr$::id);
}
)");
}

std::string KeyedEmitter::pendingKey() const {
    return fillIn("Qor::PendingKey<$Key$> $pending$;\n");
}

std::string KeyedEmitter::pendingKeyDrop() const { return fillIn("$pending$.drop();\n"); }

std::string KeyedEmitter::descriptor() const {
    return fillIn(R"(
struct $Class$::$Attr$ : $Base$ {
    static constexpr char const* name = "$name$";
    static auto& map(auto& entity) { return entity.$field$; }
    static void tell(auto& hearer, Key const& key) { hearer.$handler$(key); }
    static void tellWhole(auto& hearer) { hearer.$handler$(); }
    static auto& pending(auto& notifiee) { return notifiee.$pendingReader$(); }
    static void notify(Entity& entity, Key const& key, Qor::Ptr<Member> const& member) {
        entity.$notifier$(key, member);
    }
    $overridable$
};
)");
}

std::string KeyedEmitter::definitions() const {
    return accessorDefinitions() + fillIn(R"(

$Class$::$Iterator$ $Class$::$iterator$() {
    return $Iterator$(*this);
}

$Class$::$Iterator$ $Class$::$iterator$($key$) {
    return $Iterator$(*this, $keyName$);
}

$Class$::$IteratorConst$ $Class$::$iterator$() const {
    return $IteratorConst$(*this);
}

$Class$::$IteratorConst$ $Class$::$iterator$($key$) const {
    return $IteratorConst$(*this, $keyName$);
}

$Class$::$IteratorConst$ $Class$::$iteratorConst$() const {
    return $IteratorConst$(*this);
}

$Class$::$IteratorConst$ $Class$::$iteratorConst$($key$) const {
    return $IteratorConst$(*this, $keyName$);
}
)");
}

std::string KeyedEmitter::handlerDefinitions() const {
    return fillIn(R"(
void $Class$::NotifieeConst::$handler$($PassedKey$) {}
void $Class$::NotifieeConst::$immediateHandler$() {}
void $Class$::NotifieeConst::$handler$() {}
)");
}

std::vector<std::string> KeyedEmitter::headers() const {
    return {attribute_.key->header, attribute_.type->header};
}

}  // namespace Modelc
