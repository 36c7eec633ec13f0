#include <vgwd/watch/ChangePrinter.h>

#include <qor/core/Now.h>

#include <array>
#include <cmath>
#include <ctime>

namespace Vgwd {
namespace {

std::string timeText() {
    double const now = Qor::now();
    double const whole = std::floor(now);
    auto const seconds = static_cast<std::time_t>(whole);
    std::tm parts{};
    ::gmtime_r(&seconds, &parts);
    std::array<char, 40> text{};
    std::size_t const size = std::strftime(text.data(), text.size(), "%Y-%m-%dT%H:%M:%S", &parts);
    std::snprintf(text.data() + size, text.size() - size, ".%03dZ",
                  static_cast<int>((now - whole) * 1000) % 1000);
    return text.data();
}

}  // namespace

void ChangePrinter::tell(std::string const& path, std::string_view attribute,
                         std::string const& value) {
    print(path + "." + std::string(attribute), value);
}

void ChangePrinter::tellKey(std::string const& path, std::string_view attribute,
                            std::string const& key, std::string const& value) {
    print(path + "." + std::string(attribute) + "[" + key + "]", value);
}

void ChangePrinter::print(std::string const& place, std::string const& value) {
    auto const [at, isNew] = last_.try_emplace(place, value);
    std::string line = timeText() + " " + place;
    if (!isNew) line += " " + at->second;
    line += " -> " + value + "\n";
    std::fputs(line.c_str(), out_);
    if (value == removed)
        last_.erase(at);
    else
        at->second = value;
}

}  // namespace Vgwd
