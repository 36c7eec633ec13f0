// The run-time record of one attribute, and the tree in which the records of a type stand.
//
// The root of a type's tree (QorType::typeAttr) is a record without a name; the type's attributes
// stand below it, each name once. A record lives as long as something counts it, its types for as
// long as the process. Records are made when their library is loaded, by its thread; afterwards
// they do not change, and may be read on any thread.
#ifndef QOR_REGISTRY_QOR_ATTR_H
#define QOR_REGISTRY_QOR_ATTR_H

#include <span>
#include <vector>

#include <qor/core/Name.h>
#include <qor/core/Ptr.h>
#include <qor/core/VFPtrInterface.h>
#include <qor/registry/AttrFlags.h>

namespace Qor {

class QOR_EXPORT QorAttr : public VFPtrInterface {
  public:
    using Ptr = Qor::Ptr<QorAttr>;
    using PtrConst = Qor::Ptr<QorAttr const>;
    using AttrFlags = Qor::AttrFlags;
    using QorAttrIntrospectionFlags = Qor::AttrIntrospectionFlags;

    /// An argument of an operation, or of the constructor of a child that this attribute makes.
    struct Argument {
        Name name;
        Name type;  // the full name of its type

        bool operator==(Argument const&) const = default;
    };

    QorAttr(QorType* owner, Name name, QorType* valueType, AttrFlags flags, AttributeId id);
    ~QorAttr() override;

    Name const& name() const noexcept { return name_; }
    AttributeId id() const noexcept { return id_; }
    /// The type on whose tree the record stands.
    QorType* owner() const noexcept { return owner_; }
    /// The type that defined the attribute: the owner, or one above it.
    QorType* definedBy() const noexcept { return definedBy_; }
    /// Of the value, or of the result of an operation; null in the root of a tree alone.
    QorType* valueType() const noexcept { return valueType_; }
    /// Null for what is no collection.
    QorType* keyType() const noexcept { return keyType_; }
    AttrFlags flags() const noexcept { return flags_; }
    QorAttrIntrospectionFlags introspection() const noexcept { return introspection_; }
    std::span<Argument const> arguments() const noexcept { return arguments_; }
    /// Of a collection whose members keep their key: the attribute of the member that is the key.
    Name const& indexAttrName() const noexcept { return indexAttrName_; }
    bool indexFlag() const noexcept { return indexFlag_; }
    /// The attribute of the same owner whose values serve as keys; null for most.
    PtrConst const& keyAttr() const noexcept { return keyAttr_; }

    // The tree. REQUIRES, of these: this is the root of a type's tree.

    /// Makes a record below this one; a record of that name is replaced.
    Ptr attrIs(Name const& name, QorType* type, PtrConst const& keyAttr, PtrConst const& otherAttr,
               AttrFlags flags, AttributeId id);
    /// Removes the record of that name and hands it over; null if there is none.
    Ptr attrDel(Name const& name);
    /// The record of that name, or null.
    Ptr attr(Name const& name) const;

    void keyTypeIs(QorType* keyType) noexcept { keyType_ = keyType; }
    void argumentNameIs(Name name);
    void argumentTypeIs(Name type);
    void indexAttrNameIs(Name name) { indexAttrName_ = std::move(name); }
    void indexFlagIs(bool flag) noexcept { indexFlag_ = flag; }
    void introspectionIs(QorAttrIntrospectionFlags flags) noexcept { introspection_ = flags; }
    /// A copy of this record on the tree of a type that derives from the owner; it replaces a
    /// record of its name there.
    Ptr cloneFor(QorType& derived) const;

  private:
    void place(Ptr const& record);

    QorType* owner_;
    QorType* definedBy_;
    Name name_;
    QorType* valueType_;
    QorType* keyType_ = nullptr;
    AttrFlags flags_;
    QorAttrIntrospectionFlags introspection_;
    AttributeId id_;
    bool indexFlag_ = false;
    Name indexAttrName_;
    PtrConst keyAttr_;
    PtrConst otherAttr_;
    std::vector<Argument> arguments_;
    std::vector<Ptr> below_;  // in the order of their coming
};

}  // namespace Qor

#endif
