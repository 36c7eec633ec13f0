#include "Tap.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <map>
#include <tuple>

namespace Sim {

namespace {

constexpr std::size_t headSize = 28;  // size, kind, header, first token
constexpr std::size_t keptPayload = 256;
constexpr std::int32_t orphanAttribute = 136;
constexpr std::uint32_t announcement = 151;

std::uint64_t number(std::string_view bytes, std::size_t at, std::size_t width) {
    std::uint64_t result = 0;
    for (std::size_t i = at; i < at + width && i < bytes.size(); ++i) {
        result = result << 8 | static_cast<unsigned char>(bytes[i]);
    }
    return result;
}

// The sections of an orphan record: a number, a length, the contents; 4 is the id.
std::uint64_t orphanId(std::string_view payload) {
    for (std::size_t at = 0; at + 5 <= payload.size();) {
        std::size_t const length = number(payload, at + 1, 4);
        if (payload[at] == 4) return number(payload, at + 5, 8);
        at += 5 + length;
    }
    return 0;
}

std::string named(Sent const& sent) {
    char id[20];
    std::snprintf(id, sizeof id, "%llx", static_cast<unsigned long long>(sent.entity));
    return std::string("entity ") + id + ", attribute " + std::to_string(sent.attribute) +
           (sent.isUp ? ", up" : ", down");
}

// In the place of a frame one that leads to nothing: both ends count them.
std::string wordOfNoMount(std::string_view frame) {
    constexpr char synced = 4;
    constexpr char end = 3;
    std::string result(frame.substr(0, headSize));
    result += synced + std::string(4, '\xff') + end;
    std::size_t const length = result.size() - 4;
    for (std::size_t i = 0; i < 4; ++i) result[i] = static_cast<char>(length >> (24 - 8 * i));
    return result;
}

}  // namespace

void FrameCutter::append(std::string_view bytes, bool isUp, std::vector<Sent>& history) {
    waiting_ += bytes;
    std::size_t at = 0;
    while (waiting_.size() - at >= headSize) {
        std::string_view const frame = std::string_view(waiting_).substr(at);
        std::size_t const size = number(frame, 0, 4) + 4;
        if (frame.size() < size) break;
        Sent sent;
        sent.isUp = isUp;
        sent.kind = static_cast<unsigned>(number(frame, 4, 1) & 0x7F);
        sent.hasMore = (number(frame, 4, 1) & 0x80) != 0;
        sent.entity = number(frame, 5, 8);
        sent.attribute = static_cast<std::int32_t>(number(frame, 13, 4));
        sent.wordB = static_cast<std::uint32_t>(number(frame, 22, 4));
        sent.payload = frame.substr(headSize, std::min(size - headSize - 1, keptPayload));
        history.push_back(std::move(sent));
        at += size;
    }
    waiting_.erase(0, at);
}

std::string inWords(Sent const& sent) {
    static constexpr char const* kinds[] = {"record", "marker", "link"};
    std::string text = std::string(kinds[sent.kind % 3]) + " of " + named(sent) +
                       (sent.hasMore ? ", goes on" : "") + ": ";
    for (char const byte : std::string_view(sent.payload).substr(0, 60)) {
        text += byte >= ' ' && byte <= '~' ? byte : '.';
    }
    if (sent.kind == 1) text += sent.payload[0] == 0 ? "begin" : "end or abort";
    return text;
}

// A child's announcement ends with its id, an entry's has a state in front of it and goes on.
std::uint64_t announcedBy(Sent const& sent) {
    if (sent.kind != 0) return 0;
    if (sent.entity == 1 && sent.attribute == orphanAttribute) return orphanId(sent.payload);
    if (sent.wordB != announcement) return 0;
    std::size_t const id = 4 + number(sent.payload, 0, 4);
    bool const isChild = sent.payload.size() == id + 8;
    return number(sent.payload, isChild ? id : id + 1, 8);
}

std::string announcedFirst(std::vector<Sent> const& history) {
    std::set<std::uint64_t> known;
    for (Sent const& sent : history) {
        if (sent.kind > 1) continue;
        bool const isOrphan = sent.entity == 1;
        if (!isOrphan && !known.contains(sent.entity)) return named(sent) + " is not announced";
        if (auto const id = announcedBy(sent)) known.insert(id);
    }
    return {};
}

std::string wellFormed(std::vector<Sent> const& history) {
    constexpr char ends = 2;
    std::set<std::tuple<bool, std::uint64_t, std::int32_t>> begun;
    std::map<std::pair<bool, std::uint64_t>, std::int32_t> torn;
    for (Sent const& sent : history) {
        if (sent.kind > 1) continue;
        auto const which = std::tuple(sent.isUp, sent.entity, sent.attribute);
        if (sent.kind == 1) {
            if (sent.payload[0] == 0) begun.insert(which);
            if (sent.payload[0] == ends && begun.erase(which) == 0) {
                return named(sent) + " ends what has not begun";
            }
            torn.erase({sent.isUp, sent.entity});
            continue;
        }
        auto const open = torn.find({sent.isUp, sent.entity});
        bool const isOther = open != torn.end() && sent.hasMore && sent.attribute != open->second;
        if (isOther) return named(sent) + " begins while another text goes on";
        if (sent.hasMore) torn[{sent.isUp, sent.entity}] = sent.attribute;
        if (open != torn.end() && !sent.hasMore && sent.attribute == open->second) torn.erase(open);
    }
    return {};
}

void DescriptionSieve::sift() {
    while (waiting_.size() >= headSize) {
        std::size_t const size = number(waiting_, 0, 4) + 4;
        if (waiting_.size() < size) return;
        pass(waiting_.substr(0, size));
        waiting_.erase(0, size);
    }
}

// Of the answers to the first question, which is for all.
void DescriptionSieve::pass(std::string frame) {
    constexpr unsigned link = 2;
    constexpr unsigned described = 11;
    constexpr unsigned describedAll = 12;
    std::string_view const payload = std::string_view(frame).substr(headSize);
    bool const isLink = number(frame, 4, 1) == link;
    auto const op = isLink ? number(payload, 0, 1) : 0;
    bool const isOfFirst = (op == described || op == describedAll) && number(payload, 1, 4) == 1;
    if (isOfFirst && op == described) {
        std::string_view const name = payload.substr(9, number(payload, 5, 4));
        if (isLearnedLate(reader_, name)) {
            std::string const instead = wordOfNoMount(frame);
            keptBack_ += frame.size() - instead.size();
            passed_ += instead;
            ++classes_;
            return;
        }
    }
    if (isOfFirst && op == describedAll) {
        auto const told = static_cast<std::uint32_t>(number(payload, 5, 4)) - classes_;
        for (std::size_t i = 0; i < 4; ++i) {
            frame[headSize + 5 + i] = static_cast<char>(told >> (24 - 8 * i));
        }
    }
    passed_ += frame;
}

std::string DescriptionSieve::take(std::size_t most) {
    sift();
    std::string const taken = passed_.substr(0, most);
    passed_.erase(0, taken.size());
    return taken;
}

std::size_t Tap::write(std::string_view bytes) {
    std::size_t const count = carrier_->write(bytes);
    put_ += count;
    return count;
}

// Beside what there is room for, enough to tell whether its last bytes begin a name.
std::string Tap::nextExchanged(std::size_t most) {
    std::array<unsigned char, 4096> bytes;
    std::size_t const wanted = most + NameExchange::longest;
    if (names_.waiting() < wanted) {
        std::size_t const room = std::min(bytes.size(), wanted - names_.waiting());
        std::size_t const count = carrier_->read(std::span(bytes).first(room));
        names_.append({reinterpret_cast<char const*>(bytes.data()), count});
    }
    return names_.take(most);
}

// Until there is a whole frame, or nothing more has come.
std::string Tap::nextSifted(std::size_t most) {
    std::string taken = sieve_->take(most);
    while (taken.empty()) {
        std::string const more = nextExchanged(4096);
        if (more.empty()) break;
        sieve_->append(more);
        taken = sieve_->take(most);
    }
    taken_ += sieve_->keptBack();
    return taken;
}

std::string Tap::next(std::size_t most) { return sieve_ ? nextSifted(most) : nextExchanged(most); }

std::size_t Tap::read(std::span<unsigned char> room) {
    std::size_t count = 0;
    if (names_.isNone()) {
        count = carrier_->read(room);
    } else {
        std::string const taken = next(room.size());
        std::copy(taken.begin(), taken.end(), room.begin());
        count = taken.size();
    }
    taken_ += count;
    if (records_ && count > 0) {
        cutter_.append({reinterpret_cast<char const*>(room.data()), count}, isUp_, history_);
    }
    return count;
}

}  // namespace Sim
