#ifndef OVSDB_REMOTE_TLS_FILES_H
#define OVSDB_REMOTE_TLS_FILES_H

#include <string>

namespace Ovsdb {

// The PEM files of an ssl: remote: our private key, our certificate, and the authority that signed
// the server's. The server wants a client certificate, so all three are needed. As with the OVSDB
// tools the server's chain is verified and its host name is not: switches are known by their
// certificate, not by a name.
struct TlsFiles {
    std::string privateKey;
    std::string certificate;
    std::string authority;

    bool complete() const {
        return !privateKey.empty() && !certificate.empty() && !authority.empty();
    }
};

}  // namespace Ovsdb

#endif
