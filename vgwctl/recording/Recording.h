#ifndef VGWCTL_RECORDING_RECORDING_H
#define VGWCTL_RECORDING_RECORDING_H

// A recording: the attribute log as it came from an agent, with the times at which it came.
//
// The file begins with "QORR", the version (u32) and the path that was mounted (length u32, bytes).
// Then come chunks: kind u8, time f64 (seconds since 1970), length u32, bytes; all numbers in
// network byte order. Kind 1 is bytes, kind 2 the beginning of a connection, without bytes. A file
// whose last chunk is cut, because the recorder was killed, is good up to there; one with a chunk
// that no recorder writes is not.

#include <vgwctl/link/Connection.h>
#include <vgwctl/recording/RemovedAtEnd.h>

#include <cstdint>
#include <fstream>
#include <optional>
#include <string>

namespace Vgwctl {

class Recorder final : public ByteTap {
  public:
    /// Raises Failure when the file exists already or can't be written.
    Recorder(std::string const& file, std::string const& path);
    /// From now on there is something in the file that is worth it: it stays when this ends, or a
    /// signal ends the program.
    void keep() { removed_->stay(); }

    void connected() override;
    void heard(std::span<unsigned char const> bytes) override;
    /// Raises Failure when something could not be written. From then on nothing is.
    void check() const;

  private:
    void write(std::uint8_t kind, std::string_view bytes);

    std::string const file_;
    std::ofstream out_;
    std::string fault_;
    std::optional<RemovedAtEnd> removed_;
};

class Recording {
  public:
    struct Chunk {
        bool isConnection = false;
        double time = 0;
        std::string bytes;
    };

    /// Raises Failure for a file that is none.
    explicit Recording(std::string const& file);

    std::string const& path() const { return path_; }
    /// None at the end.
    std::optional<Chunk> next();

  private:
    std::string file_;
    std::ifstream in_;
    std::string path_;
};

}  // namespace Vgwctl

#endif
