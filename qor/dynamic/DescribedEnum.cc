#include <qor/dynamic/DescribedEnum.h>

#include <qor/attrlog/flow/Demuxer.h>
#include <qor/core/Format.h>

#include <cstring>

namespace Qor {

namespace {

// It has one attribute, its value, under id 1.
class Enumerator final : public GenericIf {
  public:
    Enumerator(DescribedEnum& type, U32 number, bool isConst)
        : GenericIf(isConst), type_(type), number_(number) {}

    QorType* fwkType() const override { return &type_; }
    String8 strRep() const override { return type_.valueSteps()->text(&number_); }
    GenericIf::Ptr genericClone() const override {
        return make<Enumerator>(type_, number_, isConst());
    }
    void const* genericValue(Qor::Ptr<QorType const> const& type) const override {
        return type == &type_ ? &number_ : GenericIf::genericValue(type);
    }
    using GenericIf::attributeOp;
    GenericIf::Ptr attributeOp(AttributeOp const& op, PtrConst const&,
                               GenericIf::Ptr const&) override {
        needChangeable(op);
        if (op.attributeId != valueId) throwUnknownAttrException(type_.qorName().charPtr());
        return genericClone();
    }
    String8 attributeString(AttributeId id) const override {
        return id == valueId ? String8("value") : GenericIf::attributeString(id);
    }

  private:
    static constexpr AttributeId valueId = 1;

    DescribedEnum& type_;
    U32 const number_;
};

}  // namespace

OpaqueType::OpaqueType(Name shortName) : QorType(std::move(shortName), nullptr, nullptr, 0) {}

OpaqueType::~OpaqueType() = default;

DescribedEnum::DescribedEnum(Name shortName) : QorType(std::move(shortName), nullptr, nullptr, 0) {
    isValueIs(true);
}

DescribedEnum::~DescribedEnum() = default;

Qor::Ptr<GenericIf> DescribedEnum::genericIf(void const* value, bool isConst) {
    return make<Enumerator>(*this, value ? *static_cast<U32 const*>(value) : 0, isConst);
}

Qor::Ptr<GenericIf> DescribedEnum::genericIfFromStrep(String8 const& text, bool isConst) {
    return AnyValue::parsed(steps_, text).wrapped(isConst);
}

String8 DescribedEnum::literal(U32 number) const {
    for (QorAttr::Ptr const& attribute : attributes()) {
        bool const isIt =
            attribute->flags().isLiteral() && static_cast<U32>(attribute->id()) == number;
        if (isIt) return attribute->name();
    }
    return format("%s(%d)", qorName().charPtr(), static_cast<int>(number));
}

U32 DescribedEnum::number(String8 const& literal) const {
    for (QorAttr::Ptr const& attribute : attributes()) {
        if (attribute->flags().isLiteral() && attribute->name().view() == literal.view()) {
            return static_cast<U32>(attribute->id());
        }
    }
    throwRangeException(String8(qorName()));
}

void DescribedEnum::Steps::placeIs(Place& place, U32 number) noexcept {
    std::memcpy(&place, &number, sizeof number);
}

void DescribedEnum::Steps::put(Qor::Ptr<NboAttrLog::Out> const& out, void const* value) const {
    out << of(value);
}

void DescribedEnum::Steps::read(Place& place, NboAttrLog::In& in) const {
    U32 const number = in.nextU32();
    bool const isKnown = type_.attr(static_cast<AttributeId>(number)) != nullptr;
    if (!isKnown && in.demuxer()) in.demuxer()->unknownEnumsInc(1);
    placeIs(place, number);
}

String8 DescribedEnum::Steps::text(void const* value) const {
    return String8("'") + type_.literal(of(value)) + "'";
}

void DescribedEnum::Steps::parse(Place& place, String8::IteratorConst& position,
                                 String8::IteratorConst const& end) const {
    placeIs(place, type_.number(sequenceToValue(position, end, static_cast<String8*>(nullptr))));
}

}  // namespace Qor
