#ifndef VGWCTL_LINK_TLS_TRANSPORT_H
#define VGWCTL_LINK_TLS_TRANSPORT_H

// A session's bytes over TLS (RFC 8446; 1.2 is taken too) on a socket that does not block. Both
// ends show certificates; the peer's chain is verified, its host name is not, as with the OVSDB
// tools.

#include <qor/attrlog/session/Transport.h>

#include <ovsdb/remote/TlsFiles.h>

#include <memory>

struct ssl_st;
struct ssl_ctx_st;

namespace Vgwctl {

class TlsTransport final : public Qor::NboAttrLog::Transport {
  public:
    /// The descriptor stays the caller's. Raises Failure for a file that can't be used.
    TlsTransport(int fd, Ovsdb::TlsFiles const& files);
    ~TlsTransport() override;

    std::size_t write(std::string_view bytes) override;
    std::size_t read(std::span<unsigned char> room) override;
    Qor::String8 closed() const override { return closed_; }
    /// Whether the last write or read can go on only once the socket takes bytes. Until the hands
    /// are shaken what is written mostly waits for bytes of the peer's.
    bool wantsWrite() const { return isReadBlocked_ || isWriteBlocked_; }

  private:
    std::size_t done(int result, std::size_t count, bool& isBlocked);

    std::unique_ptr<ssl_ctx_st, void (*)(ssl_ctx_st*)> context_;
    std::unique_ptr<ssl_st, void (*)(ssl_st*)> tls_;
    Qor::String8 closed_;
    // By a socket that takes no bytes.
    bool isReadBlocked_ = false;
    bool isWriteBlocked_ = false;
};

}  // namespace Vgwctl

#endif
