#include <vgwctl/output/ValueText.h>

#include <nlohmann/json.hpp>

#include <qor/core/TextUtf8.h>

#include <algorithm>
#include <cctype>

namespace Vgwctl {
namespace {

constexpr char const* digits = "0123456789abcdef";

bool isPlain(unsigned char c) {
    return c >= 0x80 || std::isalnum(c) != 0 ||
           std::string_view("_-.:/@%+*~!$").find(static_cast<char>(c)) != std::string_view::npos;
}

// What no one takes for a list, a pair or several words, or for nothing.
bool isPlain(std::string_view text) {
    return !text.empty() &&
           std::all_of(text.begin(), text.end(), [](unsigned char c) { return isPlain(c); });
}

void addByte(std::string& shown, char const* escape, char c) {
    auto const byte = static_cast<unsigned char>(c);
    shown += escape;
    shown += {digits[byte >> 4], digits[byte & 15]};
}

// Between double quotes, as in JSON; bytes that JSON has no form for as \xNN.
std::string inQuotes(std::string_view text) {
    std::string shown = "\"";
    for (std::size_t at = 0; at < text.size();) {
        std::size_t const length = Qor::printableLength(text.substr(at));
        if (text[at] == '"' || text[at] == '\\') shown += '\\';
        if (length != 0) {
            shown += text.substr(at, length);
        } else {
            addByte(shown, static_cast<unsigned char>(text[at]) < 0x80 ? "\\u00" : "\\x", text[at]);
        }
        at += std::max<std::size_t>(length, 1);
    }
    return shown + '"';
}

std::string shown(Value const& value, TextForm form) {
    bool const isText = value.kind == Value::Kind::text;
    if (!isText || form == TextForm::bare) return printable(value.text);
    return isPlain(value.text) && printable(value.text) == value.text ? value.text
                                                                      : inQuotes(value.text);
}

std::string memberText(Value::Member const& member, bool isSet, TextForm form) {
    std::string const key = textOf(member.first, form);
    return isSet ? key : key + "=" + textOf(member.second, form);
}

}  // namespace

std::string textOf(Value const& value, TextForm form) {
    if (form == TextForm::json) return jsonText(jsonOf(value));
    if (value.kind == Value::Kind::none) return form == TextForm::bare ? "" : "[]";
    if (value.kind != Value::Kind::record && !value.isCollection()) return shown(value, form);
    std::string text;
    for (Value::Member const& member : value.members) {
        if (!text.empty()) text += form == TextForm::bare ? " " : ", ";
        text += memberText(member, value.kind == Value::Kind::set, form);
    }
    return form == TextForm::bare ? text : "{" + text + "}";
}

nlohmann::json jsonOf(Value const& value) {
    using Kind = Value::Kind;
    switch (value.kind) {
        case Kind::none:
            return nullptr;
        case Kind::boolean:
        case Kind::number: {
            auto const number = nlohmann::json::parse(value.text, nullptr, false);
            return number.is_discarded() ? nlohmann::json(value.text) : number;
        }
        case Kind::text:
        case Kind::reference:
            return value.text;
        case Kind::record: {
            nlohmann::json fields = nlohmann::json::object();
            for (auto const& [name, field] : value.members) fields[name.text] = jsonOf(field);
            return fields;
        }
        case Kind::set:
        case Kind::map:
            break;
    }
    nlohmann::json members = nlohmann::json::array();
    for (auto const& [key, held] : value.members) {
        if (value.kind == Kind::set) {
            members.push_back(jsonOf(key));
        } else {
            members.push_back({jsonOf(key), jsonOf(held)});
        }
    }
    return {value.kind == Kind::set ? "set" : "map", members};
}

std::string printable(std::string_view text) {
    std::string shown;
    for (std::size_t at = 0; at < text.size();) {
        std::size_t const length = Qor::printableLength(text.substr(at));
        if (length != 0) {
            shown += text.substr(at, length);
        } else {
            addByte(shown, "\\x", text[at]);
        }
        at += std::max<std::size_t>(length, 1);
    }
    return shown;
}

std::string jsonText(nlohmann::json const& json, int indent) {
    return json.dump(indent, ' ', true, nlohmann::json::error_handler_t::replace);
}

}  // namespace Vgwctl
