#include <qor/dynamic/DynamicRows.h>

#include <qor/generic/AttributeSteps.h>
#include <qor/generic/GenericException.h>

namespace Qor {

template <>
DynamicKey unwrapped<DynamicKey>(GenericIf const& wrapper) {
    return DynamicKey(AnyValue::of(*DynamicScope::attribute().key, wrapper));
}

template <>
DynamicValue unwrapped<DynamicValue>(GenericIf const& wrapper) {
    return DynamicValue(AnyValue::of(*DynamicScope::attribute().value, wrapper));
}

namespace {

GenericIf::Ptr wrappedTarget(Ptr<Entity> const& target, bool isConst) {
    return wrappedEntity(target.ptr(), DynamicScope::attribute().valueType, isConst);
}

Name nameOf(GenericIf const& key) { return unwrapped<Name>(key); }

Name argumentName(GenericIf const* list) {
    GenericArguments arguments(list);
    auto name = argument<Name>(arguments.next("name").ptr(), "name");
    arguments.end(DynamicScope::attribute().name.charPtr());
    return name;
}

DynamicEntity& of(Entity& entity) noexcept { return static_cast<DynamicEntity&>(entity); }

struct ReferenceSteps : KeyedSteps<DynamicReferenceAttr> {
    using A = DynamicReferenceAttr;
    static GenericIf::Ptr get(Entity& entity, GenericIf const* key, bool isConst) {
        return wrappedTarget(keyedValue<A>(Qor::of(entity), unwrapped<DynamicKey>(*key)), isConst);
    }
    static void set(Entity& entity, GenericIf const* key, GenericIf const& value) {
        // Raises what it does for a target of another class.
        value.genericValue(Ptr<QorType const>(DynamicScope::attribute().valueType));
        auto const target = unwrapped<Ptr<Entity>>(value);
        setDynamicReference(Qor::of(entity), unwrapped<DynamicKey>(*key), target);
    }
};

struct MembersWalk : WalkSteps<DynamicReferenceAttr> {
    static GenericIf::Ptr value(void const* iterator, bool isConst) {
        return wrappedTarget(held(iterator).at.value(), isConst);
    }
    static constexpr GenericWalk walk{&atStart, &atKey,   &atHash, &MembersWalk::value, &key, &step,
                                      &clone,   &isThere, &end};
};

struct ChildMemberSteps {
    using A = DynamicChildMapAttr;
    static GenericIf::Ptr get(Entity& entity, GenericIf const* key, bool isConst) {
        return wrappedTarget(keyedValue<A>(of(entity), DynamicKey(nameOf(*key))), isConst);
    }
    static GenericIf::Ptr make(Entity& entity, GenericIf const* list, bool isConst) {
        return wrappedTarget(setDynamicChildMember(of(entity), argumentName(list)), isConst);
    }
    static GenericIf::Ptr del(Entity& entity, GenericIf const* key, bool isConst) {
        auto const gone = delDynamicChildMember(of(entity), DynamicKey(nameOf(*key)));
        return gone ? wrappedTarget(gone, isConst) : nullptr;
    }
};

struct SingleChildSteps {
    static GenericIf::Ptr get(Entity& entity, GenericIf const*, bool isConst) {
        return wrappedTarget(DynamicChildAttr::field(of(entity)), isConst);
    }
    static GenericIf::Ptr make(Entity& entity, GenericIf const* list, bool isConst) {
        return wrappedTarget(setDynamicChild(of(entity), argumentName(list)), isConst);
    }
    static GenericIf::Ptr del(Entity& entity, GenericIf const*, bool isConst) {
        auto const gone = delDynamicChild(of(entity));
        return gone ? wrappedTarget(gone, isConst) : nullptr;
    }
};

// Where a call to the process that has the code would begin.
GenericIf::Ptr call(Entity& entity, GenericIf const*, bool) {
    throw NoCodeException(DynamicScope::attribute().name.charPtr(), entity.fwkType()->fullName());
}

template <class A>
void collectionIs(GenericAttribute& row) {
    row.count = &CollectionSteps<A>::count;
    row.version = &CollectionSteps<A>::version;
    row.exists = &CollectionSteps<A>::exists;
    row.walk = &WalkSteps<A>::walk;
}

template <class A>
void keyedIs(GenericAttribute& row) {
    collectionIs<A>(row);
    row.get = &KeyedSteps<A>::get;
    row.set = &KeyedSteps<A>::set;
    row.del = &KeyedSteps<A>::del;
}

void referenceIs(GenericAttribute& row) {
    keyedIs<DynamicReferenceAttr>(row);
    row.get = &ReferenceSteps::get;
    row.set = &ReferenceSteps::set;
    row.walk = &MembersWalk::walk;
}

void childMemberIs(GenericAttribute& row) {
    collectionIs<DynamicChildMapAttr>(row);
    row.get = &ChildMemberSteps::get;
    row.make = &ChildMemberSteps::make;
    row.del = &ChildMemberSteps::del;
    row.walk = &MembersWalk::walk;
}

void childIs(GenericAttribute& row) {
    row.get = &SingleChildSteps::get;
    row.make = &SingleChildSteps::make;
    row.del = &SingleChildSteps::del;
}

AttributeKind kindOf(DynamicSort sort) {
    switch (sort) {
        case DynamicSort::nondestructing:
        case DynamicSort::value:
        case DynamicSort::text:
            return AttributeKind::scalar;
        case DynamicSort::constant:
            return AttributeKind::constField;
        case DynamicSort::flagMember:
        case DynamicSort::textMember:
            return AttributeKind::valueMap;
        case DynamicSort::reference:
            return AttributeKind::refMap;
        case DynamicSort::childMember:
            return AttributeKind::childMap;
        case DynamicSort::child:
            return AttributeKind::child;
        case DynamicSort::operation:
            return AttributeKind::operation;
    }
    return AttributeKind::operation;
}

void stepsIs(GenericAttribute& row, DynamicSort sort) {
    switch (sort) {
        case DynamicSort::nondestructing:
            return;
        case DynamicSort::value:
        case DynamicSort::text:
            row.set = &SingleSteps<DynamicValueAttr>::set;
            [[fallthrough]];
        case DynamicSort::constant:
            row.get = &SingleSteps<DynamicValueAttr>::get;
            return;
        case DynamicSort::flagMember:
            return keyedIs<DynamicFlagAttr>(row);
        case DynamicSort::textMember:
            return keyedIs<DynamicTextAttr>(row);
        case DynamicSort::reference:
            return referenceIs(row);
        case DynamicSort::childMember:
            return childMemberIs(row);
        case DynamicSort::child:
            return childIs(row);
        case DynamicSort::operation:
            row.get = &call;
            return;
    }
}

}  // namespace

GenericAttribute dynamicRow(DynamicAttribute const& attribute) {
    GenericAttribute row{
        .id = attribute.id, .name = attribute.name.charPtr(), .kind = kindOf(attribute.sort)};
    stepsIs(row, attribute.sort);
    return row;
}

}  // namespace Qor
