#include <modelc/emit/Includes.h>

namespace Modelc {
namespace {

std::string linesOf(std::set<std::string> const& headers) {
    std::string result;
    for (std::string const& header : headers) result += "#include <" + header + ">\n";
    return result;
}

}  // namespace

void Includes::add(std::string const& header) {
    if (header.empty()) return;
    bool const isStandard = header.find_first_of("./") == std::string::npos;
    (isStandard ? standard_ : others_).insert(header);
}

std::string Includes::text() const {
    bool const isParted = !standard_.empty() && !others_.empty();
    return linesOf(standard_) + (isParted ? "\n" : "") + linesOf(others_);
}

}  // namespace Modelc
