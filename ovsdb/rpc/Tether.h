#ifndef OVSDB_RPC_TETHER_H
#define OVSDB_RPC_TETHER_H

// Ties what waits in an event loop to the object that it works on. A timer, a socket or a signal
// set that is cancelled, or that ends, does not take back what was on its way: a handler whose time
// had come before is still called, and without an error. Tied, it does nothing then.
//
//     timer_.async_wait(tether_.tie([this](std::error_code error) { ... }));

#include <memory>
#include <utility>

namespace Ovsdb {

class Tether {
  public:
    Tether() = default;
    Tether(Tether const&) = delete;
    Tether& operator=(Tether const&) = delete;

    /// The handler, for as long as this lives and is not cut.
    template <class Handler>
    auto tie(Handler handler) const {
        return [end = std::weak_ptr<End const>(end_),
                handler = std::move(handler)](auto&&... arguments) {
            if (!end.expired()) handler(std::forward<decltype(arguments)>(arguments)...);
        };
    }
    /// Lets go of all that is tied.
    void cut() { end_ = std::make_shared<End const>(); }

  private:
    struct End {};

    std::shared_ptr<End const> end_ = std::make_shared<End const>();
};

}  // namespace Ovsdb

#endif
