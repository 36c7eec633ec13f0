// The record of a composite value that the process knows by a description alone, and the wrapper
// over one. Such a value is its fields in their order, on the wire and in its text as in compiled
// code, and has the same hash, so that collections stand in the same order. Other members that are
// computed have no code here; neither has the order of a class's values, so that wrappers answer
// only == and !=.
#ifndef QOR_DYNAMIC_DESCRIBED_VALUE_H
#define QOR_DYNAMIC_DESCRIBED_VALUE_H

#include <qor/dynamic/AnyValue.h>
#include <qor/generic/ValueWrapper.h>

#include <vector>

namespace Qor {

class QOR_EXPORT DescribedValue final : public QorType {
  public:
    using Fields = std::vector<AnyValue>;

    DescribedValue(Name fullName, Name shortName);
    ~DescribedValue() override;

    bool isDescribed() const noexcept override { return true; }
    /// `value` is the address of the fields.
    Qor::Ptr<GenericIf> genericIf(void const* value, bool isConst) override;
    Qor::Ptr<GenericIf> genericIf(GenericIf const* arguments, bool isConst) override;
    Qor::Ptr<GenericIf> genericIfFromStrep(String8 const& text, bool isConst) override;
    /// Null while a field's type is not known here.
    ValueSteps const* valueSteps() const noexcept override;

    std::span<GenericMember const> members() const noexcept { return members_; }
    /// The value of a member: a field of `fields`, a constant of the class, or the hash. Of what
    /// else is computed, NoCodeException is raised.
    AnyValue member(Fields const& fields, AttributeId id) const;
    /// The fields of the default value.
    Fields const& initial() const noexcept { return initial_; }
    std::span<QorAttr::Ptr const> fields() const noexcept { return fields_; }

    /// Sorts the record's attributes, which are all there, into fields and other members.
    /// `hashOrder` says of which fields the hash is made.
    void completeIs(std::vector<U32> hashOrder);
    /// The initial value of a field, or the value of a constant. REQUIRES: completeIs() was called
    void initialIs(AttributeId id, String8 const& text);
    /// Lets the values that it holds go, whose types may end before this one.
    void forgetInitials() noexcept {
        initial_.clear();
        constants_.clear();
    }

  private:
    class Steps final : public ValueSteps {
      public:
        explicit Steps(DescribedValue& type) noexcept : type_(type) {}
        QorType* type() const override { return &type_; }
        void make(Place& place) const override { place.block = new Fields(type_.initial_); }
        void copy(Place& place, void const* value) const override {
            place.block = new Fields(of(value));
        }
        void end(Place& place) const noexcept override { delete static_cast<Fields*>(place.block); }
        void const* at(Place const& place) const noexcept override { return place.block; }
        bool equal(void const* lhs, void const* rhs) const override { return of(lhs) == of(rhs); }
        bool less(void const* lhs, void const* rhs) const override { return of(lhs) < of(rhs); }
        U32 hash(void const* value) const override;
        std::vector<U32> hashOrder() const override { return type_.hashOrder_; }
        U32 wireSize(void const* value) const override;
        void put(Qor::Ptr<NboAttrLog::Out> const& out, void const* value) const override;
        void read(Place& place, NboAttrLog::In& in) const override;
        String8 text(void const* value) const override;
        void parse(Place& place, String8::IteratorConst& position,
                   String8::IteratorConst const& end) const override;

      private:
        static Fields const& of(void const* value) noexcept {
            return *static_cast<Fields const*>(value);
        }
        DescribedValue& type_;
    };

    struct Constant {
        AttributeId id;
        AnyValue value;
    };

    Name const typeName_;
    std::vector<QorAttr::Ptr> fields_;
    std::vector<GenericMember> members_;
    std::vector<Constant> constants_;
    Fields initial_;
    std::vector<U32> hashOrder_;
    bool isWhole_ = false;
    Steps const steps_{*this};
};

}  // namespace Qor

#endif
