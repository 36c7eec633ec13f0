#include "SampleTree.h"

#include <vgwctl/options/Failure.h>
#include <vgwctl/recording/Player.h>
#include <vgwctl/recording/Recording.h>

#include <qor/attrlog/session/Session.h>

#include <tests/support/Settings.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace {

using namespace Vgwctl;
using Qor::NboAttrLog::MemoryTransport;
using Qor::NboAttrLog::Session;

// Hands what it reads to a recorder, as a connection does.
class Tapped final : public Qor::NboAttrLog::Transport {
  public:
    Tapped(Transport& inner, ByteTap& tap) : inner_(inner), tap_(tap) {}
    std::size_t write(std::string_view bytes) override { return inner_.write(bytes); }
    std::size_t read(std::span<unsigned char> room) override {
        std::size_t const count = inner_.read(room);
        if (count != 0) tap_.heard(room.first(count));
        return count;
    }
    Qor::String8 closed() const override { return {}; }

  private:
    Transport& inner_;
    ByteTap& tap_;
};

class Recordings : public testing::Test {
  protected:
    Recordings() {
        char name[] = "/tmp/vgwctl_recording_XXXXXX";
        folder = ::mkdtemp(name);
        file = folder + "/log";
    }
    ~Recordings() override { std::filesystem::remove_all(folder); }

    // One connection, with a change in it.
    static void record(Recorder& recorder, SampleTree& tree, Qor::U32 tunnelKey) {
        MemoryTransport near;
        MemoryTransport far;
        MemoryTransport::connect(near, far);
        Tapped tapped(near, recorder);
        recorder.keep();
        recorder.connected();
        Session::Config config;
        config.side = Qor::NboAttrLog::Demuxer::Side::accepting;
        Session agent(config, far, tree.root);
        Session reader(sessionConfig(), tapped, nullptr);
        reader.mount("/vgw", false);
        for (int round = 0; round < 10; ++round) {
            reader.service();
            agent.service();
            if (round == 5) tree.red->tunnelKeyIs(tunnelKey);
        }
    }
    static std::string failure(auto&& attempt) {
        try {
            attempt();
        } catch (Failure const& e) {
            return e.what();
        }
        return "nothing was raised";
    }
    Qor::U32 playedKey() {
        Recording recording(file);
        Copy copy(recording.path());
        Player(recording, copy).playAll();
        auto const red = Qor::dynamicCast<Vgw::LogicalSwitch>(
            Qor::entityAt("/vgw/status/ovsdb/logicalSwitch/red"));
        return red ? red->tunnelKey() : 0;
    }

    std::string folder;
    std::string file;
};

TEST_F(Recordings, PlayedGiveTheLastState) {
    SampleTree tree;
    {
        Recorder recorder(file, "/vgw");
        record(recorder, tree, 42);
    }
    EXPECT_EQ(playedKey(), 42U);
}

TEST_F(Recordings, GoOnOverConnections) {
    SampleTree tree;
    {
        Recorder recorder(file, "/vgw");
        record(recorder, tree, 42);
        record(recorder, tree, 43);
    }
    EXPECT_EQ(playedKey(), 43U);
}

TEST_F(Recordings, ThatAreCutAreGoodUpToThere) {
    SampleTree tree;
    {
        Recorder recorder(file, "/vgw");
        record(recorder, tree, 42);
    }
    auto const whole = std::filesystem::file_size(file);
    int states = 0;
    constexpr std::uint64_t stride = Settings::volume(1, 3, 7);
    for (auto size = whole; size >= stride; size -= stride) {
        std::filesystem::resize_file(file, size - stride);
        std::string const told = failure([&] {
            Qor::U32 const key = playedKey();
            EXPECT_TRUE(key == 42 || key == 5001 || key == 0x1000000 || key == 0) << key;
            ++states;
        });
        bool const isTold = told == "nothing was raised" || told.find("ends before") != told.npos ||
                            told.find("is no recording") != told.npos ||
                            told.find("is cut") != told.npos;
        EXPECT_TRUE(isTold) << size << ' ' << told;
    }
    EXPECT_GT(states, 0);
}

TEST_F(Recordings, OfSomethingElseAreRefusedByName) {
    EXPECT_EQ(failure([&] { Recording recording(file); }), file + ": No such file or directory");
    std::ofstream(file) << "something else";
    EXPECT_EQ(failure([&] { Recording recording(file); }), file + " is no recording");
    EXPECT_EQ(failure([&] { Recorder recorder(file, "/vgw"); }), file + " exists already");
    std::ofstream(file, std::ios::trunc) << std::string("QORR\0\0\0\7", 8);
    EXPECT_EQ(failure([&] { Recording recording(file); }),
              file + " is a recording of version 7, expected 1");
}

TEST_F(Recordings, ThatAreNotKeptLeaveNoFile) {
    { Recorder const recorder(file, "/vgw"); }
    EXPECT_FALSE(std::filesystem::exists(file));
}

TEST_F(Recordings, ThatNoAgentSentAreRefused) {
    {
        Recorder recorder(file, "/vgw");
        recorder.keep();
        recorder.connected();
        unsigned char const junk[] = {0, 0, 0, 1, 9};
        recorder.heard(junk);
    }
    EXPECT_TRUE(failure([&] { playedKey(); }).starts_with("the recording can't be played: "));
}

}  // namespace
