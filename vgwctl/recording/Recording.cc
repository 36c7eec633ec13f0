#include <vgwctl/recording/Recording.h>

#include <qor/core/Now.h>

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <bit>
#include <cerrno>
#include <cstring>

namespace Vgwctl {
namespace {

constexpr std::string_view magic = "QORR";
constexpr std::uint32_t version = 1;
constexpr std::uint8_t bytesKind = 1;
constexpr std::uint8_t connectionKind = 2;
// What no recorder writes: it takes what comes as it comes, a ring at most.
constexpr std::uint32_t longestChunk = 1U << 24;
constexpr std::uint32_t longestPath = 1U << 16;

template <class Number>
std::string inNetworkOrder(Number number) {
    std::string bytes;
    for (std::size_t n = sizeof number; n-- > 0;)
        bytes += static_cast<char>(static_cast<unsigned char>(number >> (8 * n)));
    return bytes;
}

template <class Number>
bool read(std::istream& in, Number& number) {
    std::array<char, sizeof number> bytes{};
    if (!in.read(bytes.data(), bytes.size())) return false;
    number = 0;
    for (char const byte : bytes)
        number = static_cast<Number>(number << 8 | static_cast<unsigned char>(byte));
    return true;
}

bool read(std::istream& in, std::string& bytes, std::uint32_t length) {
    bytes.resize(length);
    return static_cast<bool>(in.read(bytes.data(), length));
}

}  // namespace

Recorder::Recorder(std::string const& file, std::string const& path) : file_(file) {
    EndingHeldOff const heldOff;
    Descriptor const made(::open(file.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666));
    if (made.get() < 0 && errno == EEXIST) throw Failure(file + " exists already");
    if (made.get() < 0) throw Failure(file + ": " + std::strerror(errno));
    removed_.emplace(file);
    out_.open(file, std::ios::binary);
    out_ << magic << inNetworkOrder(version)
         << inNetworkOrder(static_cast<std::uint32_t>(path.size())) << path << std::flush;
    if (!out_) throw Failure(file + ": " + std::strerror(errno));
}

void Recorder::connected() { write(connectionKind, {}); }

void Recorder::heard(std::span<unsigned char const> bytes) {
    write(bytesKind, {reinterpret_cast<char const*>(bytes.data()), bytes.size()});
}

void Recorder::write(std::uint8_t kind, std::string_view bytes) {
    out_ << static_cast<char>(kind) << inNetworkOrder(std::bit_cast<std::uint64_t>(Qor::now()))
         << inNetworkOrder(static_cast<std::uint32_t>(bytes.size())) << bytes << std::flush;
    if (!out_ && fault_.empty()) fault_ = file_ + ": " + std::strerror(errno);
}

void Recorder::check() const {
    if (!fault_.empty()) throw Failure(fault_);
}

Recording::Recording(std::string const& file) : file_(file), in_(file, std::ios::binary) {
    if (!in_) throw Failure(file + ": " + std::strerror(errno));
    std::array<char, magic.size()> begin{};
    std::uint32_t found = 0;
    in_.read(begin.data(), begin.size());
    if (std::string_view(begin.data(), begin.size()) != magic || !read(in_, found))
        throw Failure(file + " is no recording");
    if (found != version)
        throw Failure(file + " is a recording of version " + std::to_string(found) + ", expected " +
                      std::to_string(version));
    std::uint32_t length = 0;
    if (!read(in_, length) || length > longestPath || !read(in_, path_, length))
        throw Failure(file + " is cut in its beginning");
}

std::optional<Recording::Chunk> Recording::next() {
    std::uint8_t kind = 0;
    std::uint64_t time = 0;
    Chunk chunk;
    if (!read(in_, kind)) return std::nullopt;
    if (kind != bytesKind && kind != connectionKind)
        throw Failure(file_ + " is damaged: it has a chunk of the unknown kind " +
                      std::to_string(kind));
    std::uint32_t length = 0;
    if (!read(in_, time) || !read(in_, length)) return std::nullopt;
    if (length > longestChunk)
        throw Failure(file_ + " is damaged: it has a chunk of " + std::to_string(length) +
                      " bytes");
    if (!read(in_, chunk.bytes, length)) return std::nullopt;
    chunk.isConnection = kind == connectionKind;
    chunk.time = std::bit_cast<double>(time);
    return chunk;
}

}  // namespace Vgwctl
