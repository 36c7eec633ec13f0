#include <qor/generic/GenericException.h>

#include <qor/core/Format.h>

namespace Qor {

namespace {

String8 said(String8 const& subject, char const* what) { return subject + ": " + what; }

}  // namespace

GenericException::GenericException(String8 subject, String8 message)
    : Exception(std::move(message), IdBitArray(id), false), subject_(std::move(subject)) {}
GenericException::~GenericException() = default;

ConstException::ConstException(String8 text) : GenericException(text, text) {}
ConstException::~ConstException() = default;

TypeException::TypeException(String8 subject)
    : GenericException(subject, said(subject, "no value of the type that is needed")) {}
TypeException::~TypeException() = default;

BadIndexAttrException::BadIndexAttrException(String8 attribute)
    : GenericException(attribute, said(attribute, "takes no key")) {}
BadIndexAttrException::~BadIndexAttrException() = default;

UnknownAttrException::UnknownAttrException(String8 subject)
    : GenericException(subject, said(subject, "no such attribute")) {}
UnknownAttrException::~UnknownAttrException() = default;

UnknownArgException::UnknownArgException(String8 subject)
    : GenericException(subject, said(subject, "more arguments than it takes")) {}
UnknownArgException::~UnknownArgException() = default;

OpNotSupportedException::OpNotSupportedException(String8 attribute, U32 opId)
    : GenericException(
          attribute, attribute + format(": operation %d is not supported", static_cast<int>(opId))),
      opId_(opId) {}
OpNotSupportedException::~OpNotSupportedException() = default;

NoCodeException::NoCodeException(String8 operation, String8 const& type)
    : GenericException(operation, operation + ": can be called only where " + type +
                                      " is more than a description") {}
NoCodeException::~NoCodeException() = default;

}  // namespace Qor
