#include <qor/core/Exception.h>

#include <utility>

namespace Qor {

Exception::Exception(String8 message, IdBitArray const& ids, bool isInternal)
    // NOLINTNEXTLINE(bugprone-throw-keyword-missing): a set of numbers, whose name bears the word.
    : message_(std::move(message)), ids_(ids), isInternal_(isInternal) {}

// The destructors stand here so that each class has its type information in one place, where every
// library finds it.
Exception::~Exception() = default;
RangeException::~RangeException() = default;
InternalException::~InternalException() = default;
NameInUseException::~NameInUseException() = default;
EntityIdUnavailableException::~EntityIdUnavailableException() = default;
AttrLogRecordException::~AttrLogRecordException() = default;
AttrLogEntityException::~AttrLogEntityException() = default;

RangeException::RangeException(String8 message)
    : RangeException(std::move(message), IdBitArray(rangeId)) {}

RangeException::RangeException(String8 message, IdBitArray const& ids)
    : Exception(std::move(message), ids, false) {}

InternalException::InternalException(String8 message)
    : Exception(std::move(message), IdBitArray(internalId), true) {}

NameInUseException::NameInUseException(String8 message)
    : Exception(std::move(message), IdBitArray(childId), false) {}

EntityIdUnavailableException::EntityIdUnavailableException(String8 message)
    : Exception(std::move(message), IdBitArray(recordId), false) {}

AttrLogRecordException::AttrLogRecordException(String8 message)
    : Exception(std::move(message), IdBitArray(recordId), false) {}

AttrLogEntityException::AttrLogEntityException(String8 message)
    : Exception(std::move(message), IdBitArray(entityId), false) {}

void throwRangeException(char const* message) { throw RangeException(message); }
void throwRangeException(String8 const& message) { throw RangeException(message); }
void throwInternalException(char const* message) { throw InternalException(message); }
void throwInternalException(String8 const& message) { throw InternalException(message); }

}  // namespace Qor
