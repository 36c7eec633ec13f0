// Records of mixed kinds, as our entities send them: which attribute each is about and what it
// says. The same 4000 in the same order for every column, since the order counts: whoever writes or
// reads them branches by their kind, and 4000 are more than the processor learns by heart.
#ifndef BENCH_ATTRLOG_MIXED_MIXTURE_H
#define BENCH_ATTRLOG_MIXED_MIXTURE_H

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace Bench {

/// The attributes of the mixture. Their shares stand in Mixture.cc.
enum class What : std::uint8_t {
    none,  // no attribute of the mixture
    counter,
    mac,
    address,
    rowText,
    otherRowText,
    shortText,
    tunnelKey,
    port,
    flag,
    state,
    portRow,
    portRowGone,
    pair,
    pairGone,
    binding,
    word,
    reference,
};
inline constexpr std::size_t whats = 18;

/// What a record holds, whatever it is called.
enum class Shape : std::uint8_t {
    flag,
    number16,
    number32,  // enumerations and IPv4 addresses too
    number64,
    mac,
    text,
    rowKey,
    rowKeyGone,
    pairKey,
    pairKeyGone,
    numberToText,
    textToText,
    addressToEntity,
};

/// One record. Each shape uses some of it.
struct MixedRecord {
    What what;
    Shape shape;
    std::uint8_t row;     // the entity among those of its class
    std::uint8_t member;  // which of its members, where it is keyed
    std::int32_t attribute;
    std::uint64_t entity;
    std::uint64_t number;  // the value; of a pair the MAC address, of a reference the target
    std::uint32_t second;  // the key; of a pair the VNI
    std::string_view key;
    std::string_view text;
};

/// Where what was read goes. The sums tell whether all was read.
struct Taken {
    std::uint64_t numbers = 0;
    std::uint64_t texts = 0;

    void number(std::uint64_t value) noexcept { numbers += value; }
    void text(std::string_view value) noexcept {
        texts += value.size() + static_cast<unsigned char>(value[value.size() / 2]);
    }
    void take(MixedRecord const& record) noexcept;
    friend bool operator==(Taken const&, Taken const&) noexcept = default;
};

class Mixture {
  public:
    static constexpr std::size_t size = 4000;
    static constexpr std::size_t rows = 64;    // entities of each class
    static constexpr std::size_t members = 4;  // of each collection of each
    enum Class : std::uint8_t {
        bindingStats,
        remoteMac,
        logicalSwitch,
        config,
        sessionStatus,
        physicalSwitch,
        locator,
        physicalPort,
        database,
        classes,
    };

    Mixture();

    std::vector<MixedRecord> const& records() const noexcept { return records_; }
    /// What a reader takes of all of them.
    Taken const& all() const noexcept { return all_; }

    /// The row of a UUID text: of those that stand in collections, and of those that do not.
    std::string const& uuid(std::size_t row, std::size_t member = 0) const {
        return uuids_[row * members + member];
    }
    std::string const& missing(std::size_t row, std::size_t member) const {
        return missing_[row * members + member];
    }
    std::string const& word(std::size_t row) const { return words_[row]; }
    static std::string_view option(std::size_t member);
    static std::uint64_t macOf(std::size_t row, std::size_t member) {
        return 0x5e005300 + row % 64 * members + member;
    }

    /// Ids as a connection draws them.
    static constexpr std::uint64_t entityId(Class of, std::size_t row) {
        return 3 + 2 * (of * rows + row);
    }
    /// What the attribute of an entity is, as each reader has to find out.
    What whatOf(std::uint64_t entity, std::int32_t attribute) const noexcept {
        auto const of = (entity - 3) / 2 / rows;
        auto const index = static_cast<std::uint32_t>(attribute < 0 ? -attribute : attribute) - 258;
        if (of >= classes || index >= ids) return What::none;
        What const what = whats_[of][index];
        return attribute < 0 ? goneOf(what) : what;
    }

  private:
    static constexpr std::size_t ids = 134;

    static What goneOf(What what) noexcept {
        if (what == What::portRow) return What::portRowGone;
        return what == What::pair ? What::pairGone : What::none;
    }
    void fill(MixedRecord& record) const;
    void fillMember(MixedRecord& record) const;

    std::vector<std::string> uuids_;
    std::vector<std::string> missing_;
    std::vector<std::string> words_;
    std::array<std::array<What, ids>, classes> whats_{};
    std::vector<MixedRecord> records_;
    Taken all_;
};

inline constexpr char const* writeMixedRow = "write a record, mixed kinds";
inline constexpr char const* sendMixedRow = "handler to record in the ring, mixed kinds";
inline constexpr char const* readMixedRow = "read and dispatch a record, mixed kinds";

inline void Taken::take(MixedRecord const& record) noexcept {
    number(record.number);
    number(record.second);
    if (!record.key.empty()) text(record.key);
    if (!record.text.empty()) text(record.text);
}

void addMixedFloor();
void addMixedOurs();

}  // namespace Bench

#endif
