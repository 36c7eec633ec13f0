// Scopes that narrow a stream and put the old width back at their end. They hold the stream.
#ifndef QOR_ATTRLOG_CONNECTIONSIZEANCHOR_H
#define QOR_ATTRLOG_CONNECTIONSIZEANCHOR_H

#include <qor/attrlog/ConnectionIn.h>
#include <qor/attrlog/ConnectionOut.h>
#include <qor/core/Ptr.h>

#include <algorithm>

namespace Qor {

// Reading ends `bytes` after the read position, and never later than it would without this scope.
class ConnectionInSizeAnchor {
  public:
    ConnectionInSizeAnchor(Ptr<Connection::In> const& in, unsigned int bytes)
        : in_(in), old_(in->limit()) {
        in_->limitIs(std::min(old_, in_->readPosition() + bytes));
    }
    ~ConnectionInSizeAnchor() { in_->limitIs(old_); }
    ConnectionInSizeAnchor(ConnectionInSizeAnchor const&) = delete;
    ConnectionInSizeAnchor& operator=(ConnectionInSizeAnchor const&) = delete;

  private:
    Ptr<Connection::In> in_;
    U64 old_;
};

// A chunk of a text takes at most `bytes`.
class ConnectionOutSizeAnchor {
  public:
    ConnectionOutSizeAnchor(Ptr<Connection::Out> const& out, unsigned int bytes)
        : out_(out), old_(out->chunkLimit()) {
        out_->chunkLimitIs(bytes);
    }
    ~ConnectionOutSizeAnchor() { out_->chunkLimitIs(old_); }
    ConnectionOutSizeAnchor(ConnectionOutSizeAnchor const&) = delete;
    ConnectionOutSizeAnchor& operator=(ConnectionOutSizeAnchor const&) = delete;

  private:
    Ptr<Connection::Out> out_;
    U32 old_;
};

}  // namespace Qor

#endif
