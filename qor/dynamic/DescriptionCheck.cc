#include <qor/dynamic/DescriptionCheck.h>

#include <qor/core/Format.h>

#include <algorithm>
#include <set>

namespace Qor {

namespace {

using Kind = TypeDescription::Kind;
using Attribute = TypeDescription::Attribute;

[[noreturn]] void refuse(TypeDescription const& description, String8 const& what) {
    throw AttrLogRecordException(String8("the description of ") + description.fullName + ": " +
                                 what);
}

bool isWord(char byte) {
    return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') ||
           (byte >= '0' && byte <= '9') || byte == '_';
}

constexpr std::size_t longestName = 255;

bool isName(Name const& name) {
    std::string_view const text = name.view();
    return !text.empty() && text.size() <= longestName &&
           std::all_of(text.begin(), text.end(), isWord);
}

// It names fields; a longer one than there are fields is none.
void needHashOrder(TypeDescription const& description) {
    auto const isField = [](Attribute const& one) {
        return one.flags.isConstructed() && one.flags.isStored();
    };
    auto const fields = static_cast<std::size_t>(
        std::count_if(description.attributes.begin(), description.attributes.end(), isField));
    bool const isSound =
        description.hashOrder.empty() ||
        (description.kind == Kind::value && description.hashOrder.size() <= fields &&
         std::all_of(description.hashOrder.begin(), description.hashOrder.end(),
                     [fields](U32 place) { return place < fields; }));
    if (!isSound) refuse(description, "a hash of fields that are not there");
}

void needArguments(TypeDescription const& description,
                   TypeDescription::Arguments const& arguments) {
    for (QorAttr::Argument const& argument : arguments) {
        bool const isSound = isName(argument.name) && isTypeName(argument.type);
        if (!isSound) refuse(description, "an argument without a proper name or type");
    }
}

void needSoundAttribute(TypeDescription const& description, Attribute const& attribute) {
    if (!isName(attribute.name)) refuse(description, "an attribute without a proper name");
    if (attribute.id < 0) refuse(description, attribute.name + " has a number below zero");
    bool const isTyped = isTypeName(attribute.valueType) &&
                         (attribute.keyType.length() == 0 || isTypeName(attribute.keyType)) &&
                         (attribute.indexAttrName.length() == 0 || isName(attribute.indexAttrName));
    if (!isTyped) refuse(description, attribute.name + " has no proper type");
    bool const isLiteral = attribute.flags.isLiteral();
    bool const fits = (description.kind == Kind::enumeration) == isLiteral &&
                      (!isLiteral || attribute.valueType == description.fullName);
    if (!fits) refuse(description, attribute.name + " is no attribute of such a type");
    needArguments(description, attribute.arguments);
}

Name nameOf(QorType const* type) { return type ? Name(type->fullName()) : Name(); }

void needSameAttribute(TypeDescription const& description, Attribute const& told,
                       QorAttr const& here) {
    bool const isSame = told.id == here.id() && told.name == here.name() &&
                        told.valueType == nameOf(here.valueType()) &&
                        told.keyType == nameOf(here.keyType()) && told.flags == here.flags();
    if (!isSame) {
        refuse(description, told.name + " is not what it is in the class compiled in here");
    }
}

}  // namespace

bool isTypeName(Name const& name) {
    std::string_view const text = name.view();
    auto const isPart = [](char byte) { return isWord(byte) || byte == ':' || byte == '*'; };
    return !text.empty() && text.size() <= longestName &&
           std::all_of(text.begin(), text.end(), isPart) && text.front() != ':' &&
           text.back() != ':';
}

void needSound(TypeDescription const& description) {
    if (!isTypeName(description.fullName)) {
        throw AttrLogRecordException("the description of a type without a proper name");
    }
    bool const hasBase = description.base.length() != 0;
    if (hasBase && (description.kind != Kind::entity || !isTypeName(description.base))) {
        refuse(description, "a base that can be none");
    }
    needArguments(description, description.constructorArgs);
    needHashOrder(description);
    std::set<AttributeId> ids;
    std::set<Name> names;
    for (Attribute const& attribute : description.attributes) {
        needSoundAttribute(description, attribute);
        bool const isNew = ids.insert(attribute.id).second && names.insert(attribute.name).second;
        if (!isNew) refuse(description, attribute.name + " stands twice, by name or number");
    }
}

TypeDescription const* DescriptionCheck::told(Name const& name) const {
    auto const found = all_.find(name);
    return found == all_.end() ? nullptr : &found->second;
}

bool DescriptionCheck::isKnown(Name const& name) const { return told(name) || QorType::type(name); }

bool DescriptionCheck::isEntity(Name const& name) const {
    if (auto const* const description = told(name)) return description->kind == Kind::entity;
    QorType const* const type = QorType::type(name);
    return type && type->isEntity();
}

void DescriptionCheck::run() {
    for (auto const& [name, description] : all_) {
        needWhole(description);
        QorType* const here = QorType::type(name);
        if (here && !here->isDescribed()) needAgrees(description, *here);
    }
}

void DescriptionCheck::needWhole(TypeDescription const& description) {
    bool const hasBase = description.base.length() != 0;
    if (hasBase && !isEntity(description.base)) {
        refuse(description, "its base " + description.base + " is no entity that is known");
    }
    for (Attribute const& attribute : description.attributes) {
        needAttribute(description, attribute);
    }
    classOf(description, description.fullName, 0);
    if (description.kind == Kind::value) fieldsOf(description, description.fullName, 0);
}

void DescriptionCheck::needAttribute(TypeDescription const& description,
                                     Attribute const& attribute) {
    bool const leads = isKnown(attribute.valueType) &&
                       (attribute.keyType.length() == 0 || isKnown(attribute.keyType));
    if (!leads) refuse(description, attribute.name + " is of a type that is not known");
    bool const isInValue = description.kind == Kind::value && isEntity(attribute.valueType);
    if (isInValue) refuse(description, attribute.name + " is an entity within a value");
}

void DescriptionCheck::needLevels(TypeDescription const& root, U32 levels) {
    if (levels > greatestDepth) refuse(root, "its bases go round in a circle, or do not end");
}

DescriptionCheck::Class const& DescriptionCheck::classOf(TypeDescription const& root,
                                                         Name const& name, U32 depth) {
    needLevels(root, depth);
    auto const found = classes_.find(name);
    if (found != classes_.end()) return found->second;
    Class result;
    if (auto const* const description = told(name)) {
        result = toldClass(root, *description, depth);
    } else if (QorType const* const type = QorType::type(name)) {
        for (auto const* at = type; at; at = at->base()) ++result.levels;
        for (auto const& one : type->attributes()) result.meanings[one->id()] = one->name();
    }
    needLevels(root, result.levels);
    return classes_.emplace(name, std::move(result)).first->second;
}

// What a class inherits first, so that nothing that it defines can give that another meaning.
DescriptionCheck::Class DescriptionCheck::toldClass(TypeDescription const& root,
                                                    TypeDescription const& description, U32 depth) {
    Class result = classOf(root, description.base, depth + 1);
    ++result.levels;
    for (Attribute const& one : description.attributes) addMeaning(root, result, one.id, one.name);
    attributes_ += static_cast<U32>(result.meanings.size());
    bool const isTooMany =
        result.meanings.size() > greatestAttributes || attributes_ > greatestAttributesOfAll;
    if (isTooMany) refuse(root, "more attributes than a type, or a set of them, may have");
    return result;
}

void DescriptionCheck::addMeaning(TypeDescription const& root, Class& to, AttributeId id,
                                  Name const& name) {
    auto const [place, isNew] = to.meanings.emplace(id, name);
    if (!isNew && place->second != name) {
        refuse(root,
               format("%s has the number %d of %s", name.charPtr(), id, place->second.charPtr()));
    }
}

// A value that is being counted counts 0: to meet it again is a circle.
U32 DescriptionCheck::fieldsOf(TypeDescription const& root, Name const& name, U32 depth) {
    auto const [place, isNew] = fields_.emplace(name, 0);
    bool const isCircle = depth > greatestDepth || (!isNew && place->second == 0);
    if (isCircle) refuse(root, "its fields go round in a circle, or do not end");
    if (!isNew) return place->second;
    U32 count = 1;
    auto const add = [&](Name const& field) {
        count += fieldsOf(root, field, depth + 1);
        if (count > greatestFields) refuse(root, "more fields than a value may have");
    };
    if (auto const* const description = told(name)) {
        if (description->kind == Kind::value) {
            for (Attribute const& one : description->attributes) add(one.valueType);
        }
    } else if (QorType const* const type = QorType::type(name); type && !type->isEnumType()) {
        for (auto const& one : type->attributes()) add(Name(one->valueType()->fullName()));
    }
    fields_[name] = count;
    return count;
}

void DescriptionCheck::needAgrees(TypeDescription const& description, QorType& compiled) const {
    auto const here = TypeDescription::of(compiled);
    bool const isSame = here.kind == description.kind && here.base == description.base &&
                        here.constructorArgs == description.constructorArgs;
    if (!isSame) refuse(description, "not what is compiled in here");
    std::map<AttributeId, QorAttr const*> byId;
    for (auto const& one : compiled.attributes()) byId[one->id()] = one.ptr();
    for (Attribute const& told : description.attributes) {
        QorAttr::Ptr const byName = compiled.attr(told.name);
        if (byName) needSameAttribute(description, told, *byName);
        auto const other = byId.find(told.id);
        if (other != byId.end()) needSameAttribute(description, told, *other->second);
    }
}

}  // namespace Qor
