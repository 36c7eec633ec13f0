// What the registry knows of a type, as one process tells another: names, numbers and flags, and of
// what has values the ones that it begins with. Put and read in this order:
//
//   full name:text  base:text  kind:u8  size:u32 (bytes)  constructor's arguments
//   attributes:u32, each  id:i32  name:text  value type:text  key type:text
//                         flags:u32 u32  introspection:u32  index attribute:text  arguments
//   initial values:u32, each  id:i32  text form:text
//   fields of a value's hash:u32, each  its place among the fields:u32
//
// Arguments are their number in 32 bits and each one's name and type as texts. A class tells what
// it defines itself; what it inherits is its base's. The attributes of an enumeration are its
// literals. Initial values stand for inherited attributes too.
#ifndef QOR_DYNAMIC_TYPE_DESCRIPTION_H
#define QOR_DYNAMIC_TYPE_DESCRIPTION_H

#include <qor/attrlog/NboAttrLogIn.h>
#include <qor/attrlog/NboAttrLogOut.h>
#include <qor/registry/QorType.h>

namespace Qor {

struct QOR_EXPORT TypeDescription {
    enum class Kind : U8 {
        builtin = 0,      // has no parts, and is known where its library is
        enumeration = 1,  //
        value = 2,        // composite
        entity = 3,
    };
    // More than that can't be read. Attributes and initial values with the inherited ones,
    // arguments of a constructor or of one attribute.
    static constexpr U32 greatestAttributes = 2048;
    static constexpr U32 greatestArguments = 64;
    static constexpr U32 greatestFields = 1024;

    using Arguments = std::vector<QorAttr::Argument>;
    struct Attribute {
        AttributeId id = 0;
        Name name;
        Name valueType;
        Name keyType;  // empty for what is no collection
        AttrFlags flags;
        AttrIntrospectionFlags introspection;
        Name indexAttrName;
        Arguments arguments;

        bool operator==(Attribute const&) const = default;
    };
    struct Initial {
        AttributeId id = 0;
        String8 text;

        bool operator==(Initial const&) const = default;
    };

    Name fullName;
    Name base;  // empty for what has none
    Kind kind = Kind::builtin;
    U32 size = 0;
    Arguments constructorArgs;
    std::vector<Attribute> attributes;
    std::vector<Initial> initials;
    std::vector<U32> hashOrder;  // of a composite value: see ValueSteps

    /// What the registry knows of a type. Makes an instance of a class, to see how it begins.
    static TypeDescription of(QorType& type);
    void put(Ptr<NboAttrLog::Out> const& out) const;
    /// Reads one. Raises AttrLogRecordException for what can't be a description.
    static TypeDescription next(NboAttrLog::In& in);

    bool operator==(TypeDescription const&) const = default;
};

/// The published types that are needed to know the one of that name, itself included, in the order
/// of their names; all for the empty name, none for one that is not published.
QOR_EXPORT std::vector<QorType*> typesNeededFor(Name const& fullName);

}  // namespace Qor

#endif
