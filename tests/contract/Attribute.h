// An attribute of an entity class behind one face, so that a law is written once and compiled once.
// Values and keys are samples, called by number; what an attribute holds comes back as text. The
// classes of EntityClass.cc implement it by the accessors of the compiled class, not by the
// templates that those call.
#ifndef TESTS_CONTRACT_ATTRIBUTE_H
#define TESTS_CONTRACT_ATTRIBUTE_H

#include <string>
#include <vector>

#include <qor/entity/Entity.h>
#include <qor/model/Attribute.h>

namespace Contract {

using Kind = Qor::AttributeKind;
using EntityPtr = Qor::Ptr<Qor::Entity>;

/// A step of a walk over a collection.
struct Entry {
    std::string key;
    std::string value;
    bool operator==(Entry const&) const = default;
};

using Entries = std::vector<Entry>;

enum class Walk { iterator, constIterator, iteratorConst, range, constRange };

class Attribute {
  public:
    Attribute(Qor::AttributeId n, char const* text, Kind k) : id(n), name(text), kind(k) {}
    Attribute(Attribute const&) = delete;
    Attribute& operator=(Attribute const&) = delete;
    virtual ~Attribute() = default;

    bool isKeyed() const {
        return kind == Kind::valueMap || kind == Kind::refMap || kind == Kind::childMap;
    }

    Qor::AttributeId const id;
    std::string const name;
    Kind const kind;
    std::string ownerName;  // the class that declares it
    std::string valueType;
    std::string keyType;
    Kind accessorKind = Kind::operation;  // the kind by the model, which the accessors are made for

    /// All that it holds.
    virtual std::string held(Qor::Entity const&) const { return {}; }
    /// Makes the smallest change.
    virtual void change(Qor::Entity&) const {}
};

/// A single value.
class Scalar : public Attribute {
  public:
    using Attribute::Attribute;
    virtual unsigned values() const = 0;
    virtual std::string value(unsigned i) const = 0;
    virtual void set(Qor::Entity& entity, unsigned i) const = 0;
    virtual void setToHeld(Qor::Entity& entity) const = 0;
};

/// A keyed attribute: what all three kinds of it have.
class Keyed : public Attribute {
  public:
    using Attribute::Attribute;
    virtual unsigned keys() const = 0;
    virtual std::string key(unsigned i) const = 0;
    virtual unsigned count(Qor::Entity const& entity) const = 0;
    virtual void delAll(Qor::Entity& entity) const = 0;
    virtual Entries walk(Qor::Entity& entity, Walk walk) const = 0;
    /// The walk that begins at a key.
    virtual Entries walkFrom(Qor::Entity& entity, unsigned key, bool isConst) const = 0;
    /// Whether a walk meets the members in ascending (reversed hash, key).
    virtual bool isOrdered(Qor::Entity& entity) const = 0;
    /// Removes every third member on a walk; the keys that were removed.
    virtual std::vector<std::string> delThirds(Qor::Entity& entity) const = 0;
};

/// Keyed values and references.
class Mapped : public Keyed {
  public:
    using Keyed::Keyed;
    virtual std::string value(unsigned i) const = 0;
    /// What an absent key reads as.
    virtual std::string absent() const = 0;
    virtual std::string get(Qor::Entity const& entity, unsigned key) const = 0;
    virtual void set(Qor::Entity& entity, unsigned key, unsigned value) const = 0;
    virtual void setAbsent(Qor::Entity& entity, unsigned key) const = 0;
    virtual std::string del(Qor::Entity& entity, unsigned key) const = 0;
    /// The bare new step; the references that are then held on the member, and its key.
    virtual std::pair<unsigned, std::string> add(Qor::Entity& entity, unsigned key,
                                                 unsigned value) const = 0;
    /// aNotify with the member under that key.
    virtual void notify(Qor::Entity& entity, unsigned key) const = 0;
    /// Tells one member node from another.
    virtual void const* node(Qor::Entity& entity, unsigned key) const = 0;
    /// The entity of a reference, null for a value.
    virtual EntityPtr target(unsigned value) const = 0;
    /// What the member node of a reference collection, asked for by qorA, refers to.
    virtual std::string viaNode(Qor::Entity const& entity, unsigned key) const = 0;
};

/// Owned entities, in a collection or as a single child. Names are called by number.
class Owning {
  public:
    virtual EntityPtr get(Qor::Entity const& entity, unsigned nth) const = 0;
    virtual EntityPtr set(Qor::Entity& entity, unsigned nth) const = 0;
    virtual EntityPtr add(Qor::Entity& entity, unsigned nth) const = 0;
    virtual EntityPtr del(Qor::Entity& entity, unsigned nth) const = 0;

  protected:
    ~Owning() = default;
};

class OwnedMap : public Keyed, public Owning {
  public:
    using Keyed::Keyed;
    virtual void notify(Qor::Entity& entity, unsigned nth) const = 0;
};

class Child : public Attribute, public Owning {
  public:
    using Attribute::Attribute;
};

}  // namespace Contract

#endif
