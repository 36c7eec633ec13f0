#include <qor/registry/QorAttr.h>

#include <algorithm>

#include <qor/core/Assert.h>
#include <qor/registry/QorType.h>

namespace Qor {

QorAttr::QorAttr(QorType* owner, Name name, QorType* valueType, AttrFlags flags, AttributeId id)
    : owner_(owner),
      definedBy_(owner),
      name_(std::move(name)),
      valueType_(valueType),
      flags_(flags),
      id_(id) {}

QorAttr::~QorAttr() = default;

QorAttr::Ptr QorAttr::attrIs(Name const& name, QorType* type, PtrConst const& keyAttr,
                             PtrConst const& otherAttr, AttrFlags flags, AttributeId id) {
    Ptr record = make<QorAttr>(owner_, name, type, flags, id);
    record->keyAttr_ = keyAttr;
    record->otherAttr_ = otherAttr;
    place(record);
    return record;
}

void QorAttr::place(Ptr const& record) {
    attrDel(record->name_);
    below_.push_back(record);
}

QorAttr::Ptr QorAttr::attrDel(Name const& name) {
    auto const found = std::find_if(below_.begin(), below_.end(),
                                    [&](Ptr const& record) { return record->name_ == name; });
    if (found == below_.end()) {
        return nullptr;
    }
    Ptr gone = std::move(*found);
    below_.erase(found);
    owner_->attributeQDel(gone);
    return gone;
}

QorAttr::Ptr QorAttr::attr(Name const& name) const {
    for (Ptr const& record : below_) {
        if (record->name_ == name) {
            return record;
        }
    }
    return nullptr;
}

void QorAttr::argumentNameIs(Name name) { arguments_.push_back({std::move(name), Name()}); }

// REQUIRES: an argument has been named.
void QorAttr::argumentTypeIs(Name type) {
    assertThat(!arguments_.empty(), "an argument has been named", "Qor/QorAttr", __LINE__,
               __func__);
    arguments_.back().type = std::move(type);
}

QorAttr::Ptr QorAttr::cloneFor(QorType& derived) const {
    Ptr copy = make<QorAttr>(&derived, name_, valueType_, flags_, id_);
    copy->definedBy_ = definedBy_;
    copy->keyType_ = keyType_;
    copy->introspection_ = introspection_;
    copy->indexFlag_ = indexFlag_;
    copy->indexAttrName_ = indexAttrName_;
    copy->keyAttr_ = keyAttr_;
    copy->otherAttr_ = otherAttr_;
    copy->arguments_ = arguments_;
    derived.typeAttr().place(copy);
    return copy;
}

}  // namespace Qor
