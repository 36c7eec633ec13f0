// What the system raises. Each exception carries its message and the set of ids under which it may
// be expected; an Expect scope names such an id. Exceptions are values: copying one shares the
// message.
#ifndef QOR_CORE_EXCEPTION_H
#define QOR_CORE_EXCEPTION_H

#include <qor/core/Assert.h>
#include <qor/core/Export.h>
#include <qor/core/String8.h>

#include <array>
#include <cstdint>
#include <exception>

namespace Qor {

class QOR_EXPORT Exception : public std::exception {
  public:
    using Id = std::uint32_t;

    static constexpr Id noId = 0;        // a scope that expects nothing in particular
    static constexpr Id internalId = 1;  // a fault of the program
    static constexpr Id rangeId = 12;    // a value out of range, or a text that can't be parsed
    static constexpr Id childId = 16;    // a child that can't be made
    static constexpr Id entityId =
        42;  // an entity that a stream names and that isn't what it should be
    static constexpr Id recordId = 48;  // a record that can't be written or read whole

    // A set of ids below 128.
    class IdBitArray {
      public:
        static constexpr Id limit = 128;

        constexpr IdBitArray() noexcept = default;
        constexpr explicit IdBitArray(Id id) { add(id); }
        // REQUIRES: id < limit
        constexpr void add(Id id) noexcept {
            if (id >= limit) assertionFailed("id < limit", "Qor/Exception", __LINE__, "add");
            words_[id / 64] |= std::uint64_t{1} << (id % 64);
        }
        constexpr bool contains(Id id) const noexcept {
            return id < limit && (words_[id / 64] >> (id % 64) & 1U) != 0;
        }
        constexpr bool operator==(IdBitArray const&) const noexcept = default;

      private:
        std::array<std::uint64_t, 2> words_{};
    };

    // `isInternal` tells a fault of the program itself from one of the data that it was given.
    Exception(String8 message, IdBitArray const& ids, bool isInternal);
    Exception(Exception const&) noexcept = default;
    Exception& operator=(Exception const&) noexcept = default;
    ~Exception() override;

    char const* what() const noexcept override { return message_.charPtr(); }
    String8 const& message() const noexcept { return message_; }
    IdBitArray const& ids() const noexcept { return ids_; }
    bool isInternal() const noexcept { return isInternal_; }

  private:
    String8 message_;
    IdBitArray ids_;
    bool isInternal_;
};

// A value out of range, or a text that can't be parsed.
class QOR_EXPORT RangeException : public Exception {
  public:
    explicit RangeException(String8 message);
    RangeException(String8 message, IdBitArray const& ids);
    RangeException(RangeException const&) noexcept = default;
    RangeException& operator=(RangeException const&) noexcept = default;
    ~RangeException() override;
};

[[noreturn]] QOR_EXPORT void throwRangeException(char const* message);
[[noreturn]] QOR_EXPORT void throwRangeException(String8 const& message);

// A fault of the program itself.
class QOR_EXPORT InternalException : public Exception {
  public:
    explicit InternalException(String8 message);
    InternalException(InternalException const&) noexcept = default;
    InternalException& operator=(InternalException const&) noexcept = default;
    ~InternalException() override;
};

[[noreturn]] QOR_EXPORT void throwInternalException(char const* message);
[[noreturn]] QOR_EXPORT void throwInternalException(String8 const& message);

// An entity of that name stands already where a new one was to be made.
class QOR_EXPORT NameInUseException : public Exception {
  public:
    explicit NameInUseException(String8 message);
    NameInUseException(NameInUseException const&) noexcept = default;
    NameInUseException& operator=(NameInUseException const&) noexcept = default;
    ~NameInUseException() override;
};

// A record refers to an entity that has no id on this connection yet.
class QOR_EXPORT EntityIdUnavailableException : public Exception {
  public:
    explicit EntityIdUnavailableException(String8 message);
    EntityIdUnavailableException(EntityIdUnavailableException const&) noexcept = default;
    EntityIdUnavailableException& operator=(EntityIdUnavailableException const&) noexcept = default;
    ~EntityIdUnavailableException() override;
};

// A record that does not fit where it is written, or ends before what is read from it.
class QOR_EXPORT AttrLogRecordException : public Exception {
  public:
    explicit AttrLogRecordException(String8 message);
    AttrLogRecordException(AttrLogRecordException const&) noexcept = default;
    AttrLogRecordException& operator=(AttrLogRecordException const&) noexcept = default;
    ~AttrLogRecordException() override;
};

// A stream names an entity that is not of the type that it has to be.
class QOR_EXPORT AttrLogEntityException : public Exception {
  public:
    explicit AttrLogEntityException(String8 message);
    AttrLogEntityException(AttrLogEntityException const&) noexcept = default;
    AttrLogEntityException& operator=(AttrLogEntityException const&) noexcept = default;
    ~AttrLogEntityException() override;
};

}  // namespace Qor

#endif
