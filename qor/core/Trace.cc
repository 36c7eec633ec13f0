#include <qor/core/Trace.h>

#include <qor/core/Exception.h>
#include <qor/core/Format.h>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <mutex>
#include <ostream>
#include <string>
#include <unordered_map>
#include <vector>

namespace Qor {

std::ostream* coverageStream_ = nullptr;

// All handles alive and what was said about names. Never destroyed: what ends with the process may
// trace.
class TraceRegistry {
  public:
    static TraceRegistry& instance() {
        static TraceRegistry& registry = *new TraceRegistry;
        return registry;
    }

    void add(TraceHandle* handle) {
        std::lock_guard const lock(mutex_);
        handles_.push_back(handle);
        auto const said = said_.find(handle->name());
        if (said != said_.end()) said->second.applyTo(handle->on_);
    }

    void remove(TraceHandle* handle) {
        std::lock_guard const lock(mutex_);
        handles_.erase(std::find(handles_.begin(), handles_.end(), handle));
    }

    void levelIs(String8 const& name, int level, bool on) {
        std::lock_guard const lock(mutex_);
        auto& said = said_[name];
        auto const bit = std::uint32_t{1} << level;
        said.known |= bit;
        said.on = on ? said.on | bit : said.on & ~bit;
        for (auto* const handle : handles_) {
            if (handle->name() == name) said.applyTo(handle->on_);
        }
    }

    void sinkIs(TraceSink sink) {
        // What the sink before held goes behind the lock: its end may trace.
        auto swapped = sink ? std::make_shared<TraceSink const>(std::move(sink)) : nullptr;
        std::lock_guard const lock(mutex_);
        sink_.swap(swapped);
    }

    std::shared_ptr<TraceSink const> sink() {
        std::lock_guard const lock(mutex_);
        return sink_;
    }

  private:
    struct Said {
        std::uint32_t known = 0;
        std::uint32_t on = 0;
        void applyTo(std::atomic<std::uint32_t>& levels) const {
            auto const kept = levels.load(std::memory_order_relaxed) & ~known;
            levels.store(kept | (on & known), std::memory_order_relaxed);
        }
    };

    std::mutex mutex_;
    std::vector<TraceHandle*> handles_;
    std::unordered_map<String8, Said> said_;
    std::shared_ptr<TraceSink const> sink_;
};

namespace {

std::string lineOf(TraceRecord const& record) {
    auto const head =
        format("%s[%d] %s:%d %s %s: ", record.handle.charPtr(), record.level, record.unit.charPtr(),
               record.line, record.function.charPtr(), record.subject.charPtr());
    std::string line(head.view());
    line += record.text.view();
    line += '\n';
    return line;
}

void writeToStandardError(TraceRecord const& record) {
    if (!record.on) return;
    auto const line = lineOf(record);
    static_cast<void>(std::fwrite(line.data(), 1, line.size(), stderr));
}

void giveToSink(TraceRecord const& record) {
    auto const sink = TraceRegistry::instance().sink();
    if (sink) {
        (*sink)(record);
    } else {
        writeToStandardError(record);
    }
}

}  // namespace

TraceHandle::TraceHandle(String8 name, bool isOn) : name_(std::move(name)), on_(isOn ? ~0U : 0U) {
    TraceRegistry::instance().add(this);
}

TraceHandle::~TraceHandle() { TraceRegistry::instance().remove(this); }

void traceLevelIs(String8 const& name, int level, bool on) {
    if (level < 0 || level >= TraceHandle::levels) {
        throwRangeException(format("trace level %d of '%s': expected 0 to %d", level,
                                   name.charPtr(), TraceHandle::levels - 1));
    }
    TraceRegistry::instance().levelIs(name, level, on);
}

void traceSinkIs(TraceSink sink) { TraceRegistry::instance().sinkIs(std::move(sink)); }

void traceHelper(char const* handle, String8 const& subject, std::stringstream& text, int level,
                 bool on, char const* unit, int line, char const* function) try {
    TraceRecord const record{handle, subject, std::string_view(text.view()), level, on, unit,
                             line,   function};
    if (coverageStream_ != nullptr) *coverageStream_ << lineOf(record);
    giveToSink(record);
} catch (...) {
    // Neither a sink that fails nor a want of memory may change what the traced code does.
}

}  // namespace Qor
