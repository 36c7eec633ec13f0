// The system calls that move bytes and take connections, failing when told: for tests that are
// linked with --wrap for each of them.
#ifndef TESTS_PROPERTY_CALLS_FAILING_CALLS_H
#define TESTS_PROPERTY_CALLS_FAILING_CALLS_H

#include <cstdint>

namespace Calls {

enum class Call { send, recv, read, write, accept };

// What `error` may be beside an errno: a single byte is moved.
inline constexpr int oneByte = -1;

struct Failure {
    Call call = Call::send;
    int error = 0;
    std::uint64_t nth = 1;    // of those from now on
    std::uint64_t times = 1;  // so many one after the other
    int notAt = -1;           // a descriptor whose calls don't count
};

// Whether that error ends a connection. Where one does, the socket's other end hears of it too.
bool isEnd(int error);

void failAt(Failure const& failure);
void failNone();
// Whether any has failed since failAt().
bool hasFailed();
// Calls that counted since failAt().
std::uint64_t made();

}  // namespace Calls

#endif
