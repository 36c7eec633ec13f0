#ifndef VGWCTL_RECORDING_SERVER_H
#define VGWCTL_RECORDING_SERVER_H

// Gives a tree to whoever connects to a socket of ours, to be read.

#include <vgwctl/link/Copy.h>
#include <vgwctl/recording/ListeningSocket.h>

#include <poll.h>

#include <list>
#include <memory>
#include <string>

namespace Vgwctl {

class Server {
  public:
    /// Raises Failure when `path` is taken.
    Server(std::string path, Copy const& copy);
    ~Server();
    Server(Server const&) = delete;
    Server& operator=(Server const&) = delete;

    /// Serves its readers, and waits for them, or for something else, until the time is over.
    void step(Deadline const& until, pollfd const& other = {-1, 0, 0});

  private:
    class Reader;

    void accept();

    Copy const& copy_;
    ListeningSocket listening_;
    std::list<std::unique_ptr<Reader>> readers_;
    bool isPaused_ = false;  // nobody is let in
    Deadline pausedUntil_;
};

}  // namespace Vgwctl

#endif
