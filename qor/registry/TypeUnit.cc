#include <qor/registry/TypeUnit.h>

#include <cstring>

namespace Qor {

namespace {

// Closes what was opened, also when an exception passes.
class NameSpaceScope {
  public:
    NameSpaceScope(IntrospectionReactor& reactor, char const* name) : reactor_(reactor) {
        reactor_.handleNameSpace(name);
    }
    ~NameSpaceScope() { reactor_.handleScopeExit(); }

  private:
    IntrospectionReactor& reactor_;
};

class TypeScope {
  public:
    TypeScope(IntrospectionReactor& reactor, QorType* type, QorType* base) : reactor_(reactor) {
        reactor_.handleType(QorType::PtrConst(type), QorType::PtrConst(base));
    }
    ~TypeScope() { reactor_.handleScopeExit(); }

  private:
    IntrospectionReactor& reactor_;
};

void announce(IntrospectionReactor& reactor, QorType& type, QorAttr::Ptr const& attribute) {
    type.attributeQEnq(attribute);
    reactor.handleAttr(attribute);
    reactor.handleAttrContextExit();
}

void inherit(IntrospectionReactor& reactor, QorType& type, QorType const& base) {
    for (QorAttr::Ptr const& attribute : base.attributes()) {
        announce(reactor, type, attribute->cloneFor(type));
    }
}

QorType* typeOrNull(TypeOf type) { return type ? type() : nullptr; }

// An attribute that makes something, or an operation with arguments: by hand, step by step.
void defineInstantiating(IntrospectionReactor& reactor, QorType& type, AttributeRow const& row) {
    QorAttr& tree = type.typeAttr();
    tree.attrDel(row.name);
    bool const isChildMap = row.hasInternalIndex();
    QorAttr::Ptr const keyAttr = isChildMap ? tree.attr(Name("name")) : nullptr;
    QorAttr::Ptr const record =
        tree.attrIs(row.name, row.valueType(), keyAttr, nullptr, row.flags.flags, row.id);
    if (isChildMap) {
        record->keyTypeIs(typeOrNull(row.keyType));
    }
    for (ArgumentRow const& argument : row.arguments) {
        record->argumentNameIs(argument.name);
        record->argumentTypeIs(argument.type);
    }
    if (isChildMap) {
        record->indexAttrNameIs("name");
        record->indexFlagIs(false);
    }
    record->introspectionIs(row.flags.introspection);
    announce(reactor, type, record);
}

void define(IntrospectionReactor& reactor, QorType& type, AttributeRow const& row) {
    if (!row.arguments.empty()) {
        defineInstantiating(reactor, type, row);
        return;
    }
    reactor.defNoninstantiatingAttr(&type, row.name, row.valueType(), typeOrNull(row.keyType),
                                    row.flags.flags, row.flags.introspection, row.id);
}

void describeSort(QorType& type, TypeRecord const& record) {
    type.sizeIs(record.size);
    switch (record.sort) {
        case TypeSort::enumeration:
            type.isValueIs(true);
            type.isEnumTypeIs(true);
            break;
        case TypeSort::value:
            type.isValueIs(true);
            break;
        case TypeSort::entity:
            type.isEntityIs(true);
            break;
    }
    type.hasGenericIfSupportIs(true);
}

void describeType(IntrospectionReactor& reactor, TypeRecord const& record) {
    QorType& type = *record.self();
    QorType* const base = typeOrNull(record.base);
    TypeScope const scope(reactor, &type, base);
    describeSort(type, record);
    for (ArgumentRow const& argument : record.constructorArguments) {
        type.constructorArgNameQEnq(argument.name);
        type.constructorArgTypeQEnq(argument.type);
    }
    if (base) {
        inherit(reactor, type, *base);
    }
    for (AttributeRow const& row : record.attributes) {
        define(reactor, type, row);
    }
    if (record.sort == TypeSort::enumeration) {
        type.valAttrIs(type.attr("value").ptr());
    }
}

void fillHandles(TypeRecord& record) {
    for (std::size_t i = 0; i < record.handleNames.size(); ++i) {
        record.handles[i] = record.type->attr(record.handleNames[i]);
    }
}

void describeAndFill(void* unit) {
    auto& self = *static_cast<TypeUnit*>(unit);
    self.describe();
    for (TypeRecord* const record : self.records()) {
        fillHandles(*record);
    }
}

}  // namespace

char const* TypeRecord::shortName() const noexcept {
    char const* const colon = std::strrchr(fullName, ':');
    return colon ? colon + 1 : fullName;
}

QorAttr* TypeRecord::handle(AttributeId id) const noexcept {
    for (Ptr<QorAttr> const& one : handles) {
        if (one && one->id() == id) {
            return one.ptr();
        }
    }
    return nullptr;
}

QorType* TypeUnit::typeOf(TypeRecord& record) {
    if (record.type) {
        return record.type;
    }
    describe();
    if (record.type) {
        return record.type;
    }
    QorType* const base = typeOrNull(record.base);
    Ptr<QorType> made = record.make(record.shortName(), base);
    record.type = made.ptr();
    made->isNondestructingIs(true);
    made->unitIs(this);
    if (base) {
        base->derivedTypeQEnq(made);
    }
    return record.type;
}

void TypeUnit::describe() {
    if (isDescribed_) {
        return;
    }
    IntrospectionReactor::Ptr const reactor = IntrospectionReactor::global();
    if (!reactor->isOn()) {
        reactor->describeLaterIs(&describeAndFill, this);
        return;
    }
    isDescribed_ = true;
    for (BuildRow const& row : byName_) {
        row.type();
        if (row.pointerAccess) {
            row.pointerAccess();
        }
    }
    describeBases();
    NameSpaceScope const scope(*reactor, nameSpace_);
    for (TypeRecord* const record : records_) {
        describeType(*reactor, *record);
    }
}

// What is inherited is copied from the base, which has to have it by then.
void TypeUnit::describeBases() const {
    for (TypeRecord* const record : records_) {
        QorType* const base = typeOrNull(record->base);
        if (base && base->unit()) {
            base->unit()->describe();
        }
    }
}

void TypeUnit::publish(TypeRecord& record) {
    QorType::typeNodeIs(record.self(), record.fullName);
    record.isNamed = true;
}

void TypeUnit::initialise() {
    for (TypeRecord* const record : records_) {
        publish(*record);
        fillHandles(*record);
    }
    describe();
    isInitialised_ = true;
}

TypeUnitLoader::TypeUnitLoader(TypeUnit& unit)
    : trace_((unit.initialise(), String8("RootPathBase::Qor")), false) {}

}  // namespace Qor
