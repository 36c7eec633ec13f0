#ifndef OVSDB_CLIENT_LOG_H
#define OVSDB_CLIENT_LOG_H

#include <functional>
#include <string>

namespace Ovsdb {

enum class LogLevel { debug, info, warning, error };

// Where the client and the mirror say what happens to them. The program decides what becomes of it.
using LogSink = std::function<void(LogLevel, std::string const&)>;

}  // namespace Ovsdb

#endif
