#include <qor/dynamic/DescribedValue.h>

#include <qor/core/Hash.h>
#include <qor/generic/GenericException.h>
#include <qor/generic/GenericIfEntity.h>
#include <qor/generic/GenericList.h>
#include <qor/model/ValueText.h>
#include <qor/registry/Builtin.h>

namespace Qor {

namespace {

class Wrapper final : public GenericIfValue {
  public:
    Wrapper(DescribedValue& type, DescribedValue::Fields fields, bool isConst)
        : GenericIfValue(isConst), type_(type), fields_(std::move(fields)) {}

    QorType* fwkType() const override { return &type_; }
    String8 strRep() const override {
        return type_.valueSteps() ? type_.valueSteps()->text(&fields_) : String8();
    }
    GenericIf::Ptr genericClone() const override {
        return make<Wrapper>(type_, fields_, isConst());
    }
    void const* genericValue(Qor::Ptr<QorType const> const& type) const override {
        return type == &type_ ? &fields_ : GenericIf::genericValue(type);
    }

  protected:
    GenericIf::Ptr memberValue(GenericMember const& member) const override {
        return type_.member(fields_, member.id).wrapped(isConst());
    }

  private:
    std::span<GenericMember const> members() const override { return type_.members(); }
    void const* address() const override { return &fields_; }
    bool compared(AttributeOp::OpId op, GenericIf const* rhs) const override {
        if (op == AttributeOp::opNot) return fields_ == type_.initial();
        if (op != AttributeOp::opEq && op != AttributeOp::opNe) {
            throwOpNotSupportedException("value", op, false);
        }
        if (!rhs) throwTypeException("qorOpArg");
        auto const* const other = static_cast<DescribedValue::Fields const*>(
            rhs->genericValue(Qor::Ptr<QorType const>(&type_)));
        return (fields_ == *other) == (op == AttributeOp::opEq);
    }

    DescribedValue& type_;
    DescribedValue::Fields const fields_;
};

bool isField(QorAttr const& attribute) {
    return attribute.flags().isConstructed() && attribute.flags().isStored();
}

}  // namespace

DescribedValue::DescribedValue(Name fullName, Name shortName)
    : QorType(std::move(shortName), nullptr, nullptr, 0), typeName_(std::move(fullName)) {
    isValueIs(true);
}

DescribedValue::~DescribedValue() = default;

void DescribedValue::completeIs(std::vector<U32> hashOrder) {
    hashOrder_ = std::move(hashOrder);
    isWhole_ = true;
    for (QorAttr::Ptr const& attribute : attributes()) {
        if (attribute->id() != fwkKeyId) {
            members_.push_back({attribute->id(), attribute->name().charPtr(), nullptr});
        }
        ValueSteps const* const steps = attribute->valueType()->valueSteps();
        if (isField(*attribute)) {
            fields_.push_back(attribute);
            isWhole_ = isWhole_ && steps;
            initial_.push_back(steps ? AnyValue(*steps) : AnyValue());
        } else if (attribute->flags().isConstant() && steps) {
            constants_.push_back({attribute->id(), AnyValue(*steps)});
        }
    }
}

// A value of constants alone is never sent, as it has nothing to tell.
ValueSteps const* DescribedValue::valueSteps() const noexcept {
    return isWhole_ && !fields_.empty() ? &steps_ : nullptr;
}

void DescribedValue::initialIs(AttributeId id, String8 const& text) {
    for (std::size_t i = 0; i < fields_.size(); ++i) {
        if (fields_[i]->id() == id && initial_[i].steps()) {
            initial_[i] = AnyValue::parsed(*initial_[i].steps(), text);
        }
    }
    for (Constant& constant : constants_) {
        if (constant.id == id) constant.value = AnyValue::parsed(*constant.value.steps(), text);
    }
}

AnyValue DescribedValue::member(Fields const& fields, AttributeId id) const {
    for (std::size_t i = 0; i < fields_.size(); ++i) {
        if (fields_[i]->id() == id && fields[i].steps()) return fields[i];
    }
    for (Constant const& constant : constants_) {
        if (constant.id == id) return constant.value;
    }
    QorAttr::Ptr const attribute = attr(id);
    bool const isHash = attribute && attribute->name() == "hash" && !hashOrder_.empty();
    if (isHash && attribute->valueType() == Builtin<U32>::_fwkType()) {
        U32 const hash = steps_.hash(&fields);
        return {*valueStepsOf<U32>(), &hash};
    }
    throw NoCodeException(attribute ? String8(attribute->name()) : String8("unknown"), fullName());
}

Qor::Ptr<GenericIf> DescribedValue::genericIf(void const* value, bool isConst) {
    return make<Wrapper>(*this, value ? *static_cast<Fields const*>(value) : initial_, isConst);
}

Qor::Ptr<GenericIf> DescribedValue::genericIf(GenericIf const* arguments, bool) {
    GenericArguments given(arguments);
    Fields fields;
    for (std::size_t i = 0; valueSteps() && i < fields_.size(); ++i) {
        char const* const name = fields_[i]->name().charPtr();
        GenericIf::Ptr const argument = given.next(name);
        if (!argument) GenericIf::throwTypeException(name);
        fields.push_back(AnyValue::of(*initial_[i].steps(), *argument));
    }
    given.end(qorName().charPtr());
    return genericIf(static_cast<void const*>(fields.empty() ? nullptr : &fields), false);
}

Qor::Ptr<GenericIf> DescribedValue::genericIfFromStrep(String8 const& text, bool isConst) {
    if (!valueSteps()) return QorType::genericIfFromStrep(text, isConst);
    return AnyValue::parsed(steps_, text).wrapped(isConst);
}

U32 DescribedValue::Steps::hash(void const* value) const {
    OneAtATimeHash hash;
    for (U32 const place : type_.hashOrder_) hash.add(of(value)[place].hash());
    return hash.value();
}

U32 DescribedValue::Steps::wireSize(void const* value) const {
    U32 size = 0;
    for (AnyValue const& field : of(value)) size += Qor::wireSize(field);
    return size;
}

void DescribedValue::Steps::put(Qor::Ptr<NboAttrLog::Out> const& out, void const* value) const {
    for (AnyValue const& field : of(value)) out << field;
}

void DescribedValue::Steps::read(Place& place, NboAttrLog::In& in) const {
    Fields fields;
    for (AnyValue const& field : type_.initial_) fields.emplace_back(*field.steps(), in);
    place.block = new Fields(std::move(fields));
}

String8 DescribedValue::Steps::text(void const* value) const {
    String8 text = String8("Value('") + type_.typeName_ + "', ** {";
    char const* between = "'";
    for (std::size_t i = 0; i < type_.fields_.size(); ++i) {
        AnyValue const& field = of(value)[i];
        text += between;
        text += type_.fields_[i]->name();
        text += "': ";
        text += field.steps()->text(field.address());
        between = ", '";
    }
    return text + "})";
}

void DescribedValue::Steps::parse(Place& place, String8::IteratorConst& position,
                                  String8::IteratorConst const& end) const {
    Fields fields = type_.initial_;
    char const* const shortName = type_.qorName().charPtr();
    needValueHead(position, end, type_.typeName_.charPtr());
    String8 name;
    for (bool first = true; nextFieldName(position, end, shortName, first, name); first = false) {
        std::size_t i = 0;
        while (i < fields.size() && type_.fields_[i]->name().view() != name.view()) ++i;
        if (i == fields.size()) throwNoSuchField(shortName, name);
        fields[i] = AnyValue::parsedField(*fields[i].steps(), position, end, name);
    }
    place.block = new Fields(std::move(fields));
}

}  // namespace Qor
