// The record of an enumeration that the process knows by a description alone, and the wrapper over
// one of its enumerators. A number that the description doesn't name is kept, and prints as
// Type(NUMBER), as it does in compiled code.
#ifndef QOR_DYNAMIC_DESCRIBED_ENUM_H
#define QOR_DYNAMIC_DESCRIBED_ENUM_H

#include <qor/dynamic/AnyValue.h>

namespace Qor {

/// A type without parts whose library is not here: it has a name and nothing more. Attributes of
/// such a type are skipped on the wire, and refused by wrappers.
class QOR_EXPORT OpaqueType final : public QorType {
  public:
    explicit OpaqueType(Name shortName);
    ~OpaqueType() override;
    bool isDescribed() const noexcept override { return true; }
};

class QOR_EXPORT DescribedEnum final : public QorType {
  public:
    explicit DescribedEnum(Name shortName);
    ~DescribedEnum() override;

    bool isDescribed() const noexcept override { return true; }
    /// `value` is the address of a 32-bit number.
    Qor::Ptr<GenericIf> genericIf(void const* value, bool isConst) override;
    using QorType::genericIf;
    Qor::Ptr<GenericIf> genericIfFromStrep(String8 const& text, bool isConst) override;
    ValueSteps const* valueSteps() const noexcept override { return &steps_; }

    String8 literal(U32 number) const;
    /// Raises RangeException with the type's short name for a text that is no literal.
    U32 number(String8 const& literal) const;

  private:
    class Steps final : public ValueSteps {
      public:
        explicit Steps(DescribedEnum& type) noexcept : type_(type) {}
        QorType* type() const override { return &type_; }
        void make(Place& place) const override { place.word = 0; }
        void copy(Place& place, void const* value) const override { placeIs(place, of(value)); }
        void end(Place&) const noexcept override {}
        void const* at(Place const& place) const noexcept override { return &place; }
        bool equal(void const* lhs, void const* rhs) const override { return of(lhs) == of(rhs); }
        bool less(void const* lhs, void const* rhs) const override { return of(lhs) < of(rhs); }
        U32 hash(void const* value) const override { return of(value); }
        U32 wireSize(void const*) const override { return sizeof(U32); }
        void put(Qor::Ptr<NboAttrLog::Out> const& out, void const* value) const override;
        void read(Place& place, NboAttrLog::In& in) const override;
        String8 text(void const* value) const override;
        void parse(Place& place, String8::IteratorConst& position,
                   String8::IteratorConst const& end) const override;

      private:
        static U32 of(void const* value) noexcept { return *static_cast<U32 const*>(value); }
        static void placeIs(Place& place, U32 number) noexcept;
        DescribedEnum& type_;
    };

    Steps const steps_{*this};
};

}  // namespace Qor

#endif
