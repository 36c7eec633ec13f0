#ifndef TESTS_SUPPORT_TREECLIENT_COMMANDS_H
#define TESTS_SUPPORT_TREECLIENT_COMMANDS_H

// What is asked of the copies by one line of words, and answered by one line:
//
//     dump FILE                      the rows below /vgw, as vgwd dumps its mirror, into the file
//     get PATH ATTRIBUTE             value TEXT
//     get PATH ATTRIBUTE KEY         value TEXT of one member
//     set PATH ATTRIBUTE TEXT        ok; a text is written as in `get`
//     set PATH ATTRIBUTE KEY TEXT
//     del PATH ATTRIBUTE KEY
//     list PATH ATTRIBUTE            value KEY KEY...
//     newmac TABLE NAME MAC          a row of its own in the copy of that directory; another word
//                                    names the table of its class, if it is another one
//     mount PATH, mountw PATH, unmount PATH, ping
//     counters                       value bytesIn bytesOut framesIn framesOut
//     synced                         value of how many connections are
//
// Whatever goes wrong is answered by "failed: REASON".

#include <tests/support/treeclient/Connection.h>

#include <memory>
#include <string>
#include <vector>

namespace TreeClient {

using Connections = std::vector<std::unique_ptr<Connection>>;

/// The answer. All but `synced` asks the first connection.
std::string answer(Connections& connections, std::string const& line);

}  // namespace TreeClient

#endif
