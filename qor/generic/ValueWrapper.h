// Wrappers over values: a copy of the value, its members by id, its operators under id 0.
#ifndef QOR_GENERIC_VALUE_WRAPPER_H
#define QOR_GENERIC_VALUE_WRAPPER_H

#include <span>

#include <qor/generic/Wrap.h>

namespace Qor {

/// A member of a value, or a constant of its class.
struct GenericMember {
    AttributeId id;
    char const* name;
    GenericIf::Ptr (*get)(void const* value, bool isConst);
};

/// The members of V by ids and names; specialised for each value that has any.
template <class V>
struct GenericMembers {
    static constexpr std::span<GenericMember const> rows{};
};

/// What all wrappers over values have in common.
class QOR_EXPORT GenericIfValue : public GenericIf {
  public:
    explicit GenericIfValue(bool isConst) : GenericIf(isConst) {}
    ~GenericIfValue() override;
    using GenericIf::attributeOp;
    Ptr attributeOp(AttributeOp const& op, PtrConst const& key, Ptr const& value) override;

  protected:
    /// The value of a member.
    virtual Ptr memberValue(GenericMember const& member) const;

  private:
    virtual std::span<GenericMember const> members() const = 0;
    virtual void const* address() const = 0;
    /// The operator's result; raises OpNotSupportedException for one that the value hasn't.
    virtual bool compared(AttributeOp::OpId op, GenericIf const* rhs) const = 0;
};

/// A row for a member that is read by a member function, or by a static one.
template <class V, auto reader>
constexpr GenericMember genericMember(AttributeId id, char const* name) {
    return {id, name, [](void const* value, bool isConst) {
                if constexpr (std::is_member_function_pointer_v<decltype(reader)>) {
                    auto const member = (static_cast<V const*>(value)->*reader)();
                    return wrapped(member, isConst);
                } else {
                    auto const constant = reader();
                    return wrapped(constant, isConst);
                }
            }};
}

/// `lhs op rhs`. An order that V does not have, or an operation that is none, is refused.
template <class V>
bool comparedValues(GenericIf::AttributeOp::OpId op, V const& lhs, V const& rhs) {
    using OpId = GenericIf::AttributeOp;
    if (op == OpId::opEq || op == OpId::opNe) {
        return (lhs == rhs) == (op == OpId::opEq);
    }
    if constexpr (requires {
                      lhs < rhs;
                      lhs >= rhs;
                      lhs > rhs;
                      lhs <= rhs;
                  }) {
        switch (op) {
            case OpId::opGt:
                return lhs > rhs;
            case OpId::opLt:
                return lhs < rhs;
            case OpId::opGe:
                return lhs >= rhs;
            case OpId::opLe:
                return lhs <= rhs;
            default:
                break;
        }
    }
    GenericIf::throwOpNotSupportedException("value", op, false);
}

/// `Self` is the wrapper's own class.
template <class V, class Self>
class ValueWrapper : public GenericIfValue {
  public:
    ValueWrapper(V value, bool isConst) : GenericIfValue(isConst), value_(std::move(value)) {}

    QorType* fwkType() const override { return typeOf<V>(); }
    String8 strRep() const override { return valueToStrep(value_); }
    GenericIf::Ptr genericClone() const override { return make<Self>(value_, isConst()); }
    void const* genericValue(Qor::Ptr<QorType const> const& type) const override {
        return type == fwkType() ? &value_ : GenericIf::genericValue(type);
    }
    V const& value() const noexcept { return value_; }

  private:
    std::span<GenericMember const> members() const override { return GenericMembers<V>::rows; }
    void const* address() const override { return &value_; }
    bool compared(AttributeOp::OpId op, GenericIf const* rhs) const override {
        if (op != AttributeOp::opNot) {
            return comparedValues(op, value_, needed<V>(rhs, "qorOpArg"));
        }
        if constexpr (std::is_arithmetic_v<V> || !requires { !value_; }) {
            return value_ == V();
        } else {
            return !value_;
        }
    }

    V value_;
};

template <class T>
class PlainWrapper final : public ValueWrapper<T, PlainWrapper<T>> {
  public:
    using ValueWrapper<T, PlainWrapper<T>>::ValueWrapper;
};

/// A text answers for both of its types.
template <class T>
class TextWrapper final : public ValueWrapper<T, TextWrapper<T>> {
  public:
    using ValueWrapper<T, TextWrapper<T>>::ValueWrapper;
    void const* genericValue(Qor::Ptr<QorType const> const& type) const override {
        bool const isText = type == typeOf<Name>() || type == typeOf<String8>();
        // NOLINTNEXTLINE(bugprone-parent-virtual-call): the one between has answered.
        return isText ? static_cast<String8 const*>(&this->value()) : GenericIf::genericValue(type);
    }
};

/// A wrapper over an enumerator: it has one attribute, its value, under id 1.
template <class E, class Self>
class EnumWrapper : public ValueWrapper<E, Self> {
  public:
    static constexpr AttributeId valueId = 1;

    using ValueWrapper<E, Self>::ValueWrapper;
    using GenericIf::attributeOp;
    GenericIf::Ptr attributeOp(GenericIf::AttributeOp const& op, GenericIf::PtrConst const&,
                               GenericIf::Ptr const&) override {
        this->needChangeable(op);
        if (op.attributeId != valueId) {
            GenericIf::throwUnknownAttrException(EnumTable<E>::type);
        }
        return this->genericClone();
    }
    /// Of any other number, the literal's.
    String8 attributeString(AttributeId id) const override {
        return id == valueId ? String8("value") : GenericIf::attributeString(id);
    }
};

}  // namespace Qor

#endif
