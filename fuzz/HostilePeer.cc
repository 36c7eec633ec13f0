#include <fuzz/HostilePeer.h>

#include <algorithm>
#include <array>

namespace {

std::string network(std::uint64_t number, int width) {
    std::string result;
    for (int shift = 8 * (width - 1); shift >= 0; shift -= 8) {
        result += static_cast<char>(number >> shift & 0xFF);
    }
    return result;
}

std::string whole(std::string_view text) { return network(text.size(), 4) + std::string(text); }

constexpr std::array<std::string_view, 8> paths{"/vgw/status",  "/vgw/cli",           "/vgw/macs",
                                                "/vgw",         "/vgw/status/ovsdb",  "/nothing",
                                                "/vgw/%2Fmacs", "/vgw/macs/dir/dir/x"};
constexpr std::array<std::string_view, 8> names{"a", "b", "s", "status", "", "dir", "c", "x/y"};
constexpr std::array<std::string_view, 8> classes{
    "Vgw::LogicalSwitch",  "Vgw::OvsdbDataModel", "Qor::Dir",  "Vgw::Status",
    "Vgw::UcastMacsLocal", "Vgw::CliConfig",      "Sim::None", "Qor::Entity"};
constexpr std::array<std::string_view, 8> types{
    "Fuzz::A", "Fuzz::B", "Fuzz::C", "Vgw::CliConfig", "Qor::Entity", "Qor::Name", "U32", ""};
constexpr std::array<std::string_view, 8> operationNames{
    "reset", "managerTarget",          "clear",   "isEqualTo",
    "clone", "qorHasAttrLogInterface", "running", "qorNboAttrLogSaForMsgChannel"};
constexpr std::array<std::string_view, 4> rows{
    "/vgw/status/ovsdb/logicalSwitch/a", "/vgw/status/ovsdb/physicalPort/a",
    "/vgw/status/ovsdb/physicalSwitchRaw/a", "/vgw/macs/entry/a"};
// What asks and answers, beyond what link() sends.
constexpr std::array<std::uint8_t, 8> asking{10, 11, 12, 20, 21, 22, 23, 11};
constexpr std::array<std::uint32_t, 10> firsts{7, 135, 136, 144, 258, 6, 262, 386, 386, 388};

}  // namespace

std::uint64_t FuzzReader::number(int width) {
    std::uint64_t result = 0;
    for (int i = 0; i < width; ++i) result = result << 8 | byte();
    return result;
}

std::string_view FuzzReader::bytes(std::size_t most) {
    auto const result = rest_.substr(0, std::min(most, rest_.size()));
    rest_.remove_prefix(result.size());
    return result;
}

std::string hostileFrame(std::uint8_t kind, std::uint64_t entity, std::uint32_t attribute,
                         std::uint8_t tag, std::uint32_t wordB, std::string_view payload) {
    std::string body = network(kind, 1) + network(entity, 8) + network(attribute, 4) +
                       network(tag, 1) + network(0, 4) + network(wordB, 4) + network(0, 1);
    body += '\1';
    body += payload;
    body += '\3';
    return network(body.size(), 4) + body;
}

std::string HostilePeer::hello() {
    return hostileFrame(2, 0, 0, 1, 0, "\1QORL" + network(2, 4) + network(1U << 20, 4));
}

// Its own half has bit 63 clear; what the other end gives out begins with 8000000000000003.
std::uint64_t HostilePeer::entity() {
    std::uint8_t const choice = reader_.byte();
    std::uint64_t const number = 2U * (choice & 0x1F) + 1;
    if (choice < 0x80) return std::uint64_t{1} << 63 | number;
    if (choice < 0xF8) return number;
    return reader_.number(8);
}

std::uint32_t HostilePeer::attribute() {
    std::uint8_t const choice = reader_.byte();
    std::uint32_t const id = firsts[choice % firsts.size()] + (choice >> 5 & 3);
    return choice & 0x80 ? ~id + 1 : id;
}

void HostilePeer::text(std::string& wire, bool isWhole) {
    std::uint8_t const choice = reader_.byte();
    std::string_view const text = choice & 0x80   ? reader_.bytes(choice & 0x3F)
                                  : choice & 0x40 ? classes[choice % classes.size()]
                                                  : names[choice % names.size()];
    wire += isWhole ? whole(text) : std::string(text);
}

std::string HostilePeer::payload() {
    std::string result;
    for (int parts = reader_.byte() % 6; parts > 0; --parts) {
        std::uint8_t const kind = reader_.byte();
        if (kind % 8 == 0) text(result, true);
        if (kind % 8 == 1) text(result, false);
        if (kind % 8 == 2) result += network(entity(), 8);
        if (kind % 8 == 3) result += network(reader_.byte(), 1);
        if (kind % 8 == 4) result += network(reader_.byte(), 2);
        if (kind % 8 == 5) result += network(reader_.byte(), 4);
        if (kind % 8 == 6) result += network(reader_.number(4), 4);
        if (kind % 8 == 7) result += std::string(std::size_t{16} * reader_.byte(), 'z');
    }
    return result;
}

void HostilePeer::frame(std::string& wire) {
    std::uint8_t const shape = reader_.byte();
    auto const kind = static_cast<std::uint8_t>((shape & 3) == 3 ? 1 : (shape & 4) << 5);
    std::uint64_t const who = shape & 8 ? 1 : entity();
    std::uint32_t const what = attribute();
    auto const tag = static_cast<std::uint8_t>(shape & 16 ? 0 : 1);
    wire += hostileFrame(kind, who, what, tag, shape & 32 ? 151 : 0, payload());
}

void HostilePeer::link(std::string& wire) {
    std::uint8_t const op = reader_.byte();
    std::string payload(1, static_cast<char>(op % 11));
    if (op % 11 == 2) {
        payload += network(reader_.byte() % 4, 4) + network(op >> 7, 1);
        payload += whole(paths[reader_.byte() % paths.size()]);
    } else if (op % 11 == 3) {
        payload += network(1, 4) + network(entity(), 8);
    } else {
        payload += network(reader_.byte() % 4, 4) + std::string(reader_.bytes(op >> 4));
    }
    wire += hostileFrame(2, 0, 0, 1, 0, payload);
}

std::string HostilePeer::path() {
    std::uint8_t const choice = reader_.byte();
    return whole(choice & 0x80 ? rows[choice % rows.size()] : paths[choice % paths.size()]);
}

// A name and its type.
std::string HostilePeer::argument() {
    std::uint8_t const choice = reader_.byte();
    return whole(names[choice % names.size()]) + whole(types[choice >> 3 & 7]);
}

// A type in which much is as it should be.
void HostilePeer::described(std::string& payload) {
    std::uint8_t const sort = reader_.byte();
    bool const isEntity = (sort & 3) != 0;
    payload += whole(types[sort >> 2 & 7]);
    payload += whole(isEntity ? types[sort & 0x20 ? reader_.byte() & 7 : 4] : "");
    payload += network(isEntity ? 3 : sort >> 6, 1) + network(8, 4);
    std::uint8_t const counts = reader_.byte();
    payload += network(counts & 3, 4);
    for (int left = counts & 3; left > 0; --left) payload += argument();
    payload += network(counts >> 2 & 3, 4);
    for (std::uint32_t n = 0; n < (counts >> 2 & 3U); ++n) {
        std::uint8_t const flags = reader_.byte();
        payload += network(258 + n + (flags & 1), 4) + argument();
        payload += whole(flags & 2 ? types[flags >> 4 & 7] : "");
        payload += network(flags & 4 ? reader_.number(4) : 0, 4) + network(0, 4);
        payload += network(flags & 8 ? reader_.byte() : 0, 4) + whole("") + network(0, 4);
    }
    payload += network(counts >> 4 & 3, 4);
    for (int left = counts >> 4 & 3; left > 0; --left) {
        payload += network(258, 4) + whole(names[reader_.byte() % names.size()]);
    }
    payload += network(counts >> 6, 4);
    for (int left = counts >> 6; left > 0; --left) payload += network(reader_.byte() % 4, 4);
}

void HostilePeer::call(std::string& payload) {
    std::uint8_t const choice = reader_.byte();
    payload += network(1, 4) + path() + whole(operationNames[choice & 7]);
    payload += network(choice >> 6, 4);
    for (int left = choice >> 6; left > 0; --left) payload += path();
}

void HostilePeer::question(std::string& wire) {
    std::uint8_t const op = asking[reader_.byte() % asking.size()];
    std::string payload = network(op, 1);
    std::uint8_t const number = reader_.byte() % 4;
    if (op == 10) payload += network(number, 4) + whole(types[reader_.byte() & 7]);
    if (op == 11 || op == 12) payload += network(number, 4);
    if (op == 11) described(payload);
    if (op == 12) payload += network(reader_.byte() % 4, 4);
    if (op == 20) call(payload);
    if (op == 21) payload += network(number, 4) + network(reader_.byte() % 3, 1) + whole("x");
    if (op == 22) {
        payload += path();
        payload += network(attribute(), 4) + whole(names[number]);
        payload += network(reader_.byte(), 4);
    }
    if (op == 23) payload += network(number, 4) + network(1, 8) + whole(names[number]) + whole("");
    wire += hostileFrame(2, 0, 0, 1, 0, payload);
}

HostileStep HostilePeer::next(std::string& wire) {
    std::uint8_t const word = reader_.byte();
    switch (word % 8) {
        case 0:
            return HostileStep::serve;
        case 1:
            return HostileStep::change;
        case 2:
            link(wire);
            break;
        case 3:
            if (word > 0xF0) wire += reader_.bytes(reader_.byte());
            if (word >= 0x80 && word <= 0xF0) question(wire);
            break;
        default:
            frame(wire);
            break;
    }
    return HostileStep::send;
}
