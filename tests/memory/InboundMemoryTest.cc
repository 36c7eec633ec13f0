// What a peer makes this process hold: at most 64 KiB and four times the bytes that it sent, after
// every one of its frames; a length that it claims reserves nothing.
#include "CountingNew.h"

#include <fuzz/HostilePeer.h>

#include <qor/attrlog/session/Session.h>
#include <qor/tree/Dir.h>
#include <vgw/agent/Status.h>

#include <tests/support/Settings.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <vector>

namespace {

using Qor::make;
using Qor::Name;
using Qor::NboAttrLog::MemoryTransport;
using Qor::NboAttrLog::Session;

constexpr std::uint64_t statusId = 0x8000000000000003;
constexpr std::uint64_t switchId = 0x8000000000000007;
constexpr std::size_t allowance = 64U << 10;

std::string number(std::uint64_t value, int width) {
    std::string result;
    for (int shift = 8 * (width - 1); shift >= 0; shift -= 8) {
        result += static_cast<char>(value >> shift & 0xFF);
    }
    return result;
}
std::string text(std::string const& value) { return number(value.size(), 4) + value; }

// An agent's session, its tree mounted by a peer that is bytes.
class InboundMemory : public testing::Test {
  protected:
    InboundMemory() {
        root_->entryIs(Name("status"), status_);
        status_->ovsdbIs(Name("db"))->logicalSwitchIs(Name("ls"));
        MemoryTransport::connect(peer_, own_);
        Session::Config config;
        config.side = Qor::NboAttrLog::Demuxer::Side::accepting;
        config.peerMayWrite = true;
        session_ = std::make_unique<Session>(config, own_, root_);
        send(HostilePeer::hello());
        send(hostileFrame(2, 0, 0, 1, 0, "\2" + number(1, 4) + "\1" + text("/vgw/status")));
        drain();
        before_ = Memory::heldBytes();
        sent_ = 0;
    }
    void drain() {
        static unsigned char sink[65536];
        session_->service();
        while (peer_.read(sink) != 0) session_->service();
    }
    // Hands bytes over; they are the session's to hold, not the transport's.
    void send(std::string const& bytes) {
        peer_.write(bytes);
        sent_ += bytes.size();
        session_->service();
    }
    void expectBound() {
        std::size_t const held = Memory::heldBytes();
        std::size_t const more = held > before_ ? held - before_ : 0;
        ASSERT_LE(more, allowance + 4 * sent_) << "after " << sent_ << " bytes";
    }
    // Asks again and again, and reads the answers, of that kind, only in the end.
    void expectARing(std::string const& question, char answer) {
        constexpr std::size_t questions = 40000;
        constexpr std::size_t ring = 9 * 49152;
        own_.roomIs(32U << 10);
        peer_.roomIs(0);
        std::size_t asked = 0;
        std::size_t left = question.size();  // of the one that is being sent
        auto const ask = [&] {
            while (asked < questions) {
                std::size_t const taken = peer_.write(question.substr(question.size() - left));
                left -= taken;
                if (left != 0) break;
                left = question.size();
                ++asked;
            }
            session_->service();
        };
        for (int turn = 0; turn < 2000; ++turn) ask();
        ASSERT_LT(asked, questions);
        ASSERT_LE(Memory::heldBytes(), before_ + ring + allowance);
        ASSERT_TRUE(session_->wantsWrite());
        ASSERT_FALSE(session_->hasRoom());
        peer_.roomIs(20000);
        std::size_t answered = 0;
        std::string got;
        static unsigned char sink[65536];
        for (int turn = 0; turn < 20000 && answered < questions; ++turn) {
            std::size_t const count = peer_.read(sink);
            got.append(reinterpret_cast<char const*>(sink), count);
            answered += takeAnswers(got, answer);
            ask();
        }
        EXPECT_EQ(answered, questions);
        EXPECT_EQ(closed(), "");
        EXPECT_TRUE(session_->hasRoom());
    }
    // The number of whole link frames of that kind, which are taken off with all others.
    static std::size_t takeAnswers(std::string& bytes, char kind) {
        std::size_t found = 0;
        std::size_t at = 0;
        while (bytes.size() - at >= 29) {
            std::size_t size = 4;
            for (std::size_t i = 0; i < 4; ++i) {
                size += std::size_t{static_cast<unsigned char>(bytes[at + i])} << (24 - 8 * i);
            }
            if (bytes.size() - at < size) break;
            found += bytes[at + 4] == 2 && bytes[at + 28] == kind ? 1 : 0;
            at += size;
        }
        bytes.erase(0, at);
        return found;
    }
    std::string closed() const { return std::string(session_->closed().view()); }

    Qor::Ptr<Qor::Dir> root_ = make<Qor::Dir>(Name("vgw"));
    Vgw::Status::Ptr status_ = Vgw::statusFactory(Name("status"));
    MemoryTransport peer_;
    MemoryTransport own_;
    std::unique_ptr<Session> session_;
    std::size_t before_ = 0;
    std::size_t sent_ = 0;
};

TEST_F(InboundMemory, LengthThatIsClaimedReservesNothing) {
    send(number((1U << 20) - 1, 4));
    std::size_t const claimed = Memory::heldBytes();
    EXPECT_LE(claimed, before_ + 1024);
    for (int i = 0; i < 2000; ++i) {
        send(std::string(100, 'x'));
        expectBound();
    }
}

TEST_F(InboundMemory, OpenTextIsHeldOnce) {
    for (int i = 0; i < 3000; ++i) {
        send(hostileFrame(0x80, switchId, 387, 1, 0, std::string(300, 'x')));
        expectBound();
    }
    EXPECT_EQ(closed(), "");
    send(hostileFrame(0, switchId, 387, 1, 0, "."));
    EXPECT_EQ(status_->ovsdb()->logicalSwitch(Name("ls"))->desc().length(), 900001U);
}

TEST_F(InboundMemory, TextInSingleBytesIsHeldOnce) {
    for (int i = 0; i < 5000; ++i) {
        send(hostileFrame(0x80, switchId, 387, 1, 0, "x"));
        expectBound();
    }
    EXPECT_EQ(closed(), "");
}

TEST_F(InboundMemory, LinkMessagesLeaveNothingBehind) {
    for (std::uint32_t i = 0; i < 3000; ++i) {
        send(hostileFrame(2, 0, 0, 1, 0, "\2" + number(i + 2, 4) + number(0, 1) + text("/none")));
        send(hostileFrame(2, 0, 0, 1, 0, "\10" + number(0, 8)));
        drain();
        expectBound();
    }
    EXPECT_EQ(closed(), "");
}

// Of a peer that reads nothing no more questions are taken than a ring has answers for; when it
// reads, all are answered.
TEST_F(InboundMemory, PingsOfWhoNeverReadsCostNoMoreThanARing) {
    expectARing(hostileFrame(2, 0, 0, 1, 0, "\10" + number(0, 8)), 9);
}

TEST_F(InboundMemory, MountsOfWhoNeverReadsCostNoMoreThanARing) {
    expectARing(
        hostileFrame(2, 0, 0, 1, 0, "\2" + number(2, 4) + number(0, 1) + text("/vgw/status")) +
            hostileFrame(2, 0, 0, 1, 0, "\6" + number(2, 4)),
        3);
}

TEST_F(InboundMemory, RefusalsOfWhoNeverReadsCostNoMoreThanARing) {
    expectARing(hostileFrame(2, 0, 0, 1, 0, "\2" + number(2, 4) + number(0, 1) + text("/vgw")), 5);
}

TEST_F(InboundMemory, CallsOfWhoNeverReadsCostNoMoreThanARing) {
    expectARing(
        hostileFrame(2, 0, 0, 1, 0,
                     "\24" + number(7, 4) + text("/vgw/status") + text("none") + number(0, 4)),
        21);
}

// One is answered in each turn; what comes beside it is held, and that is little.
TEST_F(InboundMemory, DigestsOfLongPathsEndAtTheirBytes) {
    std::string questions;
    for (int i = 0; i < 4; ++i) {
        questions += hostileFrame(2, 0, 0, 1, 0,
                                  "\26" + text("/vgw/" + std::string(50'000, 'a')) + number(0, 4) +
                                      text("") + number(1, 4));
    }
    send(questions);
    EXPECT_EQ(closed(), "more digests asked for than are answered at a time");
}

TEST_F(InboundMemory, RecordsForNobodyLeaveNothingBehind) {
    for (std::uint64_t i = 0; i < 3000; ++i) {
        send(hostileFrame(0, 1001 + 2 * i, 387, 1, 0, "x"));
        send(hostileFrame(1, 1001 + 2 * i, 387, 1, 0, std::string(5, '\0')));
        send(hostileFrame(0x80, statusId, 999, 1, 0, "x"));
        expectBound();
    }
    EXPECT_EQ(closed(), "");
}

// One of many peers, each of which has begun a text and never ends it.
struct OpenText {
    explicit OpenText(Qor::Ptr<Qor::Dir> const& root) {
        MemoryTransport::connect(peer, own);
        Session::Config config;
        config.side = Qor::NboAttrLog::Demuxer::Side::accepting;
        config.peerMayWrite = true;
        session = std::make_unique<Session>(config, own, root);
        send(HostilePeer::hello());
        send(hostileFrame(2, 0, 0, 1, 0, "\2" + number(1, 4) + "\1" + text("/vgw/status")));
        static unsigned char sink[65536];
        while (peer.read(sink) != 0) session->service();
    }
    std::size_t send(std::string const& bytes) {
        peer.write(bytes);
        session->service();
        return bytes.size();
    }
    MemoryTransport peer;
    MemoryTransport own;
    std::unique_ptr<Session> session;
};

TEST_F(InboundMemory, OfManySessionsWithAnOpenTextEachKeepsToTheBound) {
    constexpr std::size_t chunks = 20;
    std::size_t const count = Settings::number("VGW_SESSIONS", Settings::volume(1000, 100, 50));
    std::vector<std::unique_ptr<OpenText>> peers;
    for (std::size_t i = 0; i < count; ++i) peers.push_back(std::make_unique<OpenText>(root_));
    std::size_t const before = Memory::heldBytes();
    std::size_t sent = 0;
    for (std::size_t i = 0; i < chunks; ++i) {
        for (auto const& peer : peers) {
            sent += peer->send(hostileFrame(0x80, switchId, 387, 1, 0, std::string(1000, 'x')));
        }
        ASSERT_LE(Memory::heldBytes(), before + count * allowance + 4 * sent);
    }
    std::size_t const held = Memory::heldBytes() - before;
    EXPECT_GE(held, count * chunks * 1000) << "the texts are not held";
    EXPECT_LE(held, 4 * sent) << "all of them together take no more than one does";
    for (auto const& peer : peers) ASSERT_EQ(peer->session->closed(), "");
    std::printf("%zu sessions with an open text: %zu bytes sent, %.2f held for each\n", count, sent,
                static_cast<double>(held) / static_cast<double>(sent));
}

// An entity costs more than the bytes that announce it; their number is what is bounded.
TEST_F(InboundMemory, EntitiesEndAtTheirQuota) {
    Session::Config config;
    config.side = Qor::NboAttrLog::Demuxer::Side::accepting;
    config.peerMayWrite = true;
    config.quota.entities = 500;
    session_ = std::make_unique<Session>(config, own_, root_);
    send(HostilePeer::hello());
    send(hostileFrame(2, 0, 0, 1, 0, "\2" + number(1, 4) + "\1" + text("/vgw/status")));
    drain();
    for (std::uint64_t i = 0; i < 1000; ++i) {
        send(hostileFrame(0, statusId + 2, 263, 1, 151,
                          text("x" + std::to_string(i)) + number(101 + 2 * i, 8)));
        drain();
    }
    EXPECT_EQ(closed(), "more than 500 entities");
    EXPECT_EQ(status_->ovsdb()->logicalSwitchs(), 1U + 500U);
    EXPECT_LE(Memory::heldBytes(), before_ + allowance + 501 * 1500);
}

// A session that asks for types, and is told of them by a peer that never says that it was all.
class InboundTypes : public InboundMemory {
  protected:
    InboundTypes() {
        Session::Config config;
        config.takesTypes = true;
        session_ = std::make_unique<Session>(config, own_, nullptr);
        send(HostilePeer::hello());
        drain();
        before_ = Memory::heldBytes();
        sent_ = 0;
    }
    // An entity of that name: constructor's arguments, attributes and initial values.
    void describe(std::string const& name, std::uint32_t arguments, std::uint32_t attributes,
                  std::uint32_t initials) {
        std::string type = text(name) + text("Qor::Entity") + "\3" + number(8, 4);
        type += listOf(arguments, [](std::uint32_t) { return text("a") + text("b"); });
        type += listOf(attributes, [](std::uint32_t n) {
            return number(258 + n, 4) + text("a" + std::to_string(n)) + text("b") + text("") +
                   std::string(12, '\0') + text("") + number(0, 4);
        });
        type += listOf(initials, [](std::uint32_t) { return number(258, 4) + text(""); });
        send(hostileFrame(2, 0, 0, 1, 0, "\13" + number(1, 4) + type + number(0, 4)));
        drain();
        EXPECT_EQ(closed(), "");
        expectBound();
    }
    template <class Part>
    static std::string listOf(std::uint32_t count, Part const& part) {
        std::string result = number(count, 4);
        for (std::uint32_t n = 0; n < count; ++n) result += part(n);
        return result;
    }
};

TEST_F(InboundTypes, SmallOnesAreHeldAsTheyCame) {
    for (int i = 0; i < 4000; ++i) describe("T" + std::to_string(i), 0, 0, 0);
}

TEST_F(InboundTypes, ArgumentsAreHeldAsTheyCame) {
    for (int i = 0; i < 2000; ++i) describe("T" + std::to_string(i), 64, 0, 0);
}

TEST_F(InboundTypes, AttributesAreHeldAsTheyCame) {
    for (int i = 0; i < 40; ++i) describe("T" + std::to_string(i), 0, 2000, 0);
}

TEST_F(InboundTypes, InitialValuesAreHeldAsTheyCame) {
    for (int i = 0; i < 100; ++i) describe("T" + std::to_string(i), 0, 0, 2000);
}

TEST_F(InboundTypes, ListThatIsTooLongIsRefusedAtItsCount) {
    send(hostileFrame(2, 0, 0, 1, 0,
                      "\13" + number(1, 4) + text("T") + text("Qor::Entity") + "\3" + number(8, 4) +
                          number(40000, 4)));
    EXPECT_EQ(closed(), "the description of T: more arguments than it may have");
    expectBound();
}

}  // namespace
