// The same frames by hand: those bytes into a vector that is long enough, and out of it with all
// that the format asks to be checked.
#include <qor/attrlog/NetworkOrder.h>

#include <cstring>

#include "../../Row.h"
#include "Mixture.h"

namespace Bench {

namespace {

using Bytes = unsigned char*;
using Read = unsigned char const*;

template <class Number>
Bytes put(Bytes at, Number number) {
    Qor::storeNetworkOrder(at, number);
    return at + sizeof number;
}

Bytes putText(Bytes at, std::string_view text) {
    std::memcpy(at, text.data(), text.size());
    return at + text.size();
}

Bytes putMac(Bytes at, std::uint64_t mac) {
    return put(put(at, static_cast<std::uint16_t>(mac >> 32)), static_cast<std::uint32_t>(mac));
}

Bytes putKey(Bytes at, std::string_view key) {
    return putText(put(at, static_cast<std::uint32_t>(key.size())), key);
}

Bytes putMember(Bytes at, MixedRecord const& record) {
    switch (record.shape) {
        case Shape::rowKey:
            return put(putKey(at, record.key), std::uint8_t{1});
        case Shape::rowKeyGone:
            return putKey(at, record.key);
        case Shape::pairKey:
            return put(put(putMac(at, record.number), record.second), std::uint8_t{1});
        case Shape::pairKeyGone:
            return put(putMac(at, record.number), record.second);
        case Shape::numberToText:
            return putText(put(at, static_cast<std::uint16_t>(record.second)), record.text);
        case Shape::textToText:
            return putText(putKey(at, record.key), record.text);
        default:
            return put(put(at, record.second), record.number);
    }
}

inline Bytes putPayload(Bytes at, MixedRecord const& record) {
    switch (record.shape) {
        case Shape::flag:
            return put(at, static_cast<std::uint8_t>(record.number));
        case Shape::number16:
            return put(at, static_cast<std::uint16_t>(record.number));
        case Shape::number32:
            return put(at, static_cast<std::uint32_t>(record.number));
        case Shape::number64:
            return put(at, record.number);
        case Shape::mac:
            return putMac(at, record.number);
        case Shape::text:
            return putText(at, record.text);
        default:
            return putMember(at, record);
    }
}

constexpr std::size_t overhead = 29;
constexpr std::size_t longest = 160;

Bytes putFrame(Bytes frame, MixedRecord const& record) {
    frame[4] = 0;
    Qor::storeNetworkOrder(frame + 5, record.entity);
    Qor::storeNetworkOrder(frame + 13, static_cast<std::uint32_t>(record.attribute));
    frame[17] = 1;
    Qor::storeNetworkOrder(frame + 18, std::uint64_t{0});
    frame[26] = 0;
    frame[27] = 1;
    Bytes const end = putPayload(frame + 28, record);
    *end = 3;
    Qor::storeNetworkOrder(frame, static_cast<std::uint32_t>(end - frame - 3));
    return end + 1;
}

void write(benchmark::State& state) {
    Mixture const mixture;
    std::vector<unsigned char> ring(std::size_t{8} * 49152);
    Bytes at = ring.data();
    for (auto _ : state) {
        for (MixedRecord const& record : mixture.records()) {
            if (ring.data() + ring.size() - at < static_cast<std::ptrdiff_t>(longest)) {
                at = ring.data();
            }
            at = putFrame(at, record);
        }
        benchmark::ClobberMemory();
    }
    tellOperations(state, Mixture::size);
}

template <class Number>
Number next(Read& at) {
    auto const number = Qor::loadNetworkOrder<Number>(at);
    at += sizeof number;
    return number;
}

std::uint64_t nextMac(Read& at) {
    auto const high = std::uint64_t{next<std::uint16_t>(at)};
    return high << 32 | next<std::uint32_t>(at);
}

std::string_view textAt(Read at, std::size_t size) {
    return {reinterpret_cast<char const*>(at), size};
}

// False of a key that goes past the payload.
bool takeKey(Read& at, Read end, Taken& taken) {
    auto const size = next<std::uint32_t>(at);
    if (size > static_cast<std::size_t>(end - at)) return false;
    taken.text(textAt(at, size));
    at += size;
    return true;
}

void takeText(Read at, Read end, Taken& taken) {
    taken.text(textAt(at, static_cast<std::size_t>(end - at)));
}

void takePair(Read& at, Taken& taken) {
    taken.number(nextMac(at));
    taken.number(next<std::uint32_t>(at));
}

// The least that a payload holds, by what it is.
constexpr std::uint8_t least[whats] = {0, 8, 6, 4, 0, 0, 0, 4, 2, 1, 4, 5, 4, 11, 10, 2, 4, 12};

bool takeMember(What what, Read at, Read end, Taken& taken) {
    switch (what) {
        case What::portRow:
        case What::portRowGone:
            return takeKey(at, end, taken);
        case What::pair:
        case What::pairGone:
            takePair(at, taken);
            return true;
        case What::binding:
            taken.number(next<std::uint16_t>(at));
            takeText(at, end, taken);
            return true;
        case What::word:
            if (!takeKey(at, end, taken)) return false;
            takeText(at, end, taken);
            return true;
        case What::reference:
            taken.number(next<std::uint32_t>(at));
            taken.number(next<std::uint64_t>(at));
            return true;
        default:
            return false;
    }
}

inline bool takePayload(What what, Read at, Read end, Taken& taken) {
    if (end - at < least[static_cast<std::size_t>(what)]) return false;
    switch (what) {
        case What::counter:
            taken.number(next<std::uint64_t>(at));
            return true;
        case What::mac:
            taken.number(nextMac(at));
            return true;
        case What::address:
        case What::tunnelKey:
        case What::state:
            taken.number(next<std::uint32_t>(at));
            return true;
        case What::rowText:
        case What::otherRowText:
        case What::shortText:
            takeText(at, end, taken);
            return true;
        case What::port:
            taken.number(next<std::uint16_t>(at));
            return true;
        case What::flag:
            taken.number(*at);
            return true;
        default:
            return takeMember(what, at, end, taken);
    }
}

// The next frame; null of one that is not as it should be.
Read takeFrame(Read frame, Read end, Mixture const& mixture, Taken& taken) {
    auto const size = Qor::loadNetworkOrder<std::uint32_t>(frame);
    if (size < overhead - 4 || size > static_cast<std::size_t>(end - frame) - 4) return nullptr;
    if (frame[4] != 0 || frame[27] != 1 || frame[size + 3] != 3) return nullptr;
    auto const entity = Qor::loadNetworkOrder<std::uint64_t>(frame + 5);
    auto const id = static_cast<std::int32_t>(Qor::loadNetworkOrder<std::uint32_t>(frame + 13));
    What const what = mixture.whatOf(entity, id);
    return takePayload(what, frame + 28, frame + size + 3, taken) ? frame + size + 4 : nullptr;
}

void read(benchmark::State& state) {
    Mixture const mixture;
    std::vector<unsigned char> bytes(longest * Mixture::size);
    Bytes filled = bytes.data();
    for (MixedRecord const& record : mixture.records()) filled = putFrame(filled, record);
    Taken taken;
    for (auto _ : state) {
        taken = Taken();
        for (Read frame = bytes.data(); frame != filled;) {
            frame = takeFrame(frame, filled, mixture, taken);
            if (frame == nullptr) return state.SkipWithError("a frame is not as it was written");
        }
        benchmark::DoNotOptimize(taken);
    }
    if (taken != mixture.all()) state.SkipWithError("not every record was read");
    tellOperations(state, Mixture::size);
}

}  // namespace

void addMixedFloor() {
    cell(writeMixedRow, "floor", write);
    cell(readMixedRow, "floor", read);
}

}  // namespace Bench
