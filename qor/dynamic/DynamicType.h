// The record of an entity class that the process knows by a description alone. It makes entities
// (DynamicEntity) and wrappers over them, and knows of each attribute what it takes to hold, tell,
// send and read it. Described once, it does not change, and lives until the process ends.
#ifndef QOR_DYNAMIC_DYNAMIC_TYPE_H
#define QOR_DYNAMIC_DYNAMIC_TYPE_H

#include <qor/attrlog/family/StreamAttribute.h>
#include <qor/dynamic/AnyValue.h>
#include <qor/generic/GenericIfEntity.h>

namespace Qor {

/// What an attribute is to the entity that holds it.
enum class DynamicSort : U8 {
    nondestructing,  // the framework's isNondestructing
    value,           // a single value, sent whole
    text,            // a single text, sent in chunks
    constant,        // a value that only the constructor sets
    flagMember,      // keyed truth values
    textMember,      // keyed texts
    reference,       // keyed references
    childMember,     // keyed entities that are owned
    child,           // one entity that is owned
    operation,       // a method, which has no code here
};

struct DynamicAttribute {
    AttributeId id = 0;
    Name name;
    DynamicSort sort = DynamicSort::value;
    QorType* valueType = nullptr;
    ValueSteps const* value = nullptr;  // of single values
    ValueSteps const* key = nullptr;    // of collections
    AnyValue initial = {};              // of single values
    U32 index = 0;                      // in the class's table

    bool isKeyed() const noexcept {
        return sort >= DynamicSort::flagMember && sort <= DynamicSort::childMember;
    }
    bool isStreamed() const noexcept {
        return sort != DynamicSort::constant && sort != DynamicSort::operation;
    }
};

class QOR_EXPORT DynamicType final : public QorType {
  public:
    DynamicType(Name shortName, QorType* base);
    ~DynamicType() override;

    bool isDescribed() const noexcept override { return true; }
    Qor::Ptr<Entity> newEntity(Name const& name, Dir* directory) override;
    /// Null for a class whose constructor takes what can't be read here.
    Qor::Ptr<Entity> newEntity(Qor::Ptr<NboAttrLog::In> const& in,
                               PtrInterface::NotifieeConst::Qor_BitSet bits, U32 version,
                               PtrInterface* context) override;
    Qor::Ptr<Entity> newInstance(Name const& name) override;
    /// A new instance, whether or not the compiled class has a factory: here nothing else makes one
    /// that is to be sent to the process that has it. A constructor takes one argument: the one
    /// attribute that is fixed, or the name.
    Qor::Ptr<GenericIf> genericIf(GenericIf const* arguments, bool isConst) override;
    using QorType::genericIf;
    Qor::Ptr<GenericIf> genericIf_(PtrInterface* object, bool isConst) override;
    Qor::Ptr<GenericIf> genericIfFromStrep(String8 const& text, bool isConst) override;

    /// In the order of their ids.
    std::span<DynamicAttribute const> table() const noexcept { return table_; }
    /// Null for an id that is none, or that can't be held here.
    DynamicAttribute const* attribute(AttributeId id) const noexcept;
    std::span<GenericAttribute const> genericRows() const noexcept { return genericRows_; }
    /// Of the attributes that are streamed: the first one's id, and that after an id; 0 if none.
    AttributeId firstStreamed() const noexcept;
    AttributeId streamedAfter(AttributeId id) const noexcept;

    /// Makes the table of the record's attributes, which are all there. Those of a type that the
    /// process can't hold are left out.
    void completeIs();
    /// The value that an attribute has in a new entity. REQUIRES: completeIs() was called
    void initialIs(AttributeId id, String8 const& text);
    /// Lets the initial values go, whose types may end before this one.
    void forgetInitials() noexcept { table_.clear(); }
    /// Whether an instance can be made from what a stream tells.
    bool canBeMade() const noexcept;

  private:
    DynamicAttribute const* constructed() const noexcept;

    std::vector<DynamicAttribute> table_;
    std::vector<GenericAttribute> genericRows_;
};

}  // namespace Qor

#endif
