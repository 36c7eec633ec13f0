// Trace: statements stand in the code for good and write only when their handle is on at their
// level, 0 to 31. A handle is built once, by name, and several may bear the same name; levels are
// switched by name at any time.
//
// Threads: handles, levels and the sink may be used on any thread. The sink is called on the thread
// that traces, outside of any lock. Cost: a statement that is off reads two words.
#ifndef QOR_CORE_TRACE_H
#define QOR_CORE_TRACE_H

#include <qor/core/Export.h>
#include <qor/core/String8.h>

#include <atomic>
#include <cstdint>
#include <functional>
#include <iosfwd>
#include <sstream>
#include <utility>

namespace Qor {

class QOR_EXPORT TraceHandle {
  public:
    static constexpr int levels = 32;

    // `isOn` switches all levels on; what traceLevelIs said about the name, before or after, goes
    // over it.
    TraceHandle(String8 name, bool isOn);
    ~TraceHandle();
    TraceHandle(TraceHandle const&) = delete;
    TraceHandle& operator=(TraceHandle const&) = delete;

    String8 const& name() const noexcept { return name_; }
    bool isOn() const noexcept { return on_.load(std::memory_order_relaxed) != 0; }
    bool isOn(int level) const noexcept {
        return level >= 0 && level < levels &&
               (on_.load(std::memory_order_relaxed) >> level & 1U) != 0;
    }

  private:
    friend class TraceRegistry;

    String8 name_;
    std::atomic<std::uint32_t> on_;
};

// One line of trace.
struct QOR_EXPORT TraceRecord {
    String8 handle;
    String8 subject;  // what it is about, "<unknown>" where the statement doesn't say
    String8 text;
    int level = 0;
    bool on = false;  // false: the level is off, and only coverageStream_ made the statement run
    String8 unit;
    int line = 0;
    String8 function;
};

using TraceSink = std::function<void(TraceRecord const&)>;

// Switches one level of all handles of that name, those that are built later included. A level
// beyond 0 to 31 raises RangeException.
QOR_EXPORT void traceLevelIs(String8 const& name, int level, bool on);

// Every record goes to the sink. An empty sink puts the first one back, which writes what is on to
// standard error. What a sink throws is dropped: tracing changes nothing.
QOR_EXPORT void traceSinkIs(TraceSink sink);

// While it is set, every trace statement runs and its line goes to this stream too. Set it while no
// other thread traces.
QOR_EXPORT extern std::ostream* coverageStream_;

// Gives one record to the sink.
QOR_EXPORT void traceHelper(char const* handle, String8 const& subject, std::stringstream& text,
                            int level, bool on, char const* unit, int line, char const* function);

// A trace statement: `writer` is called with the stream that takes the text, or not at all.
template <class Writer>
void trace(TraceHandle const& handle, int level, char const* unit, int line, char const* function,
           Writer&& writer) {
    bool const on = handle.isOn() && handle.isOn(level);
    if (!on && coverageStream_ == nullptr) [[likely]] {
        return;
    }
    std::stringstream text;
    text.precision(12);
    std::forward<Writer>(writer)(text);
    traceHelper(handle.name().charPtr(), "<unknown>", text, level, on, unit, line, function);
}

}  // namespace Qor

#endif
