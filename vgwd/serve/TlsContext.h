#ifndef VGWD_SERVE_TLS_CONTEXT_H
#define VGWD_SERVE_TLS_CONTEXT_H

// What TLS connections are accepted with: our key and certificate, and the authority that has to
// have signed the peer's. TLS 1.2 at least, 1.3 where the peer has it. Connections that were made
// keep what they were made with when the files are read again.

#include <ovsdb/remote/TlsFiles.h>

#include <openssl/types.h>

#include <memory>
#include <string>

namespace Vgwd {

class TlsContext {
  public:
    /// Reads the files. Raises std::runtime_error, which names the file and what is wrong with it.
    explicit TlsContext(Ovsdb::TlsFiles const& files);

    SSL_CTX* get() const { return context_.get(); }

  private:
    struct Free {
        void operator()(SSL_CTX* context) const;
    };
    std::unique_ptr<SSL_CTX, Free> context_;
};

/// What the TLS library says of the last failure.
std::string tlsFailure();

}  // namespace Vgwd

#endif
