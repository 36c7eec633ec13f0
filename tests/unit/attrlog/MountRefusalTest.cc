// What a reader does with an announcement that it can't hold. The peer is written out by hand.
#include "Records.h"

#include <qor/attrlog/session/Session.h>

#include <vgw/attrlog/CliConfig.h>
#include <vgw/attrlog/LogicalSwitch.h>

#include <gtest/gtest.h>

#include <array>
#include <memory>

namespace {

using Qor::String8;
using Qor::NboAttrLog::MountId;
using Qor::NboAttrLog::Session;

struct HeardRefusal : Qor::NboAttrLog::SessionListener {
    void onMounted(MountId, Qor::Ptr<Qor::Entity> const& entity) override { mounted = entity; }
    void onRefused(MountId mount, String8 const& why) override {
        refused = mount;
        reason = why;
    }
    Qor::Ptr<Qor::Entity> mounted;
    MountId refused = 0;
    String8 reason;
};

std::string link(std::string const& payload) { return frameHex(2, 0, 0, payload, 1, 0); }

// Bytes behind their length.
std::string sized(std::string const& hexadecimal) {
    char length[9];
    std::snprintf(length, sizeof length, "%08x", static_cast<unsigned>(hexadecimal.size() / 2));
    return length + hexadecimal;
}

std::string orphan(std::string const& type, std::string const& name, std::string const& id) {
    return record(
        1, 136,
        "01" + sized(sized(hexOf(type))) + "03" + sized(sized(hexOf(name))) + "04" + sized(id));
}

class Refusal : public testing::Test {
  protected:
    Refusal() {
        Qor::NboAttrLog::MemoryTransport::connect(near, far);
        reader = std::make_unique<Session>(Session::Config(), near, nullptr);
        reader->listenerIs(&heard);
        feed(link("01514f524c0000000200100000"));
    }
    void feed(std::string const& hexadecimal) {
        far.write(bytesOf(hexadecimal));
        reader->service();
    }
    // The peer gives mount `number` as an entity of that class.
    void give(std::string const& number, std::string const& type, std::string const& id) {
        feed(link("030000000" + number + id) + orphan(type, "e", id));
    }

    Qor::NboAttrLog::MemoryTransport near;
    Qor::NboAttrLog::MemoryTransport far;
    HeardRefusal heard;
    std::unique_ptr<Session> reader;
};

TEST_F(Refusal, UnknownClassAtTheRootOfAMountEndsThatMountOnly) {
    MountId const mount = reader->mount("/other/thing", false);
    give("1", "Other::Thing", "8000000000000003");
    EXPECT_EQ(heard.refused, mount);
    EXPECT_EQ(heard.reason, "the class Other::Thing is not known here");
    EXPECT_EQ(reader->demuxer().counters().unknownClasses, 1U);
    feed(record(0x8000000000000003, 386, "01"));
    EXPECT_EQ(reader->closed(), String8());
    reader->mount("/vgw/cliConfig", false);
    give("2", "Vgw::CliConfig", "8000000000000005");
    feed(record(0x8000000000000005, 262, "0009"));
    auto const copy = Qor::dynamicCast<Vgw::CliConfig>(heard.mounted);
    ASSERT_TRUE(copy);
    EXPECT_EQ(copy->managerPort(), 9);
    EXPECT_EQ(reader->closed(), String8());
}

TEST_F(Refusal, ThePeerIsToldToSendItNoLonger) {
    reader->mount("/other/thing", false);
    give("1", "Other::Thing", "8000000000000003");
    std::array<unsigned char, 4096> room{};
    std::string told;
    while (std::size_t const count = far.read(room)) {
        told.append(reinterpret_cast<char const*>(room.data()), count);
    }
    EXPECT_TRUE(told.ends_with(bytesOf(link("0600000001"))));
}

TEST_F(Refusal, CopyOfAnotherClassThanThePeersEntityIsRefused) {
    auto const copy = Qor::make<Vgw::LogicalSwitch>(Qor::Name("e"));
    reader->mount("/vgw/cliConfig", false, copy);
    give("1", "Vgw::CliConfig", "8000000000000003");
    EXPECT_EQ(heard.reason, "the copy is a Vgw::LogicalSwitch, the peer's entity a Vgw::CliConfig");
    EXPECT_EQ(copy->notifierList().count(), 0U);
    EXPECT_EQ(reader->closed(), String8());
}

TEST_F(Refusal, UnmountThatCrossesTheAnnouncementEndsNoSession) {
    reader->unmount(reader->mount("/vgw/cliConfig", false));
    give("1", "Vgw::CliConfig", "8000000000000003");
    feed(record(0x8000000000000003, 262, "0009"));
    EXPECT_EQ(reader->closed(), String8());
    EXPECT_FALSE(heard.mounted);
    EXPECT_EQ(reader->demuxer().counters().unknownEntities, 2U);
}

// It switches the counting of references off: switched on again, what was given up meanwhile would
// never have been counted.
TEST_F(Refusal, PeerDoesNotSayHowReferencesAreCounted) {
    auto const copy = Qor::make<Vgw::CliConfig>(Qor::Name("e"));
    reader->mount("/vgw/cliConfig", true, copy);
    give("1", "Vgw::CliConfig", "8000000000000003");
    feed(record(0x8000000000000003, 6, "01"));
    EXPECT_FALSE(copy->isNondestructing());
    EXPECT_EQ(reader->demuxer().counters().refusedToPeer, 1U);
    copy->isNondestructingIs(true);
    feed(record(0x8000000000000003, 6, "00"));
    EXPECT_TRUE(copy->isNondestructing());
    feed(record(0x8000000000000003, 6, "01") + record(0x8000000000000003, 262, "0009"));
    EXPECT_EQ(reader->demuxer().counters().refusedToPeer, 2U) << "what both say is nothing new";
    EXPECT_EQ(copy->managerPort(), 9);
    EXPECT_EQ(reader->closed(), String8());
    copy->isNondestructingIs(false);
}

}  // namespace
