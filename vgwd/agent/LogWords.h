#ifndef VGWD_AGENT_LOG_WORDS_H
#define VGWD_AGENT_LOG_WORDS_H

// What -v says: [DESTINATION:]LEVEL, where DESTINATION is console, syslog or file, and LEVEL is
// off, emer, err, warn, info or dbg, as the OVSDB tools name them. Without a destination: the
// console and, if there is one, the log file. A later word wins.

#include <vgwd/agent/Options.h>

#include <string>

namespace Vgwd {

/// What is wrong with the word; empty when it was taken.
std::string takeLogWord(Options& options, std::string const& word);

}  // namespace Vgwd

#endif
