#ifndef VGWD_WATCH_CHANGE_PRINTER_H
#define VGWD_WATCH_CHANGE_PRINTER_H

// Writes one line for each notification:
//
//     2026-01-01T12:00:00.000Z /vgw/status/ovsdb/logicalSwitch/UUID.tunnelKey 5000 -> 7777
//     2026-01-01T12:00:00.000Z /vgw/status/ovsdb/physicalPort/UUID.vlanBinding[100] -> "UUID"
//     2026-01-01T12:00:00.000Z /vgw/status/ovsdb/physicalPort/UUID.fault[F] true -> removed
//
// The old value is what this printer wrote last for the same attribute and key; the first time
// there is none. It therefore keeps a text for each attribute: a tool to look on with, not to run
// all year.

#include <cstdio>
#include <string>
#include <string_view>
#include <unordered_map>

namespace Vgwd {

class ChangePrinter {
  public:
    explicit ChangePrinter(std::FILE* out) : out_(out) {}

    void tell(std::string const& path, std::string_view attribute, std::string const& value);
    void tellKey(std::string const& path, std::string_view attribute, std::string const& key,
                 std::string const& value);
    /// What was told is out; false where something could not be written, now or before. To be
    /// called after each step.
    [[nodiscard]] bool flush() { return std::fflush(out_) == 0 && std::ferror(out_) == 0; }

    /// `value` is what a key is told with that is gone.
    static constexpr char const* removed = "removed";

  private:
    void print(std::string const& place, std::string const& value);

    std::FILE* out_;
    std::unordered_map<std::string, std::string> last_;
};

}  // namespace Vgwd

#endif
