// Types that a peer describes, on their way into this process's registry. They are gathered while
// they arrive, and taken in together when all are there: checked, made and published, or, if
// anything is wrong with one of them, refused by name with nothing changed. Until then they are
// held as the bytes that came: taken apart, small names would take many times as much.
//
// What is compiled in here stays as it is; a description that contradicts it is refused. A type
// that was described before and is described alike stays the same. One that is described otherwise
// is made anew, with those that build on it: entities that are made from then on are of the new
// one, those that are there stay of the old one. Types live until the process ends, so their number
// in a process is limited. One thread.
#ifndef QOR_DYNAMIC_DESCRIBED_TYPES_H
#define QOR_DYNAMIC_DESCRIBED_TYPES_H

#include <qor/dynamic/TypeDescription.h>

#include <vector>

namespace Qor {

class QOR_EXPORT DescribedTypes {
  public:
    /// What one answer may hold.
    struct Quota {
        U32 types = 4096;
        U64 bytes = 4U << 20;
    };
    /// Types, attributes, arguments and initial values that may be made in the life of a process.
    static constexpr U32 greatestInProcess = 400'000;

    explicit DescribedTypes(Quota const& quota) : quota_(quota) {}

    /// The next description, all that can be read of `in`. Raises AttrLogRecordException, or
    /// RangeException over the quota.
    void take(NboAttrLog::In& in);
    std::size_t size() const noexcept { return told_.size(); }
    /// Takes in what was gathered, and begins anew. Raises AttrLogRecordException, which names the
    /// type and what is wrong with it.
    void complete();

  private:
    Quota const quota_;
    U64 bytes_ = 0;
    std::vector<String8> told_;  // descriptions as they came, each sound by itself
};

}  // namespace Qor

#endif
