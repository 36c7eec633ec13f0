#ifndef VGWD_AGENT_SERVICE_NOTICE_H
#define VGWD_AGENT_SERVICE_NOTICE_H

// Tells the service manager that started us how we are (sd_notify(3)): datagrams to the socket that
// NOTIFY_SOCKET names. Without that variable nothing is told.
//
// When the manager watches (WATCHDOG_USEC), it is told twice within that time that the event loop
// goes round; an agent that hangs is ended and started again.

#include <ovsdb/rpc/Tether.h>

#include <asio/io_context.hpp>
#include <asio/steady_timer.hpp>

#include <chrono>
#include <string>

namespace Vgwd {

class ServiceNotice {
  public:
    /// Reads the variables, and takes them out of the environment: what we start speaks for itself.
    explicit ServiceNotice(asio::io_context& loop);
    ~ServiceNotice();
    ServiceNotice(ServiceNotice const&) = delete;
    ServiceNotice& operator=(ServiceNotice const&) = delete;

    void ready();
    void reloading();
    void stopping();
    /// One line for who looks at the service.
    void status(std::string const& text);

  private:
    void tell(std::string const& message) const;
    void watch();

    int socket_ = -1;
    std::string address_;
    std::chrono::microseconds interval_{0};  // 0: nobody watches
    asio::steady_timer watch_;
    Ovsdb::Tether tether_;
};

}  // namespace Vgwd

#endif
