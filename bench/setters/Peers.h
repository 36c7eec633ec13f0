// The peers of the rows about telling: `emit()` tells `count` listeners. They only emit: no value
// is compared or stored, and none but GObject holds its listeners during the call.
#ifndef BENCH_SETTERS_PEERS_H
#define BENCH_SETTERS_PEERS_H

#include <cstdint>

#ifdef VGW_BENCH_SIGC___2_0
#include <sigc++/sigc++.h>
#endif
#ifdef VGW_BENCH_SIGNALS2
#include <boost/signals2/signal.hpp>
#endif
#ifdef VGW_BENCH_GOBJECT_2_0
#include <glib-object.h>
#endif

namespace Bench {

#ifdef VGW_BENCH_SIGC___2_0
class SigcPeer {
  public:
    SigcPeer(unsigned count, std::uint64_t& heard) {
        for (unsigned i = 0; i < count; ++i) {
            signal_.connect([&heard] { ++heard; });
        }
    }
    void emit(std::uint32_t) { signal_.emit(); }

  private:
    sigc::signal<void> signal_;
};
#endif

#ifdef VGW_BENCH_SIGNALS2
class Signals2Peer {
  public:
    Signals2Peer(unsigned count, std::uint64_t& heard) {
        for (unsigned i = 0; i < count; ++i) {
            signal_.connect([&heard] { ++heard; });
        }
    }
    void emit(std::uint32_t) { signal_(); }

  private:
    boost::signals2::signal<void()> signal_;
};
#endif

#ifdef VGW_BENCH_GOBJECT_2_0
/// An object with one property of 32 bits; each set tells notify:: handlers.
class GObjectPeer {
  public:
    GObjectPeer(unsigned count, std::uint64_t& heard);
    GObjectPeer(GObjectPeer const&) = delete;
    GObjectPeer& operator=(GObjectPeer const&) = delete;
    ~GObjectPeer();
    void emit(std::uint32_t number);

  private:
    GObject* object_;
};
#endif

}  // namespace Bench

#endif
