#include <ovsdb/store/Datum.h>

#include <ovsdb/rpc/ProtocolError.h>

#include <algorithm>
#include <array>
#include <bit>

namespace Ovsdb {
namespace {

using simdjson::SUCCESS;
using simdjson::dom::array;
using simdjson::dom::element;

constexpr ColumnType uuidSet{Shape::set, AtomType::uuid, AtomType::string};
constexpr ColumnType textSet{Shape::set, AtomType::string, AtomType::string};

void appendWord(std::string& out, std::uint64_t word, unsigned bytes) {
    for (unsigned i = bytes; i-- > 0;) out.push_back(static_cast<char>(word >> (8 * i)));
}

std::uint64_t wordOf(std::string_view bytes) {
    std::uint64_t word = 0;
    for (char const c : bytes) word = word << 8 | static_cast<unsigned char>(c);
    return word;
}

constexpr std::size_t fixedSize(AtomType type) {
    switch (type) {
        case AtomType::integer:
        case AtomType::real:
            return 8;
        case AtomType::boolean:
            return 1;
        case AtomType::uuid:
            return Uuid::byteSize;
        case AtomType::string:
            return 0;
    }
    return 0;
}

[[noreturn]] void refuse(ColumnType const& type, element value) {
    std::string shown = simdjson::minify(value);
    if (shown.size() > 80) shown = shown.substr(0, 77) + "...";
    throw ProtocolError("expected " + type.text() + ", got " + shown);
}

// ["uuid", "..."]
bool appendUuid(std::string& out, element value) {
    array pair;
    if (value.get(pair) != SUCCESS) return false;
    auto at = pair.begin();
    std::string_view tag;
    std::string_view text;
    if (at == pair.end() || (*at).get(tag) != SUCCESS || tag != "uuid") return false;
    ++at;
    if (at == pair.end() || (*at).get(text) != SUCCESS) return false;
    std::optional<Uuid> const uuid = Uuid::parse(text);
    if (!uuid) return false;
    auto const bytes = uuid->bytes();
    out.append(bytes.data(), bytes.size());
    return true;
}

bool appendReal(std::string& out, element value) {
    double number = 0;
    if (value.get(number) != SUCCESS) return false;
    appendWord(out, std::bit_cast<std::uint64_t>(number), 8);
    return true;
}

bool appendAtom(std::string& out, AtomType type, element value, bool withLength) {
    switch (type) {
        case AtomType::string: {
            std::string_view text;
            if (value.get(text) != SUCCESS) return false;
            if (withLength) appendWord(out, text.size(), 4);
            out.append(text);
            return true;
        }
        case AtomType::uuid:
            return appendUuid(out, value);
        case AtomType::integer: {
            std::int64_t number = 0;
            if (value.get(number) != SUCCESS) return false;
            appendWord(out, static_cast<std::uint64_t>(number), 8);
            return true;
        }
        case AtomType::boolean: {
            bool truth = false;
            if (value.get(truth) != SUCCESS) return false;
            out.push_back(truth ? 1 : 0);
            return true;
        }
        case AtomType::real:
            return appendReal(out, value);
    }
    return false;
}

// The array behind ["set", [...]] or ["map", [...]].
bool tagged(element value, std::string_view wanted, array& items) {
    array pair;
    if (value.get(pair) != SUCCESS) return false;
    auto at = pair.begin();
    std::string_view tag;
    if (at == pair.end() || (*at).get(tag) != SUCCESS || tag != wanted) return false;
    ++at;
    return at != pair.end() && (*at).get(items) == SUCCESS;
}

bool appendPair(std::string& out, ColumnType const& type, element value) {
    array pair;
    if (value.get(pair) != SUCCESS) return false;
    auto at = pair.begin();
    if (at == pair.end() || !appendAtom(out, type.key, *at, true)) return false;
    ++at;
    return at != pair.end() && appendAtom(out, type.value, *at, true);
}

// Puts the items behind `from` into their one order; of equal keys the last stays.
void sortItems(std::string& out, std::size_t from, ColumnType const& type) {
    std::string const unsorted = out.substr(from);
    std::vector<std::pair<std::string_view, std::string_view>> items;
    for (DatumItems walk(type, unsorted); walk.next();)
        items.emplace_back(walk.key(), walk.encoded());
    auto const less = [](auto const& a, auto const& b) { return a.first < b.first; };
    if (std::adjacent_find(items.begin(), items.end(), [&](auto const& a, auto const& b) {
            return !less(a, b);
        }) == items.end())
        return;
    std::stable_sort(items.begin(), items.end(), less);
    out.resize(from);
    for (std::size_t i = 0; i < items.size(); ++i)
        if (i + 1 == items.size() || items[i].first != items[i + 1].first)
            out.append(items[i].second);
}

void appendItems(std::string& out, ColumnType const& type, array items, element whole) {
    std::size_t const from = out.size();
    std::size_t count = 0;
    for (element const item : items) {
        bool const good = type.shape == Shape::map ? appendPair(out, type, item)
                                                   : appendAtom(out, type.key, item, true);
        if (!good) refuse(type, whole);
        ++count;
    }
    if (count > 1) sortItems(out, from, type);
}

// An optional is the atom, ["set", []] or ["set", [atom]].
void appendOptional(std::string& out, ColumnType const& type, element value) {
    array items;
    element atom = value;
    if (tagged(value, "set", items)) {
        if (items.begin() == items.end()) return;
        if (items.size() != 1) refuse(type, value);
        atom = *items.begin();
    }
    out.push_back(1);
    if (!appendAtom(out, type.key, atom, false)) refuse(type, value);
}

void appendSymmetricDifference(std::string& out, ColumnType const& type, std::string_view old,
                               std::string_view modify) {
    DatumItems left(type, old);
    DatumItems right(type, modify);
    bool more = left.next();
    bool changed = right.next();
    while (more || changed) {
        if (!changed || (more && left.key() < right.key())) {
            out.append(left.encoded());
            more = left.next();
        } else if (!more || right.key() < left.key()) {
            out.append(right.encoded());
            changed = right.next();
        } else {
            if (left.encoded() != right.encoded()) out.append(right.encoded());
            more = left.next();
            changed = right.next();
        }
    }
}

}  // namespace

void appendDatum(std::string& out, ColumnType const& type, element value) {
    array items;
    switch (type.shape) {
        case Shape::one:
            if (!appendAtom(out, type.key, value, false)) refuse(type, value);
            return;
        case Shape::optional:
            return appendOptional(out, type, value);
        case Shape::set:
            if (tagged(value, "set", items)) return appendItems(out, type, items, value);
            if (!appendAtom(out, type.key, value, true)) refuse(type, value);
            return;
        case Shape::map:
            if (!tagged(value, "map", items)) refuse(type, value);
            return appendItems(out, type, items, value);
    }
}

void appendDefault(std::string& out, ColumnType const& type) {
    if (type.shape == Shape::one) out.append(fixedSize(type.key), '\0');
}

void appendModified(std::string& out, ColumnType const& type, std::string_view old,
                    std::string_view modify) {
    if (type.shape == Shape::set || type.shape == Shape::map)
        appendSymmetricDifference(out, type, old, modify);
    else
        out.append(modify);
}

std::int64_t integerOf(std::string_view datum) { return static_cast<std::int64_t>(wordOf(datum)); }

std::optional<std::int64_t> optionalIntegerOf(std::string_view datum) {
    if (datum.empty()) return std::nullopt;
    return integerOf(datum.substr(1));
}

bool DatumItems::next() {
    if (rest_.empty()) return false;
    char const* const begin = rest_.data();
    keyText_ = take(key_);
    valueText_ = map_ ? take(value_) : std::string_view();
    encoded_ = std::string_view(begin, static_cast<std::size_t>(rest_.data() - begin));
    return true;
}

std::string_view DatumItems::take(AtomType type) {
    std::size_t size = fixedSize(type);
    if (type == AtomType::string) {
        size = static_cast<std::size_t>(wordOf(rest_.substr(0, 4)));
        rest_.remove_prefix(4);
    }
    std::string_view const atom = rest_.substr(0, size);
    rest_.remove_prefix(size);
    return atom;
}

std::vector<Uuid> uuidsOf(std::string_view datum) {
    std::vector<Uuid> uuids;
    uuids.reserve(datum.size() / Uuid::byteSize);
    for (DatumItems items(uuidSet, datum); items.next();)
        uuids.push_back(Uuid::fromBytes(items.key()));
    return uuids;
}

std::vector<std::string_view> textsOf(std::string_view datum) {
    std::vector<std::string_view> texts;
    for (DatumItems items(textSet, datum); items.next();) texts.push_back(items.key());
    return texts;
}

}  // namespace Ovsdb
