// What the library traces while one of these lives, with both levels on.
#ifndef TESTS_UNIT_VGW_TRACE_LOG_H
#define TESTS_UNIT_VGW_TRACE_LOG_H

#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include <qor/core/Trace.h>

struct TraceLine {
    int level;
    int line;
    std::string text;
    bool operator==(TraceLine const&) const = default;
};

inline void PrintTo(TraceLine const& line, std::ostream* out) {
    *out << "level " << line.level << " line " << line.line << " \"" << line.text << "\"";
}

using TraceLines = std::vector<TraceLine>;

class TraceLog {
  public:
    TraceLog() {
        levelsAre(true);
        Qor::traceSinkIs([this](Qor::TraceRecord const& record) { records.push_back(record); });
    }
    ~TraceLog() {
        Qor::traceSinkIs({});
        levelsAre(false);
    }
    TraceLog(TraceLog const&) = delete;
    TraceLog& operator=(TraceLog const&) = delete;

    static void levelsAre(bool on) {
        Qor::traceLevelIs("Vgw", 5, on);
        Qor::traceLevelIs("Vgw", 6, on);
    }

    /// The lines since the last call, after a look at what is the same in all of them.
    TraceLines take(std::string const& unit, std::string const& function) {
        TraceLines lines;
        for (auto const& record : std::exchange(records, {})) {
            EXPECT_EQ(record.handle, "Vgw");
            EXPECT_EQ(record.subject, "<unknown>");
            EXPECT_TRUE(record.on);
            EXPECT_EQ(record.unit, unit.c_str());
            EXPECT_EQ(record.function, function.c_str());
            lines.push_back({record.level, record.line, std::string(record.text.view())});
        }
        return lines;
    }

    std::vector<Qor::TraceRecord> records;
};

#endif
