// A peer whose bytes come from a fuzzer: the input is a program, most of whose words make frames
// that are nearly right, so that what lies behind the framing is reached; some send anything.
#ifndef FUZZ_HOSTILE_PEER_H
#define FUZZ_HOSTILE_PEER_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

// Takes an input apart; past its end everything is 0.
class FuzzReader {
  public:
    explicit FuzzReader(std::string_view input) : rest_(input) {}
    bool isOver() const { return rest_.empty(); }
    std::uint8_t byte() { return rest_.empty() ? std::uint8_t{0} : take(); }
    std::uint64_t number(int width);
    std::string_view bytes(std::size_t most);

  private:
    std::uint8_t take() {
        auto const result = static_cast<std::uint8_t>(rest_.front());
        rest_.remove_prefix(1);
        return result;
    }
    std::string_view rest_;
};

// What the two ends do next.
enum class HostileStep { send, serve, change };

class HostilePeer {
  public:
    explicit HostilePeer(std::string_view input) : reader_(input) {}

    bool isOver() const { return reader_.isOver(); }
    // Reads one word of the program; what is to be sent is appended to `wire`.
    HostileStep next(std::string& wire);
    std::uint8_t byte() { return reader_.byte(); }

    // What a peer begins with.
    static std::string hello();

  private:
    void frame(std::string& wire);
    void link(std::string& wire);
    void question(std::string& wire);
    void described(std::string& payload);
    std::string argument();
    std::string path();
    void call(std::string& payload);
    void text(std::string& wire, bool isWhole);
    std::string payload();
    std::uint64_t entity();
    std::uint32_t attribute();

    FuzzReader reader_;
};

// A frame with its size, tokens and header.
std::string hostileFrame(std::uint8_t kind, std::uint64_t entity, std::uint32_t attribute,
                         std::uint8_t tag, std::uint32_t wordB, std::string_view payload);

#endif
