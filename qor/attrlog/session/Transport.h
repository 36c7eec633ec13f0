// What carries a session's bytes. The caller owns and polls it; it never blocks.
#ifndef QOR_ATTRLOG_SESSION_TRANSPORT_H
#define QOR_ATTRLOG_SESSION_TRANSPORT_H

#include <qor/core/Export.h>
#include <qor/core/String8.h>

#include <cstddef>
#include <span>
#include <string>
#include <string_view>

namespace Qor {

namespace NboAttrLog {

class QOR_EXPORT Transport {
  public:
    virtual ~Transport();
    // As many of the bytes as it takes now, 0 when it takes none. Where nobody reads them any more,
    // and there may still be something to read, they are taken and dropped.
    virtual std::size_t write(std::string_view bytes) = 0;
    // As many bytes as have come and fit, 0 when none have.
    virtual std::size_t read(std::span<unsigned char> room) = 0;
    // Why nothing goes over it any more; empty while something does.
    virtual String8 closed() const = 0;
};

// A stream socket or pipe that does not block, such as one end of socketpair(). The descriptor
// stays the caller's.
class QOR_EXPORT FdTransport final : public Transport {
  public:
    explicit FdTransport(int fd) noexcept : fd_(fd) {}
    std::size_t write(std::string_view bytes) override;
    std::size_t read(std::span<unsigned char> room) override;
    String8 closed() const override { return closed_; }

  private:
    std::size_t done(long count, char const* what);

    int const fd_;
    String8 closed_;
};

// One end of a pair in memory. What is written waits at the other end, as far as the room there
// allows. The ends must not outlive each other.
class QOR_EXPORT MemoryTransport final : public Transport {
  public:
    static void connect(MemoryTransport& one, MemoryTransport& other) noexcept;

    // Bytes that may wait here.
    void roomIs(std::size_t bytes) noexcept { room_ = bytes; }
    // From now on nothing goes over it; what waits is lost.
    void cut();

    std::size_t write(std::string_view bytes) override;
    std::size_t read(std::span<unsigned char> room) override;
    String8 closed() const override { return closed_; }

  private:
    MemoryTransport* other_ = nullptr;
    std::string waiting_;
    std::size_t taken_ = 0;  // of what stands in waiting_
    std::size_t room_ = ~std::size_t{0};
    String8 closed_;
};

}  // namespace NboAttrLog

}  // namespace Qor

#endif
