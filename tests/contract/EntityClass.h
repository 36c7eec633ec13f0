// All entity classes that the models describe, as the compiler lists them, each behind one face.
#ifndef TESTS_CONTRACT_ENTITY_CLASS_H
#define TESTS_CONTRACT_ENTITY_CLASS_H

#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include <qor/notify/EntityNotifiee.h>

#include "Attribute.h"
#include "Recording.h"

namespace Contract {

/// A recorder of any class.
struct AnyRecorder {
    Qor::Ptr<Qor::Entity::NotifieeConst> notifiee;
    Listener* listener = nullptr;

    AllTold take() const { return listener->take(); }
};

class EntityClass {
  public:
    virtual ~EntityClass() = default;

    std::string name;        // Vgw::LogicalSwitch
    std::string base;        // the class above it
    std::string root;        // the class whose notifier list it uses
    bool hasName = false;    // built from a name, and not from a value
    bool isOwnable = false;  // carries the link of an owning collection
    std::vector<std::unique_ptr<Attribute const>> own;
    /// Its own attributes and those of the classes above it, these first.
    std::vector<Attribute const*> attributes;
    EntityClass const* above = nullptr;

    virtual EntityPtr make(unsigned i = 0) const = 0;
    virtual AnyRecorder record(EntityPtr const& entity, bool isWeak = false) const = 0;
    /// Number of notifiees on the list of an entity of this class.
    virtual unsigned notifiees(Qor::Entity const& entity) const = 0;
    /// Attaches a Notifiee; the name and the notifier that it gives back.
    virtual std::pair<std::string, EntityPtr> attachNotifiee(EntityPtr const& entity) const = 0;
    /// The number of its kind of row, -1 for what is no row.
    virtual int rowKind(Qor::Entity const& entity) const = 0;

    bool isOrIsBelow(std::string const& other) const {
        return name == other || (above && above->isOrIsBelow(other));
    }
};

inline void PrintTo(EntityClass const* entityClass, std::ostream* out) {
    *out << entityClass->name;
}

/// Every class, in the order of registration.
std::vector<EntityClass const*> const& entityClasses();

}  // namespace Contract

#endif
