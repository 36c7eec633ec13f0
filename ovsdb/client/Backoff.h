#ifndef OVSDB_CLIENT_BACKOFF_H
#define OVSDB_CLIENT_BACKOFF_H

// How long to wait before the next try: `least`, then twice as long each time, at most `most`;
// `least` again after a success. Without chance, so that runs repeat: a switch has few enough
// clients.

#include <algorithm>
#include <chrono>

namespace Ovsdb {

class Backoff {
  public:
    using Duration = std::chrono::milliseconds;

    Backoff(Duration least, Duration most)
        : least_(least), most_(most), next_(std::min(least, most)) {}

    Duration next() {
        Duration const now = next_;
        next_ = std::min(now * 2, most_);
        return now;
    }
    void reset() { next_ = std::min(least_, most_); }

  private:
    Duration least_;
    Duration most_;
    Duration next_;
};

}  // namespace Ovsdb

#endif
