#include <qor/attrlog/session/StateDigest.h>

#include <qor/generic/GenericIfEntity.h>
#include <qor/generic/ValueSteps.h>
#include <qor/tree/Dir.h>

#include <algorithm>
#include <optional>
#include <vector>

namespace Qor {

namespace NboAttrLog {

namespace {

// FNV-1a, 64 bits; each text ends with a byte of its own.
class Hash {
  public:
    void add(String8 const& text) {
        for (char const c : text.view()) add(static_cast<unsigned char>(c));
        add(0);
    }
    U64 value() const noexcept { return value_; }

  private:
    void add(unsigned char byte) noexcept { value_ = (value_ ^ byte) * 0x100000001B3; }

    U64 value_ = 0xCBF29CE484222325;
};

GenericIf::Ptr wrapper(Entity& entity) { return entity.fwkType()->genericIf_(&entity, true); }

String8 textOf(GenericIf const* held) { return held != nullptr ? held->strRep() : String8("null"); }

bool holdsChildren(Entity const& entity, QorAttr const& attribute) {
    return attribute.flags().isInstantiating() || dynamic_cast<Dir const*>(&entity) != nullptr;
}

// The members of a collection in the order of their keys' hashes, and those of one hash in that of
// their keys' texts: they may stand as they were inserted, which is another order in each process.
class RowsInOrder {
  public:
    RowsInOrder(GenericIf& held, QorAttr const& attribute)
        : type_(*attribute.keyType()), at_(held.attributeIteratorConst(attribute.id())) {
        gather();
    }
    /// From that key on, which need not be there.
    RowsInOrder(GenericIf& held, QorAttr const& attribute, GenericIf::PtrConst const& from)
        : type_(*attribute.keyType()), at_(fromHash(held, attribute.id(), from)) {
        gather();
        if (rows_.empty() || rows_.front().hash != hashOf(*from)) return;
        String8 const text = textOf(from.ptr());
        while (*this && key().view() < text.view()) ++*this;
    }

    explicit operator bool() const noexcept { return row_ < rows_.size(); }
    RowsInOrder& operator++() {
        if (++row_ == rows_.size()) gather();
        return *this;
    }
    /// REQUIRES: not at the end
    String8 const& key() const { return rows_[row_].key; }
    GenericIf::Ptr const& value() const { return rows_[row_].value; }

  private:
    struct Row {
        U32 hash;
        String8 key;
        GenericIf::Ptr value;
    };

    static GenericIf::AttributeIteratorConst fromHash(GenericIf& held, AttributeId id,
                                                      GenericIf::PtrConst const& from) {
        return static_cast<GenericIfEntity&>(held).attributeIteratorHashConst(id, from);
    }
    U32 hashOf(GenericIf const& key) const {
        auto const* const steps = type_.valueSteps();
        return steps ? steps->hash(key.genericValue(Ptr<QorType const>(&type_))) : 0;
    }
    // The members of the next hash.
    void gather() {
        rows_.clear();
        row_ = 0;
        for (; at_; ++at_) {
            auto const key = at_.key();
            U32 const hash = hashOf(*key);
            if (!rows_.empty() && rows_.front().hash != hash) break;
            rows_.push_back({hash, textOf(key.ptr()), at_.value()});
        }
        std::sort(rows_.begin(), rows_.end(),
                  [](Row const& a, Row const& b) { return a.key.view() < b.key.view(); });
    }

    QorType& type_;
    GenericIf::AttributeIteratorConst at_;
    std::vector<Row> rows_;
    std::size_t row_ = 0;
};

void addValue(Hash& hash, GenericIf& held, QorAttr const& attribute) {
    hash.add(attribute.name());
    if (!attribute.flags().isCollection()) {
        hash.add(textOf(held.attributeOp(attribute.id()).ptr()));
        return;
    }
    for (RowsInOrder at(held, attribute); at; ++at) {
        hash.add(at.key());
        hash.add(textOf(at.value().ptr()));
    }
}

void addEntity(Hash& hash, Entity& entity) {
    GenericIf::Ptr const held = wrapper(entity);
    for (auto const& attribute : entity.fwkType()->attributes()) {
        bool const isHeld = attribute->flags().isCollection() || attribute->flags().isStored();
        if (isHeld && !attribute->introspection().isFunction() &&
            !holdsChildren(entity, *attribute)) {
            addValue(hash, *held, *attribute);
        }
    }
}

QorAttr::Ptr collectionOf(Entity const& entity, AttributeId id) {
    QorAttr::Ptr attribute = entity.fwkType()->attr(id);
    if (!attribute || !attribute->flags().isCollection()) {
        throwRangeException(entity.uriPath() + " has no such collection");
    }
    return attribute;
}

RowsInOrder rowsFrom(GenericIf& held, QorAttr const& attribute, String8 const& from) {
    if (from.empty()) return RowsInOrder(held, attribute);
    return RowsInOrder(held, attribute, attribute.keyType()->genericIfFromStrep(from, true));
}

}  // namespace

StateDigest stateDigest(Entity& entity, DigestPage const& page) {
    Hash hash;
    StateDigest digest;
    if (page.attribute == 0) {
        addEntity(hash, entity);
        return {1, hash.value(), {}};
    }
    QorAttr::Ptr const attribute = collectionOf(entity, page.attribute);
    GenericIf::Ptr const held = wrapper(entity);
    bool const ownsMembers = holdsChildren(entity, *attribute);
    auto at = rowsFrom(*held, *attribute, page.from);
    for (; at && digest.rows < page.most; ++at, ++digest.rows) {
        hash.add(at.key());
        GenericIf::Ptr const& member = at.value();
        auto const child = member ? member->entityConst() : nullptr;
        if (ownsMembers && child) {
            addEntity(hash, const_cast<Entity&>(*child));
        } else {
            hash.add(textOf(member.ptr()));
        }
    }
    digest.value = hash.value();
    if (at) digest.next = at.key();
    return digest;
}

}  // namespace NboAttrLog

}  // namespace Qor
