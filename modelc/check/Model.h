// The checked model: a description in which every name is resolved and every question answered.
//
// It is immutable once the check has passed, and the emitters ask nothing of it that can fail.
// Classes stand in the order of their declaration, which is the order of their registration.
// Pointers between the pieces stay valid as long as the Model that owns them all.
#ifndef MODELC_CHECK_MODEL_H
#define MODELC_CHECK_MODEL_H

#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace Modelc {

struct Unit;
struct Enumeration;
struct Value;
struct Entity;

using Doc = std::vector<std::string>;

enum class Builtin : std::uint8_t { boolean, u8, u16, u32, u64, i32, real, text, name };

enum class TypeKind : std::uint8_t { builtin, enumeration, value, external, entity };

// A type by its full name. Of the pointers the one of its kind is set.
struct Type {
    TypeKind kind = TypeKind::builtin;
    std::string fullName;  // Vgw::LogicalSwitch, Kelp::IpAddr, U32
    std::string header;    // what declares it, without brackets; empty for the compiler's own types
    bool byReference = false;  // setters and handlers take it by const reference
    Builtin builtin = Builtin::boolean;
    Enumeration const* enumeration = nullptr;
    Value const* value = nullptr;
    Entity const* entity = nullptr;

    std::string nameSpace() const;
    std::string shortName() const;
};

// What a member starts with. `type` says how to read it; zero is the type's own empty value.
struct Initial {
    enum class Kind : std::uint8_t { zero, number, real, text, boolean, enumerator };
    Kind kind = Kind::zero;
    std::string text;  // a number's digits, a text's bytes, true or false, an enumerator's name
};

struct Enumerator {
    std::string name;
    std::uint32_t number = 0;
    Doc doc;
};

struct Enumeration {
    Unit const* unit = nullptr;
    Type const* type = nullptr;
    std::string name;
    Doc doc;
    std::vector<Enumerator> enumerators;
};

// A field fixed at construction, or a constant of the class.
struct ValueField {
    std::uint32_t id = 0;
    std::string name;
    Type const* type = nullptr;
    Initial initial;
    Doc doc;
};

// The computed hash of a value: over these fields, one 32-bit word each, in this order.
struct ValueHash {
    std::uint32_t id = 0;
    std::vector<ValueField const*> words;
    Doc doc;
};

enum class Ordering : std::uint8_t { none, fields, hash };

struct Value {
    Unit const* unit = nullptr;
    Type const* type = nullptr;
    std::string name;
    Doc doc;
    std::deque<ValueField> fields;
    std::deque<ValueField> constants;
    std::optional<ValueHash> hash;
    Ordering ordering = Ordering::none;
    bool hasOperatorNot = false;
};

enum class AttributeKind : std::uint8_t {
    scalar,
    constructed,  // set by the constructor, with no setter
    set,          // keyed, value Bool
    map,          // keyed, value a text
    reference,    // keyed, value a counted reference
    owning,       // keyed by the entity's own name
    child,        // one owned entity
};

struct Attribute {
    std::uint32_t id = 0;
    std::string name;
    AttributeKind kind = AttributeKind::scalar;
    Type const* type = nullptr;  // of the value
    Type const* key = nullptr;   // null where the attribute is no collection
    Initial initial;
    bool isVirtual = false;
    Doc doc;
};

struct Argument {
    std::string name;
    Type const* type = nullptr;
};

// Declared in the class that is emitted, defined by hand; the linker misses it otherwise.
struct Operation {
    std::uint32_t id = 0;
    std::string name;
    std::vector<Argument> arguments;
    Type const* result = nullptr;  // null for none
    bool isVirtual = false;
    bool isConst = false;
    bool isStatic = false;
    bool overrides = false;  // a base declares it virtual, under the same id
    Doc doc;
};

using Member = std::variant<Attribute, Operation>;

std::string const& nameOf(Member const& member);

// The attribute of a base that tells the kinds of its derived classes apart, and this class's
// enumerator of it.
struct KindMark {
    Attribute const* attribute = nullptr;
    Enumerator const* enumerator = nullptr;
};

struct Entity {
    Unit const* unit = nullptr;
    Type const* type = nullptr;
    std::string name;
    Doc doc;
    Entity const* base = nullptr;  // null directly under the framework's entity
    Argument constructorArgument;
    bool isNamed = true;  // the argument is the entity's name
    std::optional<KindMark> kind;
    bool hasFactory = false;
    bool isCollected =
        false;  // it carries the link of an owning collection; a class below it has this one
    std::deque<Member> members;

    // Directly under the framework's entity: it owns the list of notifiees for itself and for all
    // derived classes.
    bool isRoot() const { return base == nullptr; }
    Entity const& root() const;
    // How far below the framework's entity: 1 for a root.
    std::uint32_t level() const;
};

using Class = std::variant<Enumeration const*, Value const*, Entity const*>;

// One description file.
struct Unit {
    std::string file;
    Doc doc;
    std::string name;
    std::string nameSpace;
    std::string exportMacro;
    std::string exportHeader;
    std::string valuesFolder;
    std::string entitiesFolder;
    std::string adaptersFolder;    // of what binds entities to connections, beside the entities
    std::string operationsFolder;  // where operations are defined by hand; may be empty
    std::vector<Unit const*> imports;
    std::vector<Class> classes;
};

class Model {
  public:
    Model() = default;
    Model(Model const&) = delete;
    Model& operator=(Model const&) = delete;
    Model(Model&&) = default;
    Model& operator=(Model&&) = default;

    std::deque<Unit> units;
    std::deque<Type> types;
    std::deque<Enumeration> enumerations;
    std::deque<Value> values;
    std::deque<Entity> entities;
};

}  // namespace Modelc

#endif
