#include <qor/registry/IntrospectionReactor.h>

#include <algorithm>
#include <exception>
#include <utility>

namespace Qor {

IntrospectionReactor::Ptr IntrospectionReactor::global() {
    // Never destroyed: libraries that are unloaded last may still ask.
    static auto* const reactor = new IntrospectionReactor;
    return Ptr(reactor);
}

void IntrospectionReactor::isOnIs(bool isOn) {
    isOn_ = isOn;
    if (!isOn) {
        return;
    }
    std::exception_ptr first;
    for (Waiting const& one : std::exchange(waiting_, {})) {
        try {
            one.describe(one.unit);
        } catch (...) {
            first = first ? first : std::current_exception();
        }
    }
    if (first) {
        std::rethrow_exception(first);
    }
}

void IntrospectionReactor::describeLaterIs(void (*describe)(void*), void* unit) {
    Waiting const word{describe, unit};
    if (std::find(waiting_.begin(), waiting_.end(), word) == waiting_.end()) {
        waiting_.push_back(word);
    }
}

void IntrospectionReactor::open(Scope scope, bool allowed) {
    assertThat(allowed, "a scope is opened where it may stand", "Qor/IntrospectionReactor",
               __LINE__, __func__);
    scopes_.push_back(scope);
}

void IntrospectionReactor::close(bool allowed) {
    assertThat(allowed, "the scope that was opened last is closed", "Qor/IntrospectionReactor",
               __LINE__, __func__);
    scopes_.pop_back();
}

void IntrospectionReactor::handleNameSpace(char const*) {
    open(Scope::nameSpace, !isIn(Scope::attribute));
}

void IntrospectionReactor::handleType(QorType::PtrConst const&, QorType::PtrConst const&) {
    open(Scope::type, !isIn(Scope::attribute));
    ++typesHeard_;
}

QorAttr::Ptr IntrospectionReactor::defNoninstantiatingAttr(QorType* owner, Name const& name,
                                                           QorType* valueType, QorType* keyType,
                                                           AttrFlags flags,
                                                           AttrIntrospectionFlags introspection,
                                                           AttributeId id) {
    QorAttr::Ptr record = owner->typeAttr().attrIs(name, valueType, nullptr, nullptr, flags, id);
    record->keyTypeIs(keyType);
    record->introspectionIs(introspection);
    owner->attributeQEnq(record);
    handleAttr(record);
    handleAttrContextExit();
    return record;
}

void IntrospectionReactor::handleAttr(QorAttr::Ptr const&) {
    open(Scope::attribute, isIn(Scope::type));
    ++attributesHeard_;
}

void IntrospectionReactor::handleAttrContextExit() { close(isIn(Scope::attribute)); }

void IntrospectionReactor::handleScopeExit() { close(isIn(Scope::type) || isIn(Scope::nameSpace)); }

}  // namespace Qor
