// Ends in a row, each the copy of the one before it, over the real demuxers and adapters; and what
// can happen next: a change at one of them, a frame that arrives, a turn of its flows, a shortage
// of room or its end, and a cut, after which the copy is mounted again.
#ifndef TESTS_PROPERTY_INTERLEAVINGS_ENDS_H
#define TESTS_PROPERTY_INTERLEAVINGS_ENDS_H

#include "Subject.h"

#include "../../unit/attrlog/Peers.h"

#include <array>
#include <deque>

namespace Ends {

enum class What : std::uint8_t { changes, takes, sends, shuts, opens, cut };

// What an end does; but for changes, on the connection to the one before it or behind it.
struct Step {
    End end = 0;
    What what = What::changes;
    bool isBehind = false;
    unsigned which = 0;  // of the changes
    bool operator==(Step const&) const = default;
};

std::string inWords(Step const& step);

// How much of each there is in one schedule.
struct Limits {
    End ends = 2;
    unsigned steps = 6;
    unsigned changes = 3;    // at each end
    unsigned shortages = 1;  // at each end of each connection
    unsigned cuts = 0;
};

// How a schedule begins.
struct Start {
    bool originalHas = false;  // the first change is made at the original before the mount
    bool copyHas = false;      // and at the last copy
    bool isSettled = true;     // the mounts are over
};

class Row {
  public:
    Row(Sort const& sort, Start const& start, End ends);

    void apply(Step const& step);
    std::vector<Step> possible(Limits const& limits) const;
    // Lets everything arrive. What is wrong then; empty if nothing is.
    std::string settle();

  private:
    // One end of a connection.
    struct Port {
        std::deque<std::string> coming;  // frames on their way to it
        unsigned shortages = 0;
        bool isShut = false;
        bool isUnused = false;  // nothing has happened here since it was shut
    };
    struct Connection {
        std::unique_ptr<Peers> peers;
        std::array<Port, 2> ports;
        std::string top;  // the id of the tree's top, as it stands in a frame
    };
    // A port's place: the connection, and whether it is that of the copy.
    struct Place {
        End connection;
        bool isCopys;
    };

    static Place placeOf(Step const& step) {
        return {step.isBehind ? step.end : step.end - 1, !step.isBehind};
    }
    static End endOf(Place place) { return place.connection + (place.isCopys ? 1 : 0); }
    static Place across(Place place) { return {place.connection, !place.isCopys}; }
    Port& at(Place place) { return connections_[place.connection].ports[place.isCopys ? 1 : 0]; }
    Port const& at(Place place) const {
        return connections_[place.connection].ports[place.isCopys ? 1 : 0];
    }
    Peer& peer(Place place) const {
        auto const& peers = *connections_[place.connection].peers;
        return const_cast<Peer&>(place.isCopys ? peers.reader : peers.source);
    }
    template <class Visit>
    void forEachPlace(Visit const& visit) const;

    void mount(End connection);
    void addPossible(std::vector<Step>& steps, Place place, Limits const& limits) const;
    bool isForTop(Place place, std::string const& frame) const;
    bool mayTake(Place place) const;
    void collect();
    void takeOne(Place place);
    void take(Place place);
    void shutIs(Place place, bool isShut);
    bool moveAll();
    bool comeToRest();
    std::string fault() const;
    std::string lost(std::vector<std::string> const& before) const;

    Sort const& sort_;
    Start const start_;
    std::unique_ptr<Subject> const subject_;
    std::vector<Connection> connections_;
    std::array<unsigned, greatestEnds> changes_{};  // by end
    unsigned cuts_ = 0;
};

}  // namespace Ends

#endif
