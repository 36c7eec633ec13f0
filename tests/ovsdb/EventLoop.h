#ifndef TESTS_OVSDB_EVENT_LOOP_H
#define TESTS_OVSDB_EVENT_LOOP_H

#include <asio/io_context.hpp>

#include <chrono>
#include <functional>

namespace Ovsdb {

/// Runs the loop until the condition holds; false when it doesn't within the limit.
inline bool runUntil(asio::io_context& loop, std::function<bool()> const& done,
                     std::chrono::milliseconds limit = std::chrono::seconds(10)) {
    auto const end = std::chrono::steady_clock::now() + limit;
    while (!done()) {
        if (std::chrono::steady_clock::now() >= end) return false;
        loop.restart();
        loop.run_one_for(std::chrono::milliseconds(20));
    }
    return true;
}

}  // namespace Ovsdb

#endif
