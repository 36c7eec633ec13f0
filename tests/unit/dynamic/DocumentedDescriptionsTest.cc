// The frames of descriptions that docs/attribute-log.md shows are those that are sent.
#include "../attrlog/Peers.h"

#include <qor/attrlog/session/Session.h>

#include <tests/support/Documentation.h>

#include <gtest/gtest.h>

namespace {

using Qor::String8;
using Qor::U32;
using Qor::U8;
using Qor::NboAttrLog::Out;
using Qor::NboAttrLog::Session;
using Token = Out::TransactToken;

// The frames of a session that takes types, and is asked for one of its own.
std::vector<std::string> framesOfSession() {
    Qor::NboAttrLog::MemoryTransport near;
    Qor::NboAttrLog::MemoryTransport far;
    Qor::NboAttrLog::MemoryTransport::connect(near, far);
    Session::Config config;
    config.takesTypes = true;
    Session session(config, near, nullptr);
    auto const out = Qor::make<Out>();
    auto const link = [&](U8 op, auto const&... field) {
        out->beginFrame(Qor::NboAttrLog::FrameKind::link, {});
        out << Token::begin << op;
        (static_cast<void>(out << field), ...);
        out << Token::end;
    };
    link(1, U32{0x514F524C}, U32{2}, U32{1 << 20});
    link(10, U32{1}, String8("Vgw::VtepListType"));
    far.write(takeBytes(*out));
    session.service();
    std::string bytes(4096, '\0');
    bytes.resize(far.read({reinterpret_cast<unsigned char*>(bytes.data()), bytes.size()}));
    std::vector<std::string> result;
    while (bytes.size() >= 4) {
        std::size_t const size =
            4 + static_cast<unsigned char>(bytes[2]) * 256U + static_cast<unsigned char>(bytes[3]);
        result.push_back(hex(bytes.substr(0, size)));
        bytes.erase(0, size);
    }
    return result;
}

TEST(DocumentedDescriptions, AreThoseThatAreSent) {
    std::string const text = attributeLogPage(TREE);
    auto const frames = framesOfSession();
    ASSERT_EQ(frames.size(), 4U) << "hello, the question, a description, the end";
    for (std::size_t i = 0; i < frames.size(); ++i) {
        std::string const mark = i == 0 ? "\n> " : "\n";  // the hello is one of a dialogue
        EXPECT_NE(text.find(mark + frames[i] + "\n"), std::string::npos) << frames[i];
    }
}

}  // namespace
