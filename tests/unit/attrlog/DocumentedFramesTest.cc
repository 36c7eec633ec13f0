// The frames that docs/attribute-log.md shows are those that are sent.
#include "Peers.h"
#include "Records.h"

#include <qor/attrlog/dir/DirAdapter.h>
#include <vgw/attrlog/HwVtepOvsdb.h>
#include <vgw/attrlog/LogicalSwitch.h>
#include <vgw/attrlog/PhysicalPort.h>
#include <vgw/attrlog/PhysicalSwitch.h>
#include <vgw/attrlog/Status.h>

#include <tests/support/Documentation.h>

#include <gtest/gtest.h>

#include <functional>

namespace {

using Qor::make;
using Qor::Name;

// What a connecting end sends of `entity` when it changes.
template <class X>
std::string frameOf(Qor::Ptr<X> const& entity, std::function<void(X&)> const& change,
                    std::size_t most = 1000) {
    Peer peer(Peer::Demuxer::Side::connecting);
    auto const adapter = peer.attach(entity);
    change(*entity);
    return hex(takeBytes(peer.out(), most));
}

TEST(DocumentedFrames, AreThoseThatAreSent) {
    std::string const text = attributeLogPage(TREE);
    auto const shows = [&text](std::string const& frame) {
        EXPECT_NE(text.find("\n" + frame + "\n"), std::string::npos) << frame;
    };
    auto const ls = make<Vgw::LogicalSwitch>(Name("ls"));
    shows(frameOf<Vgw::LogicalSwitch>(ls, [](auto& row) { row.tunnelKeyIs(5000); }));
    shows(frameOf<Vgw::LogicalSwitch>(ls, [](auto& row) { row.descIs("leaf"); }));
    auto const sw = make<Vgw::PhysicalSwitch>(Name("s"));
    shows(frameOf<Vgw::PhysicalSwitch>(sw, [](auto& row) { row.portIs("p", true); }));
    shows(frameOf<Vgw::PhysicalSwitch>(sw, [](auto& row) { row.portDel("p"); }));
    auto const port = make<Vgw::PhysicalPort>(Name("p"));
    shows(frameOf<Vgw::PhysicalPort>(port, [](auto& row) { row.vlanBindingIs(7, "ls"); }));
    shows(frameOf<Vgw::PhysicalPort>(port, [](auto& row) { row.vlanBindingDel(7); }));
    auto const db = make<Vgw::HwVtepOvsdb>(Name("db"));
    shows(frameOf<Vgw::HwVtepOvsdb>(db, [](auto& row) { row.rootIs(Name("r")); }));
    shows(frameOf<Vgw::HwVtepOvsdb>(db, [](auto& row) { row.rootDel(Name("r")); }));
    auto const status = make<Vgw::Status>(Name("st"));
    status->ovsdbIs(Name("db"));
    shows(frameOf<Vgw::Status>(status, [](auto& row) { row.ovsdbDel(); }));
}

TEST(DocumentedFrames, OfReferencesOrphansAndMarkers) {
    std::string const text = attributeLogPage(TREE);
    auto const shows = [&text](std::string const& frame) {
        EXPECT_NE(text.find("\n" + frame + "\n"), std::string::npos) << frame;
    };
    Peer peer(Peer::Demuxer::Side::connecting);
    auto const db = make<Vgw::HwVtepOvsdb>(Name("db"));
    auto const a = peer.attach(db);
    auto const row = db->physicalSwitchRawIs(Name("s"));
    takeBytes(peer.out());
    db->physicalSwitchIs("leaf", row);
    shows(hex(takeBytes(peer.out())));
    db->physicalSwitchDel("leaf");
    shows(hex(takeBytes(peer.out())));
    for (auto const type :
         {Qor::StreamAdapter::begin, Qor::StreamAdapter::abort, Qor::StreamAdapter::end}) {
        a->sendTransactionMarker(388, type, 0);
        shows(hex(takeBytes(peer.out())));
    }
    Peer other(Peer::Demuxer::Side::connecting);
    auto const ls = make<Vgw::LogicalSwitch>(Name("ls"));
    auto const b = other.attach(ls);
    b->doSerializeOrphan();
    std::string const bytes = takeBytes(other.out());
    shows(hex(bytes.substr(0, 4 + static_cast<unsigned char>(bytes[3]))));
}

TEST(DocumentedFrames, OfADirectorysEntry) {
    Peer peer(Peer::Demuxer::Side::connecting);
    auto const dir = make<Qor::Dir>(Name("dir"));
    auto const adapter = peer.attach(dir);
    auto const next = [&peer] {
        std::string const bytes = takeBytes(peer.out());
        return hex(bytes.substr(0, 4 + static_cast<unsigned char>(bytes[3])));
    };
    dir->entryIs(Name("ls"), make<Vgw::LogicalSwitch>(Name("ls")));
    for (int i = 0; i < 2; ++i) {
        std::string const frame = next();
        EXPECT_NE(attributeLogPage(TREE).find("\n" + frame + "\n"), std::string::npos) << frame;
        dir->entryDel(Name("ls"));
    }
}

TEST(DocumentedFrames, OfAReceipt) {
    Peer peer(Peer::Demuxer::Side::connecting);
    peer.demuxer->in()->receive(bytesOf(frameHex(2, 0, 0, "", 1, 0)));
    peer.demuxer->serveFrames(1);
    peer.demuxer->sendReceipt();
    std::string const frame = hex(takeBytes(peer.out()));
    EXPECT_NE(attributeLogPage(TREE).find("\n" + frame + "\n"), std::string::npos) << frame;
}

TEST(DocumentedFrames, OfAChunkThatIsNotTheLast) {
    auto const out = make<Qor::NboAttrLog::Out>();
    using Token = Qor::NboAttrLog::Out::TransactToken;
    Qor::String8::IteratorConst position(Qor::String8("abc"));
    Qor::Ptr<Qor::Connection::Out> const connection(out);
    connection->chunkLimitIs(2);
    out->nextHeaderIs({Qor::EntityId(3), 387});
    out << Token::begin;
    connection << position;
    out << Token::end;
    std::string const frame = hex(takeBytes(*out));
    EXPECT_NE(attributeLogPage(TREE).find("\n" + frame + "\n"), std::string::npos) << frame;
}

}  // namespace
