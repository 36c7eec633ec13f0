#include <vgwctl/command/ChangePrinter.h>

#include <vgwctl/output/ValueText.h>

#include <nlohmann/json.hpp>

#include <chrono>
#include <cstdio>
#include <ctime>
#include <ostream>

namespace Vgwctl {
namespace {

// RFC 3339, to the millisecond.
std::string timeNow() {
    auto const now = std::chrono::system_clock::now();
    std::time_t const seconds = std::chrono::system_clock::to_time_t(now);
    auto const milliseconds =
        std::chrono::duration_cast<std::chrono::milliseconds>(now.time_since_epoch()).count() %
        1000;
    std::tm parts{};
    ::gmtime_r(&seconds, &parts);
    char text[32];
    std::size_t const length = std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%S", &parts);
    std::snprintf(text + length, sizeof text - length, ".%03dZ", static_cast<int>(milliseconds));
    return text;
}

char const* colorOf(Change::Kind kind) {
    switch (kind) {
        case Change::Kind::inserted:
            return "32";
        case Change::Kind::deleted:
            return "31";
        case Change::Kind::modified:
            return "33";
        case Change::Kind::initial:
            break;
    }
    return "2";
}

bool isMemberGone(Change const& change) {
    return change.key.kind != Value::Kind::none && change.value.kind == Value::Kind::none;
}

}  // namespace

char const* wordOf(Change::Kind kind) {
    switch (kind) {
        case Change::Kind::initial:
            return "initial";
        case Change::Kind::inserted:
            return "insert";
        case Change::Kind::modified:
            return "modify";
        case Change::Kind::deleted:
            break;
    }
    return "delete";
}

ChangePrinter::ChangePrinter(Options const& options, std::ostream& out)
    : options_(options), out_(out), isColored_(hasColor(options)) {
    bool const isCsv = options.style.format == Format::csv;
    if (isCsv && options.style.hasHeadings)
        out_ << (options.hasTimestamp ? "time," : "") << "action,path,attribute,key,value\n";
}

void ChangePrinter::print(Change const& change) {
    std::string const time = options_.hasTimestamp ? timeNow() : "";
    switch (options_.style.format) {
        case Format::table:
        case Format::list:
            return printLine(change, time);
        case Format::json:
            return printJson(change, time);
        case Format::csv:
            return printCsv(change, time);
    }
}

void ChangePrinter::printLine(Change const& change, std::string const& time) {
    if (!time.empty()) out_ << time << ' ';
    std::string const word = wordOf(change.kind);
    out_ << (isColored_ ? "\033[" + std::string(colorOf(change.kind)) + "m" + word + "\033[0m"
                        : word)
         << ' ' << printable(change.path);
    if (!change.attribute.empty()) {
        out_ << ' ' << change.attribute;
        TextForm const form = options_.style.data;
        if (change.key.kind != Value::Kind::none) out_ << ':' << textOf(change.key, form);
        out_ << (isMemberGone(change) ? " removed" : " = " + textOf(change.value, form));
    }
    out_ << '\n';
}

void ChangePrinter::printJson(Change const& change, std::string const& time) {
    nlohmann::json line{{"action", wordOf(change.kind)},
                        {"path", change.path},
                        {"class", std::string(change.type->fullName().view())}};
    if (!time.empty()) line["time"] = time;
    if (!change.attribute.empty()) {
        line["attribute"] = change.attribute;
        if (change.key.kind != Value::Kind::none) line["key"] = jsonOf(change.key);
        line["value"] = jsonOf(change.value);
    }
    out_ << jsonText(line) << '\n';
}

void ChangePrinter::printCsv(Change const& change, std::string const& time) {
    TextForm const form = options_.style.data;
    if (!time.empty()) out_ << time << ',';
    bool const hasKey = change.key.kind != Value::Kind::none;
    bool const hasValue = !change.attribute.empty() && !isMemberGone(change);
    out_ << wordOf(change.kind) << ',' << csvField(printable(change.path)) << ','
         << change.attribute << ',' << (hasKey ? csvField(textOf(change.key, form)) : "") << ','
         << (hasValue ? csvField(textOf(change.value, form)) : "") << '\n';
}

}  // namespace Vgwctl
