// A class of entities as the simulation sees it: fields that are shown as text, and changed by
// number. What a change is to look like is told by the value that was made for it, not read back
// from the entity.
#ifndef TESTS_SIMULATION_SHAPE_H
#define TESTS_SIMULATION_SHAPE_H

#include "Knowledge.h"

#include <qor/tree/Dir.h>

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace Sim {

using EntityPtr = Qor::Ptr<Qor::Entity>;
using Lines = std::map<std::string, std::string>;
class Shape;

inline Qor::Name nameOf(std::string const& text) { return Qor::Name(std::string_view(text)); }

enum class FieldKind { scalar, flags, texts, references, children, child };

// A value that is different from all before it. Texts and wide numbers show the number.
struct Fresh {
    std::uint64_t number = 0;
    std::string text;
};

// Receives what a field holds.
class FieldReader {
  public:
    virtual ~FieldReader() = default;
    virtual void value(std::string const& key, std::string const& text) = 0;
    virtual void reference(std::string const& key, EntityPtr const& target) = 0;
    virtual void owned(std::string const& key, EntityPtr const& entity, Shape const& shape) = 0;
};

class Field {
  public:
    Field(Qor::AttributeId number, char const* text, FieldKind sort)
        : id(number), name(text), kind(sort) {}
    virtual ~Field() = default;

    Qor::AttributeId const id;
    std::string const name;
    FieldKind const kind;

    bool isOwning() const { return kind == FieldKind::children || kind == FieldKind::child; }
    // `newborn` is an entity of the same class that nobody has touched.
    virtual void show(Qor::Entity const& entity, Qor::Entity const& newborn,
                      FieldReader& reader) const = 0;
    // Stores the value, under the key of that number where there are keys. How it shows.
    virtual std::string put(Qor::Entity&, unsigned, Fresh const&) const { return {}; }
    // How a scalar of an untouched entity shows.
    virtual std::string const& initial(Qor::Entity const&) const {
        static std::string const none;
        return none;
    }
    virtual std::string keyText(unsigned) const { return {}; }
    virtual void erase(Qor::Entity&, unsigned) const {}
    virtual bool mayRefer(Qor::Entity const&) const { return false; }
    virtual void refer(Qor::Entity&, unsigned, Qor::Entity&) const {}
    // Owned entities, by name. `sort` chooses the class where several may stand.
    virtual EntityPtr own(Qor::Entity&, std::string const&, unsigned) const { return {}; }
    virtual void disown(Qor::Entity&, std::string const&) const {}
};

class Shape {
  public:
    virtual ~Shape() = default;

    // Of the compiled class.
    std::string name;
    // The first way of knowing it that the shape is for.
    Knowledge knowledge = Knowledge::compiled;
    std::vector<std::unique_ptr<Field const>> fields;
    bool isDirectory = false;

    // Null for an id that is none.
    Field const* field(Qor::AttributeId id) const;

    // By a process that knows the class so.
    virtual EntityPtr make(Knowledge knowledge, std::string const& entityName) const = 0;
    // The class, and what an entity of it is built from beside its name.
    virtual std::string title(Qor::Entity const&) const { return name; }
    Qor::Entity const& newborn() const;

  private:
    mutable EntityPtr newborn_;
};

// Which classes take part as long as it stands: those of agents and the lab's, or, so that keys tie
// all the time, the lab's and a few whose keys do; and perhaps those that processes learn late.
class Cast {
  public:
    Cast(bool hasTies, bool hasLate);
    ~Cast();
    static bool hasTies();
    static bool hasLate();
    Cast(Cast const&) = delete;
    Cast& operator=(Cast const&) = delete;
};

// Every class that takes part, in a fixed order, the same for both ways of knowing them; the
// directory's is not among them.
std::vector<Shape const*> const& shapes(Knowledge knowledge);
Shape const& dirShape(Knowledge knowledge = Knowledge::compiled);
// Of what stands in a directory of a process that knows the classes so.
Shape const& shapeIn(Knowledge knowledge, Qor::Entity const& entity);

}  // namespace Sim

#endif
