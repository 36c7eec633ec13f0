// References to entities as text. An entity is written as its path from the root between single
// quotes, null as the word null; reading walks down from the root directory of the process.
#ifndef QOR_TREE_ENTITY_PATH_H
#define QOR_TREE_ENTITY_PATH_H

#include <concepts>
#include <vector>

#include <qor/core/Strep.h>
#include <qor/tree/Dir.h>

namespace Qor {

/// The directory from which paths are walked; null until the program sets one. The first element of
/// a path is its name. To be set and read on the thread that owns the tree.
QOR_EXPORT void rootDirIs(Ptr<Dir> const& root);
QOR_EXPORT Ptr<Dir> rootDir();

/// The elements of a path with their %XX decoded. Raises RangeException, which tells the column,
/// when the path does not begin with a slash or an escape is broken.
QOR_EXPORT std::vector<String8> pathElements(String8 const& path);
/// The entity at `path`, as Entity::uriPath prints it, or null when nothing stands there.
QOR_EXPORT Ptr<Entity> entityAt(String8 const& path);

/// The text of a reference: the quoted path, or null.
QOR_EXPORT String8 valueToStrepOfRawPtr(Entity const* entity);
/// Reads such a text. A path at which nothing stands raises RangeException.
QOR_EXPORT Ptr<Entity> sequenceToValueOfPtr(String8::IteratorConst& position,
                                            String8::IteratorConst const& end);

/// A row's reference as text.
template <std::derived_from<Entity> X>
String8 valueToStrep(Ptr<X> const& entity) {
    return valueToStrepOfRawPtr(entity.ptr());
}
template <std::same_as<Entity const> X>
String8 valueToStrep(X* entity) {
    return valueToStrepOfRawPtr(entity);
}

/// Reads a reference to an entity of class X: null stays null, an entity of another class can not
/// be converted.
template <std::derived_from<Entity> X>
Ptr<X> sequenceToValue(String8::IteratorConst& position, String8::IteratorConst const& end) {
    String8::IteratorConst const start = position;
    Ptr<Entity> const entity = sequenceToValueOfPtr(position, end);
    if (!entity) {
        return nullptr;
    }
    Ptr<X> converted = dynamicCast<X>(entity);
    if (!converted) {
        cannotConvert(start, end, typeid(X));
    }
    return converted;
}

}  // namespace Qor

#endif
