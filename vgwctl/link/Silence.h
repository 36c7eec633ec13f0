#ifndef VGWCTL_LINK_SILENCE_H
#define VGWCTL_LINK_SILENCE_H

// Whether the other end of a connection is heard of. Who has said nothing for a while is to be
// asked whether it is there; if it does not answer for as long again, it is told as silent, once,
// until it is heard of.
//
// It counts from what was found, and not by the clock alone: a process that was stopped itself has
// to look at what came meanwhile, and to ask, before it holds that nobody answers.

#include <vgwctl/link/Deadline.h>

#include <cstdint>

namespace Vgwctl {

class Silence {
  public:
    enum class Finding {
        none,
        toAsk,       // it is to be asked now
        silent,      // it has not answered
        heardAgain,  // after it was told as silent
    };

    /// How long it may say nothing before it is asked, and then before it is told as silent. 0:
    /// nothing is ever found.
    explicit Silence(Deadline::Seconds patience) : patience_(patience) { begin(); }

    Deadline::Seconds patience() const { return patience_; }
    /// A connection begins.
    void begin();
    /// What follows from the number of bytes that have come over it.
    Finding look(std::uint64_t bytes);
    /// When look() may find something though nothing comes.
    Deadline const& due() const { return due_; }

  private:
    enum class State { heard, asked, silent };

    void wait();

    Deadline::Seconds const patience_;
    State state_ = State::heard;
    std::uint64_t bytes_ = 0;
    Deadline due_;
};

}  // namespace Vgwctl

#endif
