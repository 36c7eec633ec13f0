// A transport that records what is read from it, frame by frame, decoded here by the
// documented format and nothing of the library's; and the claims that hold for what a link carried.
#ifndef TESTS_SIMULATION_TAP_H
#define TESTS_SIMULATION_TAP_H

#include "Carrier.h"
#include "Knowledge.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace Sim {

// One frame that went over a link. Of the payload the first bytes are kept.
struct Sent {
    bool isUp = false;  // towards the end that accepted the connection
    unsigned kind = 0;  // 0 a record, 1 a marker, 2 link control, 3 a receipt
    bool hasMore = false;
    std::uint64_t entity = 0;
    std::int32_t attribute = 0;
    std::uint32_t wordB = 0;
    std::string payload;
};

// Cuts a stream into frames.
class FrameCutter {
  public:
    void append(std::string_view bytes, bool isUp, std::vector<Sent>& history);

  private:
    std::string waiting_;
};

// The id that an announcement gives to an entity; 0 of anything else.
std::uint64_t announcedBy(Sent const& sent);

// A frame in words.
std::string inWords(Sent const& sent);

// Every record and marker is for an entity that was announced before on this link. The first
// violation in words; empty if there is none.
std::string announcedFirst(std::vector<Sent> const& history);
// Snapshots end after they have begun, and a text's chunks of one value are not torn apart.
std::string wellFormed(std::vector<Sent> const& history);

// Lets a stream through but for the descriptions of classes that its reader is to learn late, where
// it asked for all: as if the peer had come to know them since.
class DescriptionSieve {
  public:
    explicit DescriptionSieve(Knowledge reader) : reader_(reader) {}

    void append(std::string_view bytes) { waiting_ += bytes; }
    // Of what is whole, at most so much.
    std::string take(std::size_t most);
    std::size_t waiting() const { return waiting_.size() + passed_.size(); }
    // Bytes that were kept back since the last call.
    std::size_t keptBack() { return std::exchange(keptBack_, 0); }

  private:
    void sift();
    void pass(std::string frame);

    Knowledge const reader_;
    std::string waiting_;
    std::string passed_;
    std::size_t keptBack_ = 0;
    std::uint32_t classes_ = 0;  // that were kept back
};

class Tap final : public Qor::NboAttrLog::Transport {
  public:
    Tap(std::vector<Sent>& history, bool isUp) : history_(history), isUp_(isUp) {}

    // What it taps; before anything goes over it.
    void carrierIs(std::unique_ptr<Carrier> carrier) { carrier_ = std::move(carrier); }
    Carrier& carrier() { return *carrier_; }
    void recordsIs(bool records) { records_ = records; }
    // What comes out of here has classes by the names that its reader knows them by.
    void exchangeIs(NameExchange const& exchange) { names_ = exchange; }
    // The reader learns late.
    void learnsLateIs(Knowledge reader) { sieve_.emplace(reader); }

    // Bytes that came out of here, and that went in.
    std::uint64_t taken() const { return taken_; }
    std::uint64_t put() const { return put_; }

    std::size_t write(std::string_view bytes) override;
    std::size_t read(std::span<unsigned char> room) override;
    Qor::String8 closed() const override { return carrier_->closed(); }

  private:
    std::string next(std::size_t most);
    std::string nextSifted(std::size_t most);
    std::string nextExchanged(std::size_t most);

    std::unique_ptr<Carrier> carrier_;
    NameExchange names_;
    std::optional<DescriptionSieve> sieve_;
    FrameCutter cutter_;
    std::vector<Sent>& history_;
    bool const isUp_;
    bool records_ = true;
    std::uint64_t taken_ = 0;
    std::uint64_t put_ = 0;
};

}  // namespace Sim

#endif
