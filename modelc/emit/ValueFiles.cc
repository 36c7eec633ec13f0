// The files of a value as wholes.
#include <modelc/emit/ValueEmitter.h>

namespace Modelc {

std::string ValueEmitter::header() const {
    return fill(R"(
$origin$
#ifndef $guard$
#define $guard$

$includes$

namespace $namespace$ {

$doc$
class $export$$Value$ {
  public:
    class _Type;
    class GenericIf_;
    $descriptorNames$
    using QorFields = Qor::FieldList<$descriptorList$>;
    $hashedList$
    static constexpr char const* qorTypeName = "$fullName$";
    static constexpr char const* qorShortName = "$Value$";
    $orderedByHash$

    /// The run-time record of this type; never null.
    static Qor::QorType* _fwkType();
    Qor::QorType* fwkType() const { return _fwkType(); }

    $Value$() = default;
    $fieldConstructor$
    /// Reads the text form at the position. Raises Qor::RangeException.
    $Value$(Qor::String8::IteratorConst& position, Qor::String8::IteratorConst const& end);
    /// Reads the wire form. Raises Qor::RangeException.
    $Value$(Qor::NboAttrLog::In* in, Qor::StreamBogon);

    $readers$
    $hash$

    $comparisons$

  $fieldPart$
};

$descriptors$

/// The text form.
$export$Qor::String8 valueToStrep($Value$ const& value);
/// Writes the text form.
$export$std::ostream& operator<<(std::ostream& out, $Value$ const& value);
/// Writes the wire form.
$export$Qor::Ptr<Qor::NboAttrLog::Out> const& operator<<(Qor::Ptr<Qor::NboAttrLog::Out> const& out, $Value$ const& value);

}  // namespace $namespace$

#endif
)",
                holes_);
}

std::string ValueEmitter::source() const {
    return fill(R"(
$origin$
#include <$header$>

#include <ostream>

namespace $namespace$ {

$Value$::$Value$(Qor::String8::IteratorConst& position, Qor::String8::IteratorConst const& end) {
    Qor::parseValue(*this, position, end);
}

$Value$::$Value$(Qor::NboAttrLog::In* in, Qor::StreamBogon) {
    Qor::readValue(*this, in);
}

Qor::String8 valueToStrep($Value$ const& value) {
    return Qor::valueStrep(value);
}

std::ostream& operator<<(std::ostream& out, $Value$ const& value) {
    return out << valueToStrep(value).view();
}

Qor::Ptr<Qor::NboAttrLog::Out> const& operator<<(Qor::Ptr<Qor::NboAttrLog::Out> const& out, $Value$ const& value) {
    Qor::writeValue(out, value);
    return out;
}

}  // namespace $namespace$
)",
                holes_);
}

}  // namespace Modelc
