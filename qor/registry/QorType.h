// The run-time record of a type: what it is called, what it derives from, its attributes, and how
// to make instances and wrappers of it without knowing its class.
//
// Each class X has one, X::_fwkType(); an enumeration E has _fwkType_E(). The records are made when
// their library is loaded and live until the process ends: plain pointers to them stay good. They
// are filled by the loading thread and not changed afterwards; from then on any thread may read.
//
// What a type can do besides is overridden by X::_Type, which the compiler of descriptions makes
// from EntityType, ValueType or EnumType (<qor/generic/...>).
#ifndef QOR_REGISTRY_QOR_TYPE_H
#define QOR_REGISTRY_QOR_TYPE_H

#include <span>
#include <vector>

#include <qor/entity/Entity.h>
#include <qor/notify/NotifieeConst.h>
#include <qor/registry/QorAttr.h>

namespace Qor {

class Dir;
class GenericIf;
class TypeUnit;
class ValueSteps;

namespace NboAttrLog {
class In;
}  // namespace NboAttrLog

class QOR_EXPORT QorType : public Entity {
  public:
    using Ptr = Qor::Ptr<QorType>;
    using PtrConst = Qor::Ptr<QorType const>;
    using AttributeQIteratorConst = std::span<QorAttr::Ptr const>::iterator;

    /// `name` is the last component of the full name; `scope` the type that it is nested in, mostly
    /// null; `base` the type above it, null for an enumeration or a value.
    QorType(Name name, QorType* scope, QorType* base, U32 flags);
    ~QorType() override;

    /// A new entity of that name. Raises an exception for a type whose instances are not made from
    /// a name alone. `directory` is the place that asks.
    virtual Qor::Ptr<Entity> newEntity(Name const& name, Dir* directory);
    /// A new entity whose constructor's argument is read from the stream. Raises an exception for
    /// what is no entity.
    virtual Qor::Ptr<Entity> newEntity(Qor::Ptr<NboAttrLog::In> const& in,
                                       PtrInterface::NotifieeConst::Qor_BitSet bits, U32 version,
                                       PtrInterface* context);
    /// A wrapper over a copy of the value at `value`, or over a default value.
    virtual Qor::Ptr<GenericIf> genericIf(void const* value, bool isConst);
    /// A wrapper over a new instance; `arguments` is a GenericIf::List_ of the constructor's.
    virtual Qor::Ptr<GenericIf> genericIf(GenericIf const* arguments, bool isConst);
    /// A wrapper over the value that `text` stands for. Raises RangeException for other texts.
    virtual Qor::Ptr<GenericIf> genericIfFromStrep(String8 const& text, bool isConst);
    /// A wrapper over a counted object; over a null entity when the object is null or no such.
    virtual Qor::Ptr<GenericIf> genericIf_(PtrInterface* object, bool isConst);
    /// A new entity as an owner makes it, with every attribute at its initial value: of that name,
    /// or, where the constructor takes something else, with the default of that. Null for what is
    /// no entity.
    virtual Qor::Ptr<Entity> newInstance(Name const& name);
    /// What can be done with values of this type; null for entities and for what is never sent.
    virtual ValueSteps const* valueSteps() const noexcept;
    /// Whether the process knows the type by a description alone, which a peer has sent.
    virtual bool isDescribed() const noexcept;

    String8 fullName() const override;
    /// Itself, or a type above it.
    bool isA(QorType const& other) const noexcept;
    QorType* base() const noexcept { return base_; }
    QorType* scope() const noexcept { return scope_; }
    /// What fills the record with its attributes; null for one that is filled by hand.
    TypeUnit* unit() const noexcept { return unit_; }
    U32 typeFlags() const noexcept { return typeFlags_; }
    /// Of an object of the class, in bytes.
    U32 size() const noexcept { return size_; }
    bool isValue() const noexcept { return isValue_; }
    bool isEnumType() const noexcept { return isEnumType_; }
    bool isEntity() const noexcept { return isEntity_; }
    bool hasGenericIfSupport() const noexcept { return hasGenericIfSupport_; }
    /// The attribute of an enumeration that is its value; null for other types.
    QorAttr* valAttr() const noexcept { return valAttr_.ptr(); }
    QorAttr* defaultCollection() const noexcept { return defaultCollection_.ptr(); }

    /// All attributes: what is inherited and not defined anew first, then the type's own in the
    /// order of their definition.
    std::span<QorAttr::Ptr const> attributes() const noexcept { return attributeQ_; }
    std::span<QorType* const> derivedTypes() const noexcept { return derivedTypeQ_; }
    std::span<QorType* const> nestedTypes() const noexcept { return nestedTypeQ_; }
    /// The attributes of all types whose value is of this type.
    std::span<QorAttr* const> referringAttrs() const noexcept { return referringAttrQ_; }
    std::span<QorAttr::Argument const> constructorArgs() const noexcept { return constructorArgQ_; }
    /// The root of the tree in which the attributes are found by their names.
    QorAttr& typeAttr() const noexcept { return *typeAttr_; }
    QorAttr::Ptr attr(Name const& name) const { return typeAttr_->attr(name); }
    /// The attribute with that id, or null. Of an enumeration, the literal of that number.
    QorAttr::Ptr attr(AttributeId id) const;

    /// Publishes a type under its full name; another that bears it gives way.
    static void typeNodeIs(QorType* type, Name const& fullName);
    /// The type that was published under that name, or null.
    static QorType* type(Name const& fullName);
    /// Goes up whenever a type is published: what was found by name may be another since.
    static U32 publications() noexcept;
    /// All published types, in the order of their names.
    static std::vector<QorType*> types();

    void scopeIs(QorType* scope) noexcept { scope_ = scope; }
    void unitIs(TypeUnit* unit) noexcept { unit_ = unit; }
    void typeFlagsIs(U32 flags) noexcept { typeFlags_ = flags; }
    void sizeIs(U32 size) noexcept { size_ = size; }
    void isValueIs(bool isValue) noexcept { isValue_ = isValue; }
    /// An enumeration gets the attribute `value`, whose id is 1: in the tree, apart from literals.
    void isEnumTypeIs(bool isEnumType);
    void isEntityIs(bool isEntity) noexcept { isEntity_ = isEntity; }
    void hasGenericIfSupportIs(bool has) noexcept { hasGenericIfSupport_ = has; }
    void valAttrIs(QorAttr* attribute) { valAttr_ = QorAttr::Ptr(attribute); }
    void defaultCollectionIs(QorAttr* attribute) { defaultCollection_ = QorAttr::Ptr(attribute); }
    void type_AttrIs(QorAttr::Ptr const& root) { typeAttr_ = root; }
    void constructorArgNameQEnq(Name name);
    void constructorArgTypeQEnq(Name type);
    void attributeQEnq(QorAttr::Ptr const& attribute);
    /// Takes an attribute off that was replaced; nothing happens if it is not there.
    void attributeQDel(QorAttr::Ptr const& attribute);
    void derivedTypeQEnq(Ptr const& derived);
    void nestedTypeQEnq(Ptr const& nested);

  private:
    QorType* scope_;
    QorType* base_;
    TypeUnit* unit_ = nullptr;
    U32 typeFlags_;
    U32 size_ = 0;
    bool isValue_ = false;
    bool isEnumType_ = false;
    bool isEntity_ = false;
    bool hasGenericIfSupport_ = false;
    Name fullName_;
    QorAttr::Ptr typeAttr_;
    QorAttr::Ptr valAttr_;
    QorAttr::Ptr defaultCollection_;
    std::vector<QorAttr::Argument> constructorArgQ_;
    std::vector<QorAttr::Ptr> attributeQ_;
    std::vector<QorType*> derivedTypeQ_;
    std::vector<QorType*> nestedTypeQ_;
    std::vector<QorAttr*> referringAttrQ_;
};

}  // namespace Qor

#endif
