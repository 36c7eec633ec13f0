// What a transport makes of each outcome of the system calls below it.
#include "FailingCalls.h"

#include <qor/attrlog/session/Transport.h>
#include <vgwd/serve/PeerTransport.h>

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>
#include <array>
#include <cerrno>
#include <cstring>
#include <string>

namespace {

using Calls::Call;
using Qor::NboAttrLog::FdTransport;
using Vgwd::SocketPeerTransport;

constexpr char const* left = "the peer has closed the connection";

std::array<int, 2> connected() {
    std::array<int, 2> ends{};
    EXPECT_EQ(::socketpair(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK, 0, ends.data()), 0);
    return ends;
}

template <class Transport>
class TransportCalls : public testing::Test {
  protected:
    static constexpr bool isFd = std::is_same_v<Transport, FdTransport>;
    static constexpr Call reading = isFd ? Call::read : Call::recv;

    ~TransportCalls() override {
        Calls::failNone();
        for (int const end : ends) ::close(end);
    }
    std::string closed() const { return std::string(transport.closed().view()); }
    std::string arrived() {
        std::string text(100, '\0');
        auto const count = ::read(ends[1], text.data(), text.size());
        text.resize(count > 0 ? static_cast<std::size_t>(count) : 0);
        return text;
    }
    std::string read() {
        std::array<unsigned char, 100> room;
        std::size_t const count = transport.read(room);
        return {room.begin(), room.begin() + static_cast<std::ptrdiff_t>(count)};
    }
    // In the words of a call's failure; where the peer has simply gone, vgwd says that.
    static std::string reason(int error, char const* fdsCall, char const* socketsCall) {
        if (!isFd && error == ECONNRESET) return left;
        return std::string(isFd ? fdsCall : socketsCall) + ": " + std::strerror(error);
    }

    std::array<int, 2> const ends = connected();
    Transport transport{ends[0]};
};

using Kinds = testing::Types<FdTransport, SocketPeerTransport>;
TYPED_TEST_SUITE(TransportCalls, Kinds);

TYPED_TEST(TransportCalls, AWriteThatIsForLaterTakesNothingAndGoesOn) {
    for (int const error : {EAGAIN, EWOULDBLOCK, EINTR}) {
        Calls::failAt({Call::send, error});
        EXPECT_EQ(this->transport.write("abc"), 0U);
        ASSERT_TRUE(Calls::hasFailed());
        EXPECT_EQ(this->closed(), "");
        EXPECT_EQ(this->transport.write("abc"), 3U);
        EXPECT_EQ(this->arrived(), "abc");
    }
}

TYPED_TEST(TransportCalls, AShortWriteSaysHowMuchWasTaken) {
    Calls::failAt({Call::send, Calls::oneByte});
    EXPECT_EQ(this->transport.write("abc"), 1U);
    EXPECT_EQ(this->transport.write("bc"), 2U);
    EXPECT_EQ(this->arrived(), "abc");
    EXPECT_EQ(this->closed(), "");
}

TYPED_TEST(TransportCalls, AWriteThatFailsClosesItWithItsReason) {
    for (int const error : {ECONNRESET, ETIMEDOUT, EIO, EBADF, ENOBUFS}) {
        TypeParam other(this->ends[0]);
        Calls::failAt({Call::send, error, 1, 2});
        EXPECT_EQ(other.write("abc"), 0U);
        EXPECT_EQ(other.closed(), this->reason(error, "write", "send"));
        EXPECT_EQ(other.write("abc"), 0U);
        EXPECT_EQ(Calls::made(), 1U) << "a closed one is written to";
    }
}

TYPED_TEST(TransportCalls, WhoReadsNoMoreMayStillHaveSaidSomething) {
    ASSERT_EQ(::write(this->ends[1], "bye", 3), 3);
    Calls::failAt({Call::send, EPIPE, 1, 9});
    EXPECT_EQ(this->transport.write("abc"), 3U);
    EXPECT_EQ(this->transport.write("def"), 3U);
    EXPECT_EQ(this->closed(), "");
    EXPECT_EQ(this->read(), "bye");
    EXPECT_EQ(this->read(), "");
    EXPECT_EQ(this->closed(), left);
}

TYPED_TEST(TransportCalls, AReadThatIsForLaterGivesNothingAndGoesOn) {
    ASSERT_EQ(::write(this->ends[1], "abc", 3), 3);
    for (int const error : {EAGAIN, EWOULDBLOCK, EINTR}) {
        Calls::failAt({this->reading, error});
        EXPECT_EQ(this->read(), "");
        ASSERT_TRUE(Calls::hasFailed());
        EXPECT_EQ(this->closed(), "");
    }
    EXPECT_EQ(this->read(), "abc");
}

TYPED_TEST(TransportCalls, AReadThatFailsClosesItWithItsReason) {
    for (int const error : {ECONNRESET, ETIMEDOUT, EIO, EBADF}) {
        TypeParam other(this->ends[0]);
        std::array<unsigned char, 10> room{};
        Calls::failAt({this->reading, error, 1, 2});
        EXPECT_EQ(other.read(room), 0U);
        EXPECT_EQ(other.closed(), this->reason(error, "read", "recv"));
        EXPECT_EQ(other.read(room), 0U);
        EXPECT_EQ(other.write("abc"), 0U);
        EXPECT_EQ(Calls::made(), 1U) << "a closed one is read";
    }
}

TYPED_TEST(TransportCalls, AnEmptyRoomOrTextIsNoCall) {
    Calls::failAt({Call::send, EIO});
    EXPECT_EQ(this->transport.write(""), 0U);
    Calls::failAt({this->reading, EIO});
    EXPECT_EQ(this->transport.read({}), 0U);
    EXPECT_EQ(Calls::made(), 0U);
    EXPECT_EQ(this->closed(), "");
}

// It is waited for until there is room.
TEST(SocketPeerTransportCalls, AWriteThatWasNotTakenWholeIsBlocked) {
    std::array<int, 2> const ends = connected();
    SocketPeerTransport transport(ends[0]);
    for (int const error : {EAGAIN, EINTR, Calls::oneByte}) {
        Calls::failAt({Call::send, error});
        transport.write("abc");
        EXPECT_TRUE(transport.isBlocked());
        EXPECT_EQ(transport.write("abc"), 3U);
        EXPECT_FALSE(transport.isBlocked());
    }
    Calls::failAt({Call::send, EPIPE});
    transport.write("abc");
    EXPECT_FALSE(transport.isBlocked()) << "there will never be room";
    for (int const end : ends) ::close(end);
}

class Pipe : public testing::Test {
  protected:
    Pipe() { EXPECT_EQ(::pipe2(ends.data(), O_NONBLOCK), 0); }
    ~Pipe() override {
        Calls::failNone();
        for (int const end : ends) ::close(end);
    }
    std::array<int, 2> ends{};
};

TEST_F(Pipe, IsWrittenToAndReadLikeASocket) {
    FdTransport in(ends[0]);
    FdTransport out(ends[1]);
    std::array<unsigned char, 10> room{};
    EXPECT_EQ(in.read(room), 0U);
    EXPECT_EQ(out.write("abc"), 3U);
    EXPECT_EQ(in.read(room), 3U);
    EXPECT_EQ(in.closed(), "");
    EXPECT_EQ(out.closed(), "");
}

TEST_F(Pipe, FailsLikeASocket) {
    FdTransport out(ends[1]);
    for (int const error : {EAGAIN, EINTR}) {
        Calls::failAt({Call::write, error});
        EXPECT_EQ(out.write("abc"), 0U);
        ASSERT_TRUE(Calls::hasFailed());
    }
    Calls::failAt({Call::write, Calls::oneByte});
    EXPECT_EQ(out.write("abc"), 1U);
    Calls::failAt({Call::write, EPIPE});
    EXPECT_EQ(out.write("abc"), 3U);
    EXPECT_EQ(out.closed(), "");
    Calls::failAt({Call::write, EIO});
    EXPECT_EQ(out.write("abc"), 0U);
    EXPECT_EQ(out.closed(), std::string("write: ") + std::strerror(EIO));
}

}  // namespace
