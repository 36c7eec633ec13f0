#include <qor/dynamic/DescribedTypes.h>

#include <qor/core/Format.h>
#include <qor/dynamic/DescribedEnum.h>
#include <qor/dynamic/DescribedValue.h>
#include <qor/dynamic/DescriptionCheck.h>
#include <qor/dynamic/DynamicType.h>

#include <map>
#include <set>
#include <utility>
#include <vector>

namespace Qor {

namespace {

using Kind = TypeDescription::Kind;

struct Known {
    TypeDescription description;
    QorType* type;
};

// What has been described in this process. Never destroyed, as types are not.
std::map<Name, Known>& known() {
    static auto& types = *new std::map<Name, Known>;
    return types;
}

// All types that were ever made, those included that have given way.
std::vector<Qor::Ptr<QorType>>& kept() {
    static auto& types = *new std::vector<Qor::Ptr<QorType>>;
    return types;
}

U32& madeInProcess() {
    static U32 count = 0;
    return count;
}

// The part behind the name space.
Name shortName(Name const& fullName) {
    std::size_t const colon = fullName.view().rfind(':');
    return colon == std::string_view::npos ? fullName : Name(fullName.view().substr(colon + 1));
}

Qor::Ptr<QorType> newType(TypeDescription const& description) {
    Name const name = shortName(description.fullName);
    switch (description.kind) {
        case Kind::enumeration:
            return make<DescribedEnum>(name);
        case Kind::value:
            return make<DescribedValue>(description.fullName, name);
        case Kind::entity:
        case Kind::builtin:
            break;
    }
    return nullptr;
}

/// What is wrong with a value or a name is told of its type.
template <class Step>
void namingType(TypeDescription const& description, Step const& step) {
    try {
        step();
    } catch (RangeException const& failure) {
        throw AttrLogRecordException(String8("the description of ") + description.fullName + ": " +
                                     failure.message());
    }
}

// One set of types, from its descriptions to its publication.
class Making {
  public:
    explicit Making(TypeDescriptions const& told) : told_(told) {}
    Making(Making const&) = delete;
    Making& operator=(Making const&) = delete;
    // What was not published leaves no trace in the types that it names.
    ~Making() {
        if (isPublished_) return;
        for (auto const& [name, type] : made_) {
            std::vector<QorAttr::Ptr> const attributes(type->attributes().begin(),
                                                       type->attributes().end());
            for (QorAttr::Ptr const& attribute : attributes) type->attributeQDel(attribute);
            if (auto* const entity = dynamic_cast<DynamicType*>(type.ptr())) {
                entity->forgetInitials();
            } else if (auto* const value = dynamic_cast<DescribedValue*>(type.ptr())) {
                value->forgetInitials();
            }
        }
    }

    void run() {
        choose();
        needRoom();
        for (Name const& name : chosen_) make(name);
        for (Name const& name : chosen_) fill(name);
        for (Name const& name : chosen_) finishValue(name);
        for (Name const& name : chosen_) finishEntity(name);
        publish();
    }

  private:
    /// Those that are new or differ, and those that build on such.
    void choose() {
        for (auto const& [name, description] : told_) {
            if (isCompiled(name)) continue;
            auto const before = known().find(name);
            bool const isSame = before != known().end() &&
                                before->second.description == description &&
                                QorType::type(name) == before->second.type;
            if (!isSame) chosen_.insert(name);
        }
        chooseDependents();
    }

    static bool isCompiled(Name const& name) {
        QorType const* const type = QorType::type(name);
        return type && !type->isDescribed();
    }

    using Users = std::map<Name, std::vector<Name>>;

    void chooseDependents() {
        Users const users = usersOfTold();
        std::vector<Name> open(chosen_.begin(), chosen_.end());
        while (!open.empty()) {
            auto const found = users.find(open.back());
            open.pop_back();
            if (found == users.end()) continue;
            for (Name const& user : found->second) {
                if (chosen_.insert(user).second) open.push_back(user);
            }
        }
    }

    /// Of each type that is named: those that build on it.
    Users usersOfTold() const {
        Users users;
        for (auto const& [name, description] : told_) {
            if (isCompiled(name)) continue;
            users[description.base].push_back(name);
            for (auto const& attribute : description.attributes) {
                users[attribute.valueType].push_back(name);
                users[attribute.keyType].push_back(name);
            }
        }
        return users;
    }

    void needRoom() const {
        if (madeInProcess() > DescribedTypes::greatestInProcess) {
            throwRangeException("more types were described than a process takes in its life");
        }
    }

    QorType* find(Name const& name) const {
        auto const found = made_.find(name);
        return found == made_.end() ? QorType::type(name) : found->second.ptr();
    }

    /// Bases before what derives from them.
    void make(Name const& name) {
        if (made_.contains(name) || !chosen_.contains(name)) return;
        TypeDescription const& description = told_.at(name);
        make(description.base);
        if (description.kind == Kind::entity) {
            made_[name] = Qor::make<DynamicType>(shortName(name), find(description.base));
        } else if (Qor::Ptr<QorType> type = newType(description)) {
            made_[name] = type;
        } else {
            made_[name] = Qor::make<OpaqueType>(shortName(name));
        }
        describeSort(*made_[name], description);
    }

    static void describeSort(QorType& type, TypeDescription const& description) {
        type.sizeIs(description.size);
        type.isEntityIs(description.kind == Kind::entity);
        type.isValueIs(description.kind != Kind::entity);
        if (description.kind == Kind::enumeration) {
            type.isEnumTypeIs(true);
            type.valAttrIs(type.attr("value").ptr());
        }
        type.hasGenericIfSupportIs(description.kind != Kind::builtin);
        for (QorAttr::Argument const& argument : description.constructorArgs) {
            type.constructorArgNameQEnq(argument.name);
            type.constructorArgTypeQEnq(argument.type);
        }
    }

    /// Attributes, those of the base first.
    void fill(Name const& name) {
        if (!chosen_.contains(name) || !filled_.insert(name).second) return;
        TypeDescription const& description = told_.at(name);
        fill(description.base);
        QorType& type = *made_.at(name);
        if (type.base()) {
            for (QorAttr::Ptr const& attribute : type.base()->attributes()) {
                type.attributeQEnq(attribute->cloneFor(type));
            }
        }
        for (auto const& attribute : description.attributes) define(type, attribute);
    }

    void define(QorType& type, TypeDescription::Attribute const& told) const {
        QorAttr& tree = type.typeAttr();
        tree.attrDel(told.name);
        bool const isIndexed = told.indexAttrName.length() != 0;
        QorAttr::Ptr const keyAttr = isIndexed ? tree.attr(told.indexAttrName) : nullptr;
        QorAttr::Ptr const record =
            tree.attrIs(told.name, find(told.valueType), keyAttr, nullptr, told.flags, told.id);
        if (told.keyType.length() != 0) record->keyTypeIs(find(told.keyType));
        for (QorAttr::Argument const& argument : told.arguments) {
            record->argumentNameIs(argument.name);
            record->argumentTypeIs(argument.type);
        }
        if (isIndexed) record->indexAttrNameIs(told.indexAttrName);
        record->introspectionIs(told.introspection);
        type.attributeQEnq(record);
    }

    /// How values are held, those within a value before it.
    void finishValue(Name const& name) {
        if (!chosen_.contains(name) || !finished_.insert(name).second) return;
        TypeDescription const& description = told_.at(name);
        if (description.kind != Kind::value) return;
        for (auto const& attribute : description.attributes) finishValue(attribute.valueType);
        finishAs<DescribedValue>(description);
    }

    /// How attributes are held, which asks how values are.
    void finishEntity(Name const& name) {
        TypeDescription const& description = told_.at(name);
        if (description.kind == Kind::entity) finishAs<DynamicType>(description);
    }

    template <class Type>
    void finishAs(TypeDescription const& description) {
        auto& type = static_cast<Type&>(*made_.at(description.fullName));
        if constexpr (std::is_same_v<Type, DescribedValue>) {
            type.completeIs(description.hashOrder);
        } else {
            type.completeIs();
        }
        namingType(description, [&] {
            for (auto const& initial : description.initials)
                type.initialIs(initial.id, initial.text);
        });
    }

    void publish() {
        isPublished_ = true;
        for (auto const& [name, type] : made_) {
            madeInProcess() += partsOf(*type, told_.at(name));
            type->isNondestructingIs(true);
            kept().push_back(type);
            if (QorType* const base = type->base()) base->derivedTypeQEnq(type);
            QorType::typeNodeIs(type.ptr(), name);
            known()[name] = {told_.at(name), type.ptr()};
        }
    }

    // What a type keeps for good.
    static U32 partsOf(QorType& type, TypeDescription const& description) {
        std::size_t parts = 1 + description.constructorArgs.size() + description.initials.size();
        for (QorAttr::Ptr const& attribute : type.attributes()) {
            parts += 1 + attribute->arguments().size();
        }
        return static_cast<U32>(parts);
    }

    TypeDescriptions const& told_;
    std::set<Name> chosen_;
    std::set<Name> filled_;
    std::set<Name> finished_;
    std::map<Name, Qor::Ptr<QorType>> made_;
    bool isPublished_ = false;
};

TypeDescription readAgain(String8 const& bytes) {
    auto const in = Qor::make<NboAttrLog::In>(bytes.length());
    in->receive(bytes.view());
    return TypeDescription::next(*in);
}

}  // namespace

void DescribedTypes::take(NboAttrLog::In& in) {
    bytes_ += in.available();
    if (bytes_ > quota_.bytes || told_.size() >= quota_.types) {
        throwRangeException(format("descriptions of more than %u types or %llu bytes", quota_.types,
                                   static_cast<unsigned long long>(quota_.bytes)));
    }
    U64 const start = in.readPosition();
    needSound(TypeDescription::next(in));
    auto const length = static_cast<U32>(in.readPosition() - start);
    in.readPositionIs(start);
    told_.push_back(in.nextText(length));
}

void DescribedTypes::complete() {
    TypeDescriptions told;
    bytes_ = 0;
    for (String8 const& bytes : std::exchange(told_, {})) {
        TypeDescription description = readAgain(bytes);
        Name const name = description.fullName;
        if (!told.emplace(name, std::move(description)).second) {
            throw AttrLogRecordException(String8("the description of ") + name + ": it came twice");
        }
    }
    DescriptionCheck(told).run();
    Making(told).run();
}

}  // namespace Qor
