// Whether a set of descriptions can be taken in: each by itself, with the others, and with what the
// process has. What is wrong is raised as AttrLogRecordException, which names the type. The time
// that it takes, and what taking the set in costs, are in proportion to the limits here, whatever
// stands in it.
#ifndef QOR_DYNAMIC_DESCRIPTION_CHECK_H
#define QOR_DYNAMIC_DESCRIPTION_CHECK_H

#include <qor/dynamic/TypeDescription.h>

#include <map>

namespace Qor {

using TypeDescriptions = std::map<Name, TypeDescription>;

/// Whether a type may be called so; what is called otherwise can't be described.
QOR_EXPORT bool isTypeName(Name const& name);
/// Names, kinds, numbers: what needs no other type.
void needSound(TypeDescription const& description);

class DescriptionCheck {
  public:
    // Levels of bases, and of values within values.
    static constexpr U32 greatestDepth = 64;
    // Attributes, inherited ones included: of a class, and of all in the set.
    static constexpr U32 greatestAttributes = TypeDescription::greatestAttributes;
    static constexpr U32 greatestAttributesOfAll = 65536;
    // Fields of a value, those of values within it counted.
    static constexpr U32 greatestFields = TypeDescription::greatestFields;

    explicit DescriptionCheck(TypeDescriptions const& all) : all_(all) {}
    void run();

  private:
    /// What the attributes of a class are, by their numbers, and how many classes it stands on.
    struct Class {
        std::map<AttributeId, Name> meanings;
        U32 levels = 0;
    };

    void needWhole(TypeDescription const& description);
    void needAttribute(TypeDescription const& description,
                       TypeDescription::Attribute const& attribute);
    void needAgrees(TypeDescription const& description, QorType& compiled) const;
    Class const& classOf(TypeDescription const& root, Name const& name, U32 depth);
    Class toldClass(TypeDescription const& root, TypeDescription const& description, U32 depth);
    static void needLevels(TypeDescription const& root, U32 levels);
    static void addMeaning(TypeDescription const& root, Class& to, AttributeId id,
                           Name const& name);
    U32 fieldsOf(TypeDescription const& root, Name const& name, U32 depth);
    TypeDescription const* told(Name const& name) const;
    bool isKnown(Name const& name) const;
    bool isEntity(Name const& name) const;

    TypeDescriptions const& all_;
    std::map<Name, Class> classes_;
    std::map<Name, U32> fields_;
    U32 attributes_ = 0;
};

}  // namespace Qor

#endif
