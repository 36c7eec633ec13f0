// The dialogues of two sessions that docs/attribute-log.md shows are those that are held.
#include "Peers.h"

#include <qor/attrlog/dir/DirAdapter.h>
#include <qor/core/Now.h>
#include <tests/support/Documentation.h>
#include <tests/support/SessionPair.h>
#include <vgw/attrlog/CliConfig.h>
#include <vgw/attrlog/LogicalSwitch.h>

#include <gtest/gtest.h>

#include <sstream>

namespace {

using Qor::make;
using Qor::Name;

// Notes each frame that goes over, in its order, with who sends it.
class Dialogue : protected SessionPair {
  public:
    Dialogue() {
        Qor::nowIs([] { return 1000.0; });
        auto const root = make<Qor::Dir>(Name("vgw"));
        auto const ls = make<Vgw::LogicalSwitch>(Name("ls"));
        ls->tunnelKeyIs(5000);
        root->entryIs(Name("ls"), ls);
        root->entryIs(Name("cliConfig"), make<Vgw::CliConfig>(Name("cliConfig")));
        Session::Config config;
        config.peerMayWrite = true;
        connect(root, config);
        agent->listenerIs(&owner_);
    }
    ~Dialogue() { Qor::nowIs({}); }
    Session& asks() { return *reader; }
    Session& answers() { return *agent; }
    // What goes over until nothing does.
    std::string heard() {
        std::string lines;
        for (int quiet = 0; quiet < 3; ++quiet) {
            std::size_t const before = lines.size();
            reader->service();
            lines += passed("> ", far, near);
            agent->service();
            lines += passed("< ", near, far);
            if (lines.size() != before) quiet = 0;
        }
        return lines;
    }

  private:
    using Transport = Qor::NboAttrLog::MemoryTransport;
    struct Owner : Qor::NboAttrLog::SessionListener {
        Qor::String8 onAskedToCall(Qor::String8 const&, Qor::String8 const&,
                                   Qor::Entity&) override {
            return {};
        }
    };

    // The frames that have come to `to`, which get there all the same.
    static std::string passed(char const* mark, Transport& to, Transport& from) {
        std::string bytes(1U << 16U, '\0');
        bytes.resize(to.read({reinterpret_cast<unsigned char*>(bytes.data()), bytes.size()}));
        from.write(bytes);
        std::string lines;
        for (std::size_t at = 0; at < bytes.size();) {
            std::size_t const size = 4 + static_cast<unsigned char>(bytes[at + 2]) * 256U +
                                     static_cast<unsigned char>(bytes[at + 3]);
            lines += mark + hex(std::string_view(bytes).substr(at, size)) + "\n";
            at += size;
        }
        return lines;
    }

    Owner owner_;
};

// The block of the page that begins with that line, without the lines of words.
std::string blockOf(std::string const& title) {
    std::string const text = attributeLogPage(TREE);
    std::size_t const begin = text.find("```\n" + title + "\n");
    if (begin == std::string::npos) return "no block begins with: " + title;
    std::istringstream lines(text.substr(begin + 4, text.find("\n```", begin + 4) - begin - 3));
    std::string frames;
    for (std::string line; std::getline(lines, line);) {
        if (line.starts_with("> ") || line.starts_with("< ")) frames += line + "\n";
    }
    return frames;
}

TEST(DocumentedDialogues, OfAMount) {
    Dialogue dialogue;
    auto const mount = dialogue.asks().mount("/vgw/ls", true);
    std::string lines = dialogue.heard();
    dialogue.asks().mount("/vgw/nothing", false);
    lines += dialogue.heard();
    dialogue.asks().unmount(mount);
    lines += dialogue.heard();
    dialogue.asks().ping();
    lines += dialogue.heard();
    dialogue.answers().close("the agent ends");
    lines += dialogue.heard();
    EXPECT_EQ(dialogue.asks().closed(), "the peer: the agent ends");
    EXPECT_EQ(blockOf("each end begins with its hello"), lines);
}

TEST(DocumentedDialogues, OfACallAndADigest) {
    Dialogue dialogue;
    dialogue.heard();
    dialogue.asks().call("/vgw/cliConfig", "reset", {});
    std::string lines = dialogue.heard();
    dialogue.asks().call("/vgw/cliConfig", "explode", {"1"});
    lines += dialogue.heard();
    dialogue.asks().askForDigest({"/vgw/ls", 0, "", 1});
    lines += dialogue.heard();
    dialogue.asks().askForDigest({"/vgw/nothing", 0, "", 1});
    lines += dialogue.heard();
    EXPECT_EQ(blockOf("reset is called, as call 1"), lines);
}

}  // namespace
