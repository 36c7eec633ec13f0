#ifndef VGWCTL_COMMAND_CHANGE_PRINTER_H
#define VGWCTL_COMMAND_CHANGE_PRINTER_H

// Prints changes, one a line, as they come.
//
//     modify /vgw/status/ovsdb/logicalSwitch/red tunnelKey = 6001
//
// With --format json each line is an object, with csv a record.

#include <vgwctl/command/Follow.h>
#include <vgwctl/options/Options.h>

#include <iosfwd>
#include <string>

namespace Vgwctl {

class ChangePrinter {
  public:
    ChangePrinter(Options const& options, std::ostream& out);

    void print(Change const& change);

  private:
    void printLine(Change const& change, std::string const& time);
    void printJson(Change const& change, std::string const& time);
    void printCsv(Change const& change, std::string const& time);

    Options const& options_;
    std::ostream& out_;
    bool const isColored_;
};

/// The word for it: initial, insert, modify or delete.
char const* wordOf(Change::Kind kind);

}  // namespace Vgwctl

#endif
