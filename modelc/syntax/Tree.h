// A description as it stands in its file: words with their positions, nothing resolved, nothing
// checked.
//
// The tree owns its texts, so it outlives the source. What the parser could not read is left out,
// and the piece around it says so: a `damaged` class may lack members, so rules about the class as
// a whole are not held against it.
#ifndef MODELC_SYNTAX_TREE_H
#define MODELC_SYNTAX_TREE_H

#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include <modelc/syntax/Position.h>
#include <modelc/syntax/Token.h>

namespace Modelc::Tree {

// Lines of documentation, each without its marker.
using Doc = std::vector<std::string>;

struct Word {
    std::string text;
    Position at;
};

struct Number {
    std::uint64_t value = 0;
    Position at;
};

// What stands behind `=`: a number, a string or a word such as an enumerator, true or zero.
struct Literal {
    TokenKind kind = TokenKind::word;
    std::string text;
    bool negative = false;
    Position at;
};

struct Argument {
    Word name;
    Word type;
};

struct Enumerator {
    Word name;
    Number number;
    Doc doc;
};

struct Enumeration {
    Word name;
    Doc doc;
    std::vector<Enumerator> enumerators;
    bool damaged = false;
};

// A field, a constant (isConst) or a computed member (computedFrom) of a value.
struct ValueMember {
    Number id;
    bool isConst = false;
    Word name;
    Word type;
    std::optional<Literal> initial;
    std::optional<std::vector<Word>> computedFrom;
    Doc doc;
};

struct Value {
    Word name;
    Doc doc;
    Word orderedBy;  // fields, hash or empty
    bool hasOperatorNot = false;
    std::vector<ValueMember> members;
    bool damaged = false;
};

enum class Relation : std::uint8_t { none, owns, refers };

// What an entity's member is if it is no operation: `type`, `owns type`, `type[key]`, `refers
// type[key]`...
struct AttributeForm {
    Relation relation = Relation::none;
    Word type;
    std::optional<Word> key;
    std::optional<Literal> initial;
};

struct OperationForm {
    std::vector<Argument> arguments;
    std::optional<Word> result;
};

struct EntityMember {
    Number id;
    bool isVirtual = false;
    bool isConst = false;
    bool isStatic = false;
    Word name;
    std::variant<AttributeForm, OperationForm> form;
    Doc doc;
};

struct Entity {
    Word name;
    Doc doc;
    Word base;
    Argument constructorArgument;
    std::optional<Word> as;
    bool hasFactory = false;
    std::vector<EntityMember> members;
    bool damaged = false;
};

// A value class that is written by hand: its full name, the header that has it, how it is passed.
struct External {
    Word name;
    Word header;
    bool byReference = false;
};

struct Import {
    Word path;
};

using Declaration = std::variant<Enumeration, Value, Entity>;

struct File {
    Doc doc;  // what stands in front of `unit`
    Word unit;
    Word nameSpace;
    Word exportMacro;
    Word exportHeader;
    Word valuesFolder;
    Word entitiesFolder;
    Word operationsFolder;
    std::vector<Import> imports;
    std::vector<External> externals;
    std::vector<Declaration> declarations;
    bool damaged = false;
};

}  // namespace Modelc::Tree

#endif
