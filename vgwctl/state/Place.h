#ifndef VGWCTL_STATE_PLACE_H
#define VGWCTL_STATE_PLACE_H

// Finding entities, attributes and types by what an operator writes.
//
// A path is what Entity::uriPath prints: /vgw/status/ovsdb/logicalSwitch/red. A class is meant by
// its full name, Vgw::LogicalSwitch, or by the last part of it, in any case and with or without
// underscores: logical_switch. An attribute by its name, and a member of a collection by
// NAME:KEY.

#include <qor/generic/GenericIf.h>
#include <qor/tree/Dir.h>

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace Vgwctl {

using Attributes = std::vector<Qor::QorAttr const*>;

/// A wrapper by the record of the entity's own class.
Qor::GenericIf::Ptr wrapped(Qor::Entity& entity, bool isConst = true);

/// Null when nothing stands there.
Qor::Entity::Ptr entityAt(std::string_view path);
/// Raises Failure when no entity stands there; absent, when nothing does.
Qor::Entity::Ptr neededEntity(std::string_view path);

/// Whether there is an entity or a collection of some.
bool standsAt(std::string_view path);

/// What an entity of that type holds: no operations, and nothing that follows from the rest.
Attributes heldAttributes(Qor::QorType const& type);
/// The attribute or operation of that name; Failure, with the names that there are, if none.
Qor::QorAttr const& neededAttribute(Qor::QorType const& type, std::string_view name);
/// The type of that full name, or the entity class of that short one; Failure when there is none
/// or, of short names, more than one.
Qor::QorType& neededType(std::string_view name);

/// The same, of entities.
Qor::QorType& neededClass(std::string_view name);

/// Whether `child` stands in that attribute of `owner`, and is not only referred to.
bool isOwnedIn(Qor::Entity const& owner, Qor::QorAttr const& attribute, Qor::Entity const& child);

/// Whether that attribute of `owner` holds entities of its own: children, or a directory's entries.
bool holdsChildren(Qor::Entity const& owner, Qor::QorAttr const& attribute);

/// How far an entry of a directory can be relied on: empty when it is ready, or no entry.
std::string_view entryStateOf(Qor::Entity const& entity);

/// The entities that stand directly below one, attribute after attribute.
void forEachChild(Qor::Entity& entity,
                  std::function<void(Qor::QorAttr const&, Qor::Entity&)> const& visit);
/// An entity and all that stands below it, each before what it owns.
void forEachBelow(Qor::Entity& entity, std::function<void(Qor::Entity&)> const& visit);

/// The rows that a word means: the members of the collection or directory at a path, or the one
/// entity there; or all entities of a class below `root`.
std::vector<Qor::Entity::Ptr> rowsOf(std::string_view word, Qor::Entity& root);

}  // namespace Vgwctl

#endif
