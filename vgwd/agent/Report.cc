#include <vgwd/agent/Report.h>

#include <vgwd/show/Contents.h>
#include <vgwd/show/JsonText.h>
#include <vgwd/show/TreeText.h>

#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <system_error>

namespace Vgwd {

std::string reportOf(std::string const& format, Vgw::Status const& status,
                     Ovsdb::Mirror const& mirror) {
    if (format == "json") {
        JsonText json;
        tellMirror(mirror, json);
        return json.take();
    }
    TreeText tree;
    tree.begin("/vgw");
    tellStatus(status, tree);
    tellMirror(mirror, tree);
    tree.end();
    return tree.take();
}

void writeWhole(std::string const& file, std::string const& text) {
    std::string const aside = file + ".new";
    std::ofstream out(aside, std::ios::binary | std::ios::trunc);
    out << text;
    out.close();
    std::error_code failed;
    if (out) std::filesystem::rename(aside, file, failed);
    if (!out || failed) throw std::runtime_error(file + " can't be written: " + failed.message());
}

}  // namespace Vgwd
