#include <qor/generic/GenericIf.h>

#include <qor/generic/GenericException.h>

namespace Qor {

GenericIf::~GenericIf() = default;
GenericIf::Watcher::~Watcher() = default;
void GenericIf::Watcher::onNotification(GenericIf&) {}
void GenericIf::Watcher::onZeroReferences(GenericIf&) {}

void GenericIf::throwConstException(char const* text) { throw ConstException(text); }
void GenericIf::throwTypeException(char const* subject) { throw TypeException(subject); }
void GenericIf::throwBadIndexAttrException(char const* attribute) {
    throw BadIndexAttrException(attribute);
}
void GenericIf::throwUnknownAttrException(char const* subject) {
    throw UnknownAttrException(subject);
}
void GenericIf::throwUnknownArgException(char const* subject) {
    throw UnknownArgException(subject);
}
void GenericIf::throwOpNotSupportedException(char const* attribute, AttributeOp::OpId op, bool) {
    throw OpNotSupportedException(attribute, op);
}

void GenericIf::needChangeable(AttributeOp const& op) const {
    if (isConst_ && AttributeOp::changes(op.opId)) {
        throwConstException("attempting to modify a const instance");
    }
}

GenericIf::Ptr GenericIf::attributeOp(AttributeOp const& op, PtrConst const&, Ptr const&) {
    needChangeable(op);
    String8 const name = attributeString(op.attributeId);
    if (fwkType()->attr(op.attributeId)) {
        throwOpNotSupportedException(name.charPtr(), op.opId, false);
    }
    throwUnknownAttrException(fwkType()->qorName().charPtr());
}

AttributeId GenericIf::attributeId(String8 name) const {
    QorAttr::Ptr const attribute = fwkType()->attr(Name(name));
    if (!attribute) {
        throwUnknownAttrException(name.charPtr());
    }
    return attribute->id();
}

String8 GenericIf::attributeString(AttributeId id) const {
    QorAttr::Ptr const attribute = fwkType()->attr(id);
    return attribute ? String8(attribute->name()) : String8("unknown");
}

String8 GenericIf::strRep() const { return fwkType()->fullName(); }

void const* GenericIf::genericValue(Qor::Ptr<QorType const> const&) const {
    throwTypeException(fwkType()->qorName().charPtr());
}

Qor::Ptr<Entity const> GenericIf::entityConst() const { return nullptr; }
Qor::Ptr<Entity> GenericIf::entity() { return nullptr; }
void GenericIf::markedForDeletionIs(bool marked) { qorMarkedForDeletionIs(marked); }

GenericIf::AttributeIteratorConst GenericIf::attributeIteratorConst(AttributeId id) {
    throwUnknownAttrException(attributeString(id).charPtr());
}

GenericIf::AttributeIteratorConst GenericIf::attributeIteratorKeyConst(AttributeId id,
                                                                       PtrConst const&) {
    throwUnknownAttrException(attributeString(id).charPtr());
}

// Only an iterator that this wrapper made comes here, and it makes none.
GenericIf::Ptr GenericIf::attributeIterator_iterObj(AttributeIteratorConst const&) {
    return nullptr;
}

GenericIf::PtrConst GenericIf::attributeIterator_iterObj(
    AttributeIteratorConst const& iterator) const {
    return const_cast<GenericIf*>(this)->attributeIterator_iterObj(iterator);
}

GenericIf::Ptr GenericIf::attributeIterator_iterInc(AttributeIteratorConst const&) {
    return nullptr;
}

GenericIf::PtrConst GenericIf::attributeIterator_iterKey(AttributeIteratorConst const&) {
    return nullptr;
}

GenericIf::AttributeIteratorConst GenericIf::attributeIterator_iterClone(
    AttributeIteratorConst const&) {
    return {};
}

bool GenericIf::attributeIterator_nonNull(AttributeIteratorConst const&) { return false; }

GenericIf::Ptr GenericIf::attributeIterator_iterDel(AttributeIteratorConst const&) {
    return nullptr;
}

void GenericIf::onAttribute(AttributeId id, PtrConst& key) {
    if (watcher_) {
        watcher_->onAttribute(*this, id, key);
    }
}

void GenericIf::onAttribute(AttributeId id) {
    if (watcher_) {
        PtrConst none;
        watcher_->onAttribute(*this, id, none);
    }
}

void GenericIf::onNotification() {
    if (watcher_) {
        watcher_->onNotification(*this);
    }
}

void GenericIf::onZeroReferences() {
    if (watcher_) {
        watcher_->onZeroReferences(*this);
    }
}

GenericIf::AttributeIteratorConst::AttributeIteratorConst(AttributeIteratorConst const& other) {
    if (other.wrapper_) {
        *this = other.wrapper_->attributeIterator_iterClone(other);
    }
}

GenericIf::AttributeIteratorConst::AttributeIteratorConst(AttributeIteratorConst&& other) noexcept
    : wrapper_(std::move(other.wrapper_)),
      id_(other.id_),
      iterator_(std::exchange(other.iterator_, nullptr)) {}

GenericIf::AttributeIteratorConst& GenericIf::AttributeIteratorConst::operator=(
    AttributeIteratorConst other) noexcept {
    wrapper_.swap(other.wrapper_);
    std::swap(id_, other.id_);
    std::swap(iterator_, other.iterator_);
    return *this;
}

GenericIf::AttributeIteratorConst::~AttributeIteratorConst() {
    if (iterator_) {
        wrapper_->attributeIterator_iterDel(*this);
    }
}

GenericIf::AttributeIteratorConst::operator bool() const {
    return iterator_ && wrapper_->attributeIterator_nonNull(*this);
}

GenericIf::AttributeIteratorConst& GenericIf::AttributeIteratorConst::operator++() {
    if (iterator_) {
        wrapper_->attributeIterator_iterInc(*this);
    }
    return *this;
}

GenericIf::PtrConst GenericIf::AttributeIteratorConst::key() const {
    return iterator_ ? wrapper_->attributeIterator_iterKey(*this) : nullptr;
}

GenericIf::Ptr GenericIf::AttributeIteratorConst::value() const {
    return iterator_ ? wrapper_->attributeIterator_iterObj(*this) : nullptr;
}

}  // namespace Qor
