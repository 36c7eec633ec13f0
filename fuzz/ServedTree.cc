#include <fuzz/FuzzInput.h>
#include <fuzz/ServedTree.h>
#include <vgw/tables/UcastMacsLocal.h>

#include <array>

using Qor::make;
using Qor::Name;

namespace {

using Qor::NboAttrLog::Session;

// Children of one owning collection: each has this parent, and as many are met as are counted.
template <class Iterator>
void mustOwn(Qor::Entity const& owner, Iterator at, std::size_t count) {
    for (; at; ++at, --count) {
        must(at.value()->qorParent() == &owner);
        must(at.key() == at.value()->qorName());
    }
    must(count == 0);
}

void put(std::string& text, Qor::String8 const& value) {
    text += value.view();
    text += ';';
}

template <class Iterator>
void putPairs(std::string& text, Iterator at) {
    for (; at; ++at) {
        using Qor::valueToStrep;
        put(text, valueToStrep(at.key()));
        put(text, valueToStrep(at.value()));
    }
}

void putRows(std::string& text, Vgw::HwVtepOvsdb const& db) {
    for (auto at = db.logicalSwitchIterator(); at; ++at) {
        put(text, at.key());
        put(text, at.value()->displayName());
        put(text, at.value()->desc());
        text += std::to_string(at.value()->tunnelKey());
    }
    for (auto at = db.physicalSwitchRawIterator(); at; ++at) {
        put(text, at.key());
        put(text, at.value()->desc());
        putPairs(text, at.value()->portIterator());
        putPairs(text, at.value()->mgmtIpIterator());
    }
    for (auto at = db.physicalPortIterator(); at; ++at) {
        put(text, at.key());
        putPairs(text, at.value()->vlanBindingIterator());
        putPairs(text, at.value()->vlanStatIterator());
    }
    for (auto at = db.physicalLocatorRawIterator(); at; ++at) {
        put(text, at.key());
        putPairs(text, at.value()->bfdIterator());
        putPairs(text, at.value()->ucastMacRefIterator());
    }
    for (auto at = db.rootIterator(); at; ++at) put(text, at.key());
    for (auto at = db.managerIterator(); at; ++at) put(text, at.value()->target());
}

// References to what stands in the tree only: others have no way to a copy.
void putReferences(std::string& text, Vgw::HwVtepOvsdb const& db) {
    for (auto at = db.physicalSwitchIterator(); at; ++at) {
        bool const isInTree = at.value()->qorParent() == &db;
        if (isInTree) put(text, at.key() + Qor::String8(at.value()->qorName()));
    }
}

}  // namespace

std::string textOf(Vgw::Status const& status) {
    std::string text = status.running() ? "running;" : "";
    text += std::to_string(static_cast<unsigned>(status.vtepListType()));
    if (auto const session = status.ovsdbSessionStatus()) {
        put(text, session->qorName());
        put(text, session->lastMsgSent());
    }
    if (auto const db = status.ovsdb()) {
        put(text, db->qorName());
        putRows(text, *db);
        putReferences(text, *db);
    }
    return text;
}

ServedTree::ServedTree() {
    root->entryIs(Name("status"), status);
    root->entryIs(Name("cli"), cli);
    root->entryIs(Name("macs"), macs);
    auto const db = status->ovsdbIs(Name("s"));
    db->logicalSwitchIs(Name("a"))->descIs("a switch");
    auto const leaf = db->physicalSwitchRawIs(Name("a"));
    leaf->portIs("b", true);
    db->physicalSwitchIs("a", leaf);
    db->physicalPortIs(Name("a"))->vlanBindingIs(1, "a");
    db->physicalLocatorRawIs(Name("a"))->bfdIs("a", "b");
    macs->entryIs(Name("a"), make<Vgw::UcastMacsLocal>(Kelp::EthAddr("00:00:5e:00:53:01")));
    macs->entryIs(Name("dir"), make<Qor::Dir>(Name("dir")));
}

void ServedTree::change(std::uint8_t which) {
    auto const db = status->ovsdbIs(Name("s"));
    Name const name(std::string_view(which & 8 ? "b" : "a"));
    switch (which % 8) {
        case 0:
            return status->runningIs(which & 16);
        case 1:
            return db->logicalSwitchIs(name)->descIs(which & 16 ? "x" : "y");
        case 2:
            db->logicalSwitchDel(name);
            return;
        case 3:
            return db->physicalPortIs(name)->vlanBindingIs(which, which & 16 ? "x" : "y");
        case 4:
            return db->physicalSwitchIs("b", db->physicalSwitchRawIs(name));
        case 5:
            db->physicalSwitchDel("b");
            return;
        case 6:
            return macs->entryIs(name, make<Qor::Dir>(name));
        default:
            return cli->managerPortIs(which);
    }
}

void ServedTree::mustBeConsistent() const {
    for (auto at = macs->entryIteratorConst(); at; ++at) {
        must(at.value()->qorParent() == macs.ptr());
    }
    auto const db = status->ovsdb();
    if (!db) return;
    must(db->qorParent() == status.ptr());
    mustOwn(*db, db->logicalSwitchIterator(), db->logicalSwitchs());
    mustOwn(*db, db->physicalSwitchRawIterator(), db->physicalSwitchRaws());
    mustOwn(*db, db->physicalPortIterator(), db->physicalPorts());
    mustOwn(*db, db->physicalLocatorRawIterator(), db->physicalLocatorRaws());
    mustOwn(*db, db->rootIterator(), db->roots());
    mustOwn(*db, db->managerIterator(), db->managers());
}

std::string ServedTree::text() const {
    std::string result = textOf(*status) + std::to_string(cli->managerPort());
    for (auto at = macs->entryIteratorConst(); at; ++at) put(result, at.key());
    return result;
}

Qor::String8 FuzzDoor::onAskedToCall(Qor::String8 const& path, Qor::String8 const& operation,
                                     Qor::Entity& entity) {
    bool const isBound = operation == "clone" || operation == "toDisplayMsg";
    return isBound ? SessionListener::onAskedToCall(path, operation, entity) : Qor::String8();
}

ServedSession::ServedSession(Qor::Ptr<Qor::Dir> const& root, bool peerMayWrite, bool takesTypes) {
    Qor::NboAttrLog::MemoryTransport::connect(peer_, own_);
    Session::Config config;
    config.side = Qor::NboAttrLog::Demuxer::Side::accepting;
    config.peerMayWrite = peerMayWrite;
    config.quota.entities = 200;
    config.quota.openTextBytes = 1U << 16;
    config.mounts = 4;
    config.ringBlocks = 2;
    config.takesTypes = takesTypes;
    session_ = std::make_unique<Session>(config, own_, root);
    session_->listenerIs(&door_);
}

void ServedSession::receive(std::string_view bytes) {
    peer_.write(bytes);
    serve();
}

void ServedSession::serve() {
    session_->service();
    std::array<unsigned char, 4096> sink;
    while (peer_.read(sink) != 0) {
    }
    session_->service();
}
