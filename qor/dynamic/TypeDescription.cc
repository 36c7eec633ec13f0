#include <qor/dynamic/TypeDescription.h>

#include <qor/generic/GenericException.h>
#include <qor/generic/GenericIfEntity.h>
#include <qor/generic/ValueSteps.h>

#include <set>

namespace Qor {

namespace {

// Low bit 21: the attribute holds data.
constexpr U32 holdsData = 0x00200000;

TypeDescription::Kind kindOf(QorType const& type) {
    using Kind = TypeDescription::Kind;
    if (type.isEntity()) return Kind::entity;
    if (type.isEnumType()) return Kind::enumeration;
    return type.attributes().empty() ? Kind::builtin : Kind::value;
}

Name nameOf(QorType const* type) { return type ? Name(type->fullName()) : Name(); }

TypeDescription::Attribute described(QorAttr const& attribute) {
    return {attribute.id(),
            attribute.name(),
            nameOf(attribute.valueType()),
            nameOf(attribute.keyType()),
            attribute.flags(),
            attribute.introspection(),
            attribute.indexAttrName(),
            {attribute.arguments().begin(), attribute.arguments().end()}};
}

// A new instance, or the default value; null for a type without.
GenericIf::Ptr sampleOf(QorType& type) {
    if (!type.isEntity()) return type.genericIf(static_cast<void const*>(nullptr), true);
    Ptr<Entity> const sample = type.newInstance(Name());
    return sample ? type.genericIf_(sample.ptr(), true) : nullptr;
}

bool hasInitial(QorAttr const& attribute) {
    AttrFlags const flags = attribute.flags();
    bool const isFrameworks =
        attribute.owner()->isEntity() ? attribute.id() < 256 : attribute.id() == fwkKeyId;
    return (flags.low() & holdsData) != 0 && !flags.isCollection() && !flags.isEntity() &&
           !isFrameworks;
}

std::vector<TypeDescription::Initial> initialsOf(QorType& type) {
    std::vector<TypeDescription::Initial> result;
    GenericIf::Ptr const sample = sampleOf(type);
    if (!sample) return result;
    for (QorAttr::Ptr const& attribute : type.attributes()) {
        if (!hasInitial(*attribute)) continue;
        try {
            result.push_back({attribute->id(), sample->attributeOp(attribute->id())->strRep()});
        } catch (GenericException const&) {
            // Of a type whose library is not here: known by name, and not held.
        }
    }
    return result;
}

void putArguments(Ptr<NboAttrLog::Out> const& out, TypeDescription::Arguments const& arguments) {
    out << static_cast<U32>(arguments.size());
    for (QorAttr::Argument const& argument : arguments) {
        out << String8(argument.name) << String8(argument.type);
    }
}

// How many parts of a kind follow, of the type of that name.
U32 nextCount(NboAttrLog::In& in, Name const& of, U32 most, char const* what) {
    U32 const count = in.nextU32();
    if (count > most) {
        throw AttrLogRecordException(String8("the description of ") + of + ": more " + what +
                                     " than it may have");
    }
    return count;
}

TypeDescription::Arguments nextArguments(NboAttrLog::In& in, Name const& of) {
    TypeDescription::Arguments result;
    U32 left = nextCount(in, of, TypeDescription::greatestArguments, "arguments");
    for (; left != 0; --left) {
        Name name(in.nextString());
        result.push_back({std::move(name), Name(in.nextString())});
    }
    return result;
}

AttrIntrospectionFlags nextIntrospection(NboAttrLog::In& in) {
    constexpr U32 all = 0x3f;
    U32 const word = in.nextU32();
    if (word > all) throw AttrLogRecordException("an introspection word of unknown bits");
    return AttrIntrospectionFlags(word);
}

TypeDescription::Attribute nextAttribute(NboAttrLog::In& in, Name const& of) {
    TypeDescription::Attribute result;
    result.id = in.nextint();
    result.name = Name(in.nextString());
    result.valueType = Name(in.nextString());
    result.keyType = Name(in.nextString());
    U32 const low = in.nextU32();
    result.flags = AttrFlags(low, in.nextU32());
    result.introspection = nextIntrospection(in);
    result.indexAttrName = Name(in.nextString());
    result.arguments = nextArguments(in, of);
    return result;
}

void gather(std::set<QorType*>& found, std::vector<QorType*>& open, QorType* type) {
    if (type && found.insert(type).second) open.push_back(type);
}

}  // namespace

TypeDescription TypeDescription::of(QorType& type) {
    TypeDescription result;
    result.fullName = Name(type.fullName());
    result.base = nameOf(type.base());
    result.kind = kindOf(type);
    result.size = type.size();
    result.constructorArgs.assign(type.constructorArgs().begin(), type.constructorArgs().end());
    for (QorAttr::Ptr const& attribute : type.attributes()) {
        if (attribute->definedBy() == &type) result.attributes.push_back(described(*attribute));
    }
    bool const begins = result.kind == Kind::entity || result.kind == Kind::value;
    if (begins) result.initials = initialsOf(type);
    if (type.valueSteps()) result.hashOrder = type.valueSteps()->hashOrder();
    return result;
}

void TypeDescription::put(Ptr<NboAttrLog::Out> const& out) const {
    out << String8(fullName) << String8(base) << static_cast<U8>(kind) << size;
    putArguments(out, constructorArgs);
    out << static_cast<U32>(attributes.size());
    for (Attribute const& attribute : attributes) {
        out << attribute.id << String8(attribute.name) << String8(attribute.valueType)
            << String8(attribute.keyType) << attribute.flags.low() << attribute.flags.high()
            << attribute.introspection.value() << String8(attribute.indexAttrName);
        putArguments(out, attribute.arguments);
    }
    out << static_cast<U32>(initials.size());
    for (Initial const& initial : initials) out << initial.id << initial.text;
    out << static_cast<U32>(hashOrder.size());
    for (U32 const place : hashOrder) out << place;
}

TypeDescription TypeDescription::next(NboAttrLog::In& in) {
    TypeDescription result;
    result.fullName = Name(in.nextString());
    result.base = Name(in.nextString());
    U8 const kind = in.nextU8();
    if (kind > static_cast<U8>(Kind::entity)) {
        throw AttrLogRecordException(String8("a type of an unknown kind: ") + result.fullName);
    }
    result.kind = static_cast<Kind>(kind);
    result.size = in.nextU32();
    Name const& name = result.fullName;
    result.constructorArgs = nextArguments(in, name);
    U32 left = nextCount(in, name, greatestAttributes, "attributes");
    for (; left != 0; --left) result.attributes.push_back(nextAttribute(in, name));
    left = nextCount(in, name, greatestAttributes, "initial values");
    for (; left != 0; --left) {
        AttributeId const id = in.nextint();
        result.initials.push_back({id, in.nextString()});
    }
    left = nextCount(in, name, greatestFields, "fields of a hash");
    for (; left != 0; --left) result.hashOrder.push_back(in.nextU32());
    return result;
}

std::vector<QorType*> typesNeededFor(Name const& fullName) {
    if (fullName.length() == 0) return QorType::types();
    std::set<QorType*> found;
    std::vector<QorType*> open;
    gather(found, open, QorType::type(fullName));
    while (!open.empty()) {
        QorType const& type = *open.back();
        open.pop_back();
        gather(found, open, type.base());
        for (auto const& argument : type.constructorArgs()) {
            gather(found, open, QorType::type(argument.type));
        }
        for (QorAttr::Ptr const& attribute : type.attributes()) {
            gather(found, open, attribute->valueType());
            gather(found, open, attribute->keyType());
        }
    }
    std::vector<QorType*> result;
    for (QorType* const type : QorType::types()) {
        if (found.contains(type)) result.push_back(type);
    }
    return result;
}

}  // namespace Qor
