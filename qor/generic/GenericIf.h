// A wrapper by which code that knows nothing of a class reads, writes, walks, calls and watches an
// instance of it, by attribute ids. Wrappers are made by the type records: QorType::genericIf for
// values, genericIf_ for entities.
//
// A wrapper over an entity counts a reference on it; one over a value holds a copy. One that was
// made const refuses every operation that changes. What is raised (GenericException) is raised
// before anything has changed. A wrapper belongs to its entity's thread; it has no lock.
//
// The result of a read is a new wrapper each time: one allocation, and for an entity one more for
// each level of its class.
#ifndef QOR_GENERIC_GENERIC_IF_H
#define QOR_GENERIC_GENERIC_IF_H

#include <qor/notify/NotifieeConst.h>
#include <qor/registry/QorType.h>

namespace Qor {

class QOR_EXPORT GenericIf : public PtrInterface::NotifieeConst {
  public:
    using Ptr = Qor::Ptr<GenericIf>;
    using PtrConst = Qor::Ptr<GenericIf const>;
    class AttributeIteratorConst;
    class List;  // <qor/generic/GenericList.h>
    class List_;
    class Watcher;

    /// What is asked of an attribute.
    struct AttributeOp {
        enum OpId : U32 {
            opGet = 0,      // read; of an operation: call it
            opCount = 1,    // number of members of a collection
            opVersion = 2,  // how often a collection has changed
            opExists = 3,   // whether a key is there
            opSet = 128,    // write; of a collection of children: make one
            opDel = 129,    // remove a key
            opEq = 256,     // of values, with attribute id 0: compare
            opNe = 257,
            opGt = 258,
            opLt = 259,
            opGe = 260,
            opLe = 261,
            opNot = 262,
        };
        /// From 128 to 255 are the operations that change.
        static constexpr bool changes(OpId id) noexcept { return id >= 128 && id <= 255; }

        AttributeId attributeId = 0;
        OpId opId = opGet;
    };

    explicit GenericIf(bool isConst) : isConst_(isConst) {}
    ~GenericIf() override;

    bool isConst() const noexcept { return isConst_; }

    /// The only entry for reads, writes and calls. `key` is the key of a member, the argument list
    /// (List_) of a call, or the right-hand side of a comparison; `value` is what is written, or
    /// the argument list of a child's constructor. The result is null where there is none.
    virtual Ptr attributeOp(AttributeOp const& op, PtrConst const& key, Ptr const& value);
    /// The same for what needs no key or no value.
    Ptr attributeOp(AttributeId id, AttributeOp::OpId opId = AttributeOp::opGet,
                    PtrConst const& key = nullptr, Ptr const& value = nullptr) {
        return attributeOp(AttributeOp{id, opId}, key, value);
    }
    /// The id of the attribute with that name; raises UnknownAttrException if there is none.
    virtual AttributeId attributeId(String8 name) const;
    /// The name of the attribute with that id, "unknown" if there is none.
    virtual String8 attributeString(AttributeId id) const;
    /// The text form of a value; of an entity its quoted path, or null.
    virtual String8 strRep() const;

    /// The address of the wrapped value, for a reader that knows its type; of an entity, as a
    /// PtrInterface. Raises TypeException, with the class's short name, for any other type.
    virtual void const* genericValue(Qor::Ptr<QorType const> const& type) const;
    /// A new wrapper over the same entity, or a copy of the value, with the same const flag.
    virtual Ptr genericClone() const = 0;
    /// The wrapped entity; null in wrappers over values.
    virtual Qor::Ptr<Entity const> entityConst() const;
    virtual Qor::Ptr<Entity> entity();
    virtual void markedForDeletionIs(bool marked);

    /// From the first member of a collection, or from the one under `key` or what follows it.
    virtual AttributeIteratorConst attributeIteratorConst(AttributeId id);
    virtual AttributeIteratorConst attributeIteratorKeyConst(AttributeId id, PtrConst const& key);
    // The steps of an iterator, on the object that it carries.
    virtual Ptr attributeIterator_iterObj(AttributeIteratorConst const& iterator);
    virtual PtrConst attributeIterator_iterObj(AttributeIteratorConst const& iterator) const;
    virtual Ptr attributeIterator_iterInc(AttributeIteratorConst const& iterator);
    virtual PtrConst attributeIterator_iterKey(AttributeIteratorConst const& iterator);
    virtual AttributeIteratorConst attributeIterator_iterClone(
        AttributeIteratorConst const& iterator);
    virtual bool attributeIterator_nonNull(AttributeIteratorConst const& iterator);
    virtual Ptr attributeIterator_iterDel(AttributeIteratorConst const& iterator);

    /// A change under one key of a collection; as it stands, tells the watcher. The pointer is the
    /// handler's own: it may take the key.
    virtual void onAttribute(AttributeId id, PtrConst& key);
    /// A change of an attribute, or of a collection as a whole.
    void onAttribute(AttributeId id) override;
    void onNotification() override;
    void onZeroReferences() override;
    /// Who is told what this wrapper hears. It is not counted, and must be taken away before it
    /// ends; null for none.
    void watcherIs(Watcher* watcher) noexcept { watcher_ = watcher; }

    [[noreturn]] static void throwConstException(char const* text);
    [[noreturn]] static void throwTypeException(char const* subject);
    [[noreturn]] static void throwBadIndexAttrException(char const* attribute);
    [[noreturn]] static void throwUnknownAttrException(char const* subject);
    [[noreturn]] static void throwUnknownArgException(char const* subject);
    [[noreturn]] static void throwOpNotSupportedException(char const* attribute,
                                                          AttributeOp::OpId op, bool);

  protected:
    /// Raises ConstException when the operation changes and this is const.
    void needChangeable(AttributeOp const& op) const;

  private:
    bool isConst_;
    Watcher* watcher_ = nullptr;
};

/// Hears what a wrapper hears, without knowing its class.
class QOR_EXPORT GenericIf::Watcher {
  public:
    virtual ~Watcher();
    /// An attribute has changed; of a collection the member under `key`, or, with null, any.
    virtual void onAttribute(GenericIf& wrapper, AttributeId id, PtrConst& key) = 0;
    /// Several attributes may have changed.
    virtual void onNotification(GenericIf& wrapper);
    /// The entity's last reference has gone.
    virtual void onZeroReferences(GenericIf& wrapper);
};

/// A place in a collection. It holds its wrapper, and survives any change of the collection.
class QOR_EXPORT GenericIf::AttributeIteratorConst {
  public:
    AttributeIteratorConst() = default;
    /// Takes the concrete iterator over; only wrappers make these.
    AttributeIteratorConst(Ptr wrapper, AttributeId id, void* iterator) noexcept
        : wrapper_(std::move(wrapper)), id_(id), iterator_(iterator) {}
    AttributeIteratorConst(AttributeIteratorConst const& other);
    AttributeIteratorConst(AttributeIteratorConst&& other) noexcept;
    AttributeIteratorConst& operator=(AttributeIteratorConst other) noexcept;
    ~AttributeIteratorConst();

    explicit operator bool() const;
    AttributeIteratorConst& operator++();
    /// Null at the end.
    PtrConst key() const;
    Ptr value() const;

    AttributeId id() const noexcept { return id_; }
    void* iterator() const noexcept { return iterator_; }

  private:
    Ptr wrapper_;
    AttributeId id_ = 0;
    void* iterator_ = nullptr;
};

}  // namespace Qor

#endif
