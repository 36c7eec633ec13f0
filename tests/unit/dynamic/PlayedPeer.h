// A session that takes types, against a peer that is played by hand.
#ifndef TESTS_UNIT_DYNAMIC_PLAYEDPEER_H
#define TESTS_UNIT_DYNAMIC_PLAYEDPEER_H

#include "Tree.h"

#include <qor/attrlog/session/Session.h>
#include <qor/dynamic/DynamicEntity.h>
#include <qor/tree/Dir.h>

#include <gtest/gtest.h>

namespace Played {

using Qor::EntityId;
using Qor::make;
using Qor::Name;
using Qor::String8;
using Qor::U32;
using Qor::U8;
using Qor::NboAttrLog::MountId;
using Qor::NboAttrLog::Out;
using Qor::NboAttrLog::Session;
using Token = Out::TransactToken;

struct Heard : Qor::NboAttrLog::SessionListener {
    void onMounted(MountId, Qor::Ptr<Qor::Entity> const&) override { ++mounted; }
    void onRefused(MountId, String8 const& reason) override { refused = reason; }
    void onSynced(MountId) override { ++synced; }
    String8 refused;
    int mounted = 0;
    int synced = 0;
};

class Peer : public testing::Test {
  protected:
    Peer() {
        Qor::NboAttrLog::MemoryTransport::connect(near, far);
        Session::Config config;
        config.takesTypes = true;
        reader = std::make_unique<Session>(config, near, nullptr);
        reader->listenerIs(&heard);
    }

    template <class... Field>
    void link(U8 op, Field const&... field) {
        out->beginFrame(Qor::NboAttrLog::FrameKind::link, {});
        out << Token::begin << op;
        (static_cast<void>(out << field), ...);
        out << Token::end;
    }
    void hello() { link(1, U32{0x514F524C}, U32{2}, U32{1 << 20}); }
    void describe(U32 number, Qor::TypeDescription const& description) {
        out->beginFrame(Qor::NboAttrLog::FrameKind::link, {});
        out << Token::begin << U8{11} << number;
        description.put(out);
        out << Token::end;
    }
    void orphanDir(MountId mount, EntityId const& id) { orphan(mount, id, "Qor::Dir"); }
    void orphan(MountId mount, EntityId const& id, char const* type) {
        link(3, mount, id);
        out->nextHeaderIs({Qor::orphanEntityId, 136});
        out << Token::begin;
        out->currentPayloadSectionIs(Qor::NboAttrLog::PayloadSection::typeChain);
        out << String8(type);
        out->currentPayloadSectionIs(Qor::NboAttrLog::PayloadSection::name);
        out << String8("dir");
        out->currentPayloadSectionIs(Qor::NboAttrLog::PayloadSection::entityId);
        out << id << Token::end;
    }
    // Of a class, and perhaps one above it.
    void entry(EntityId const& dir, char const* key, EntityId const& id, char const* type,
               char const* base = nullptr) {
        Qor::NboAttrLog::MsgHeader header{dir, 258};
        header.headerWordB = 151;
        out->nextHeaderIs(header);
        String8 const chain(type);
        String8 const above(base != nullptr ? base : "");
        U32 const length = chain.length() + 4 + (base != nullptr ? above.length() + 4 : 0);
        out << Token::begin << String8(key) << U8{0} << id << length << chain;
        if (base != nullptr) out << above;
        out << String8(key) << Token::end;
    }

    // Lets the reader work, and gives the link messages that it sends as words. That a record came
    // is told where that is asked for.
    std::vector<std::string> turn() {
        while (!out->unsent().empty()) out->sentInc(far.write(out->unsent()));
        reader->service();
        std::vector<std::string> result;
        for (;;) {
            in->receivedInc(far.read(in->room()));
            Qor::NboAttrLog::Frame frame;
            if (!in->nextFrame(frame)) return result;
            if (frame.kind == Qor::NboAttrLog::FrameKind::link) result.push_back(words());
            if (frame.kind == Qor::NboAttrLog::FrameKind::record && tellsRecords) {
                result.emplace_back("record");
            }
            in->frameDone(frame);
        }
    }
    std::string words() {
        U8 const op = in->nextU8();
        auto const number = [this] { return " " + std::to_string(in->nextU32()); };
        auto const text = [this] { return " " + std::string(in->nextString().view()); };
        switch (op) {
            case 1:
                return "hello";
            case 2: {
                std::string const mount = "mount" + number();
                in->nextbool();
                return mount + text();
            }
            case 6:
                return "unmount" + number();
            case 7:
                return "error" + text();
            case 10: {
                std::string const asked = "describe" + number();
                return asked + text();
            }
            default:
                return std::to_string(op);
        }
    }

    using Said = std::vector<std::string>;
    Qor::NboAttrLog::MemoryTransport near;
    Qor::NboAttrLog::MemoryTransport far;
    Qor::Ptr<Out> const out = make<Out>();
    Qor::Ptr<Qor::NboAttrLog::In> const in = make<Qor::NboAttrLog::In>();
    Heard heard;
    std::unique_ptr<Session> reader;
    bool tellsRecords = false;
    static constexpr Qor::U64 peers = Qor::U64{1} << 63;
    EntityId const dirId{peers | 5};
    EntityId const laterDirId{peers | 9};
};

inline Qor::TypeDescription lamp(char const* name) {
    Qor::TypeDescription result;
    result.fullName = Name(name);
    result.base = Name("Qor::Entity");
    result.kind = Qor::TypeDescription::Kind::entity;
    result.constructorArgs = {{"name", "Qor::Name"}};
    result.attributes = {{258,
                          Name("level"),
                          Name("U32"),
                          Name(),
                          Qor::FlagClasses::scalar.flags,
                          Qor::FlagClasses::scalar.introspection,
                          Name(),
                          {}}};
    result.initials = {{258, "100"}};
    return result;
}

}  // namespace Played

#endif
