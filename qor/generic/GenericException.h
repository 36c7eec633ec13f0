// What misuse of the generic interface raises: before anything is changed, and with a message that
// names the attribute, the argument or the class concerned. subject() is that name alone.
#ifndef QOR_GENERIC_GENERIC_EXCEPTION_H
#define QOR_GENERIC_GENERIC_EXCEPTION_H

#include <qor/core/Exception.h>
#include <qor/core/Types.h>

namespace Qor {

class QOR_EXPORT GenericException : public Exception {
  public:
    static constexpr Id id = 64;

    GenericException(String8 subject, String8 message);
    GenericException(GenericException const&) noexcept = default;
    GenericException& operator=(GenericException const&) noexcept = default;
    ~GenericException() override;

    String8 const& subject() const noexcept { return subject_; }

  private:
    String8 subject_;
};

/// A wrapper that was made for reading is asked to change what it wraps.
class QOR_EXPORT ConstException : public GenericException {
  public:
    explicit ConstException(String8 text);
    ~ConstException() override;
};

/// A value of another type, or none, where one was needed.
class QOR_EXPORT TypeException : public GenericException {
  public:
    explicit TypeException(String8 subject);
    ~TypeException() override;
};

/// A key for an attribute that takes none.
class QOR_EXPORT BadIndexAttrException : public GenericException {
  public:
    explicit BadIndexAttrException(String8 attribute);
    ~BadIndexAttrException() override;
};

class QOR_EXPORT UnknownAttrException : public GenericException {
  public:
    explicit UnknownAttrException(String8 subject);
    ~UnknownAttrException() override;
};

/// More arguments than the operation or the constructor has.
class QOR_EXPORT UnknownArgException : public GenericException {
  public:
    explicit UnknownArgException(String8 subject);
    ~UnknownArgException() override;
};

/// An operation that does not apply to the attribute.
class QOR_EXPORT OpNotSupportedException : public GenericException {
  public:
    OpNotSupportedException(String8 attribute, U32 opId);
    ~OpNotSupportedException() override;
    U32 opId() const noexcept { return opId_; }

  private:
    U32 opId_;
};

/// A call of an operation whose class the process knows by a description alone.
class QOR_EXPORT NoCodeException : public GenericException {
  public:
    NoCodeException(String8 operation, String8 const& type);
    ~NoCodeException() override;
};

}  // namespace Qor

#endif
