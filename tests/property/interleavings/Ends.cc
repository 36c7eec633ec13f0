#include "Ends.h"

namespace Ends {

namespace {

constexpr std::size_t sizeBytes = 4;
constexpr std::size_t idAt = 5;
constexpr std::size_t idBytes = 8;
constexpr char receipt = 3;
constexpr Qor::U64 oneFrame = 1;  // a turn goes on until so many bytes are written

std::size_t frameLength(std::string_view bytes) {
    std::size_t length = 0;
    for (std::size_t i = 0; i < sizeBytes; ++i) {
        length = length << 8U | static_cast<unsigned char>(bytes[i]);
    }
    return length + sizeBytes;
}

std::string bytesOf(Qor::EntityId const& id) {
    std::string bytes;
    for (int shift = 56; shift >= 0; shift -= 8) {
        bytes += static_cast<char>(static_cast<unsigned char>(id.value() >> shift));
    }
    return bytes;
}

// Its name is another's, of the same length.
void hideClass(std::string& frame, std::string_view name) {
    std::size_t const found = frame.find(name);
    if (found != std::string::npos) frame[found + name.size() - 1] = '?';
}

}  // namespace

std::string inWords(Step const& step) {
    constexpr char const* ends[] = {"the original", "the copy", "the copy's copy"};
    std::string const who = ends[step.end];
    std::string const side = step.isBehind ? " behind it" : " before it";
    switch (step.what) {
        case What::changes:
            return who + " makes change " + std::to_string(step.which);
        case What::takes:
            return who + " takes from the one" + side;
        case What::sends:
            return who + " sends to the one" + side;
        case What::shuts:
            return who + " has no room towards the one" + side;
        case What::opens:
            return who + " has room towards the one" + side;
        case What::cut:
            return "cut behind " + who;
    }
    return {};
}

Row::Row(Sort const& sort, Start const& start, End ends)
    : sort_(sort), start_(start), subject_(sort.make()), connections_(ends - 1) {
    if (start.originalHas) subject_->change(0, 0);
    if (start.copyHas) subject_->change(ends - 1, 0);
    for (End i = 0; i + 1 < ends; ++i) mount(i);
    if (start.isSettled) comeToRest();
}

template <class Visit>
void Row::forEachPlace(Visit const& visit) const {
    for (End i = 0; i < connections_.size() && connections_[i].peers; ++i) {
        visit(Place{i, false});
        visit(Place{i, true});
    }
}

void Row::mount(End number) {
    auto& connection = connections_[number];
    connection.peers = nullptr;
    connection.peers = std::make_unique<Peers>(4);
    for (Port& port : connection.ports) {
        port.coming.clear();
        port.isShut = false;
    }
    auto& peers = *connection.peers;
    peers.reader.copy = subject_->top(number + 1);
    auto const adapter = subject_->top(number)->qorNboAttrLogSaIs(peers.source.flags, 1,
                                                                  peers.source.outPtr(), nullptr);
    adapter->qorOnInit();
    peers.source.out().hasLiveBufferIs(sort_.waitsAt == 0);
    adapter->doSerializeOrphan();
    peers.source.out().hasLiveBufferIs(true);
    for (auto const* flow = adapter->StreamAdapter::flowOut();
         flow != nullptr && flow->attrId() < sort_.waitsAt;
         flow = adapter->StreamAdapter::flowOut()) {
        peers.source.demuxer->serveFlows(oneFrame);
    }
    connection.top = bytesOf(adapter->entityId());
    collect();
}

// What was written is on its way.
void Row::collect() {
    forEachPlace([&](Place from) {
        std::string const bytes = takeBytes(peer(from).out());
        for (std::string_view rest = bytes; !rest.empty();) {
            std::size_t const length = frameLength(rest);
            at(across(from)).coming.emplace_back(rest.substr(0, length));
            rest.remove_prefix(length);
        }
    });
}

bool Row::isForTop(Place place, std::string const& frame) const {
    return frame.compare(idAt, idBytes, connections_[place.connection].top) == 0;
}

bool Row::mayTake(Place place) const {
    for (auto const& frame : at(place).coming) {
        if (sort_.watchesChildren || isForTop(place, frame)) return true;
    }
    return false;
}

void Row::takeOne(Place place) {
    std::string frame = at(place).coming.front();
    at(place).coming.pop_front();
    if ((sort_.lackedBy >> endOf(place) & 1U) != 0) hideClass(frame, sort_.lacked);
    auto& demuxer = *peer(place).demuxer;
    for (std::string_view rest = frame; !rest.empty() && !demuxer.hasFailed();) {
        rest.remove_prefix(demuxer.in()->receive(rest));
        demuxer.serveFrames(~std::size_t{0});
    }
}

// One frame, and a receipt with what it stands in front of; of the children's what comes before one
// of the top's.
void Row::take(Place place) {
    for (bool goesOn = true; goesOn && !at(place).coming.empty();) {
        std::string const& next = at(place).coming.front();
        bool const isSingle = sort_.watchesChildren && next[sizeBytes] != receipt;
        goesOn = !isSingle && !isForTop(place, next);
        takeOne(place);
    }
}

void Row::shutIs(Place place, bool isShut) {
    peer(place).out().hasLiveBufferIs(!isShut);
    at(place).isShut = isShut;
    at(place).isUnused = isShut;
}

void Row::apply(Step const& step) {
    forEachPlace([&](Place place) {
        if (endOf(place) == step.end) at(place).isUnused = false;
    });
    Place const place = step.what == What::changes ? Place{} : placeOf(step);
    switch (step.what) {
        case What::changes:
            ++changes_[step.end];
            subject_->change(step.end, step.which);
            break;
        case What::takes:
            take(place);
            break;
        case What::sends:
            peer(place).demuxer->serveFlows(oneFrame);
            break;
        case What::shuts:
            ++at(place).shortages;
            shutIs(place, true);
            break;
        case What::opens:
            shutIs(place, false);
            break;
        case What::cut:
            ++cuts_;
            mount(place.connection);
            break;
    }
    collect();
}

void Row::addPossible(std::vector<Step>& steps, Place place, Limits const& limits) const {
    Port const& port = at(place);
    auto const add = [&](What what) { steps.push_back({endOf(place), what, !place.isCopys}); };
    if (mayTake(place)) add(What::takes);
    if (!port.isShut && peer(place).demuxer->owes()) add(What::sends);
    if (!port.isShut && port.shortages < limits.shortages) add(What::shuts);
    if (port.isShut && !port.isUnused) add(What::opens);
    if (cuts_ < limits.cuts && !place.isCopys) add(What::cut);
}

std::vector<Step> Row::possible(Limits const& limits) const {
    std::vector<Step> steps;
    for (End end = 0; end < limits.ends; ++end) {
        unsigned const kinds = changes_[end] < limits.changes ? sort_.changes : 0;
        for (unsigned which = 0; which < kinds; ++which) {
            steps.push_back({end, What::changes, false, which});
        }
    }
    forEachPlace([&](Place place) { addPossible(steps, place, limits); });
    return steps;
}

// Whether anything moved.
bool Row::moveAll() {
    bool hasMoved = false;
    forEachPlace([&](Place place) {
        peer(place).demuxer->serveFlows(~Qor::U64{0});
        collect();
        hasMoved = hasMoved || !at(place).coming.empty();
        while (!at(place).coming.empty()) takeOne(place);
        collect();
        hasMoved = hasMoved || !at(across(place)).coming.empty();
    });
    return hasMoved;
}

bool Row::comeToRest() {
    constexpr unsigned most = 200;
    for (unsigned rounds = 0; rounds < most; ++rounds) {
        if (!moveAll()) return true;
    }
    return false;
}

std::string Row::settle() {
    End const ends = static_cast<End>(connections_.size() + 1);
    std::vector<std::string> before;
    for (End end = 0; end < ends; ++end) before.push_back(subject_->picture(end));
    forEachPlace([&](Place place) { shutIs(place, false); });
    if (!comeToRest()) return "it never ends";
    for (End end = 0; end < ends; ++end) subject_->tidyUp(end);
    if (!comeToRest()) return "it never ends";
    std::string const found = fault();
    return found.empty() ? lost(before) : found;
}

std::string Row::fault() const {
    std::string words;
    for (End i = 0; i < connections_.size(); ++i) {
        auto const& source = peer({i, false});
        auto const& reader = peer({i, true});
        words += source.failure.view();
        words += reader.failure.view();
        std::string const here = subject_->picture(i);
        std::string const there = subject_->picture(i + 1);
        if (here != there) {
            words += "end " + std::to_string(i) + " holds " + here + ", its copy " + there + "; ";
        }
        if (source.demuxer->flows() + reader.demuxer->flows() != 0) {
            words += "something stays owed; ";
        }
        bool const isUneven = source.demuxer->adapters() != reader.demuxer->adapters();
        if (isUneven && !sort_.keepsGone) words += "one end has more adapters; ";
    }
    return words;
}

// What one end alone has written is what all hold. What a copy wrote while it was not mounted is
// none of it.
std::string Row::lost(std::vector<std::string> const& before) const {
    std::string const result = subject_->picture(0);
    for (End end = 0; end < before.size(); ++end) {
        bool isAlone = end == 0 || (start_.isSettled && cuts_ == 0);
        for (End other = 0; other < before.size(); ++other) {
            isAlone = isAlone && (other == end || changes_[other] == 0);
        }
        std::string const wanted = before[end] == lackedAbove ? nothing : before[end];
        if (isAlone && result != wanted) return "a write is lost: all hold " + result;
    }
    return {};
}

}  // namespace Ends
