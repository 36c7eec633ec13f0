#ifndef VGWD_SERVE_PEER_TRANSPORT_H
#define VGWD_SERVE_PEER_TRANSPORT_H

// A session's bytes over a connected socket, plain or under TLS. The socket is the caller's, does
// not block, and is waited for by the caller: for reading always, for writing when isBlocked().

#include <qor/attrlog/session/Transport.h>

#include <openssl/types.h>

#include <memory>
#include <string>

namespace Vgwd {

class PeerTransport : public Qor::NboAttrLog::Transport {
  public:
    /// Whether the last write was not taken for want of room.
    bool isBlocked() const { return isBlocked_; }
    /// Nothing more is sent; the peer is told so as far as the protocol has a way.
    virtual void finish() {}
    Qor::String8 closed() const override { return closed_; }

  protected:
    /// What a system call of that name came to.
    std::size_t moved(long count, char const* what);
    void closedIs(std::string const& reason) { closed_ = std::string_view(reason); }
    void isBlockedIs(bool isBlocked) { isBlocked_ = isBlocked; }

  private:
    Qor::String8 closed_;
    bool isBlocked_ = false;
};

class SocketPeerTransport final : public PeerTransport {
  public:
    explicit SocketPeerTransport(int socket) : socket_(socket) {}
    std::size_t write(std::string_view bytes) override;
    std::size_t read(std::span<unsigned char> room) override;

  private:
    int const socket_;
    bool isDeaf_ = false;  // the peer reads no more
};

/// Our end of TLS. To be shaken hands with first.
class TlsPeerTransport final : public PeerTransport {
  public:
    TlsPeerTransport(int socket, SSL_CTX* context);

    /// Whether hands are shaken; if not, closed() says why, or wantsWrite() what is waited for.
    bool shakeHands();
    bool wantsWrite() const { return wantsWrite_; }
    /// Of the peer's certificate; empty without one.
    std::string commonName() const;
    void finish() override;

    std::size_t write(std::string_view bytes) override;
    std::size_t read(std::span<unsigned char> room) override;

  private:
    struct Free {
        void operator()(SSL* ssl) const;
    };
    /// What follows from a call that did not move any byte.
    void handleOutcome(int result, char const* what);

    std::unique_ptr<SSL, Free> ssl_;
    bool wantsWrite_ = false;
};

}  // namespace Vgwd

#endif
