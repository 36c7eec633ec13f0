#include <vgwd/show/Contents.h>

#include <vgwd/show/RowContents.h>

#include <algorithm>

namespace Vgwd {
namespace {

using Vgw::HwVtepOvsdb;

// Owned rows, under their names.
template <class Walk>
void tellRows(std::string_view collection, Walk walk, ContentSink& sink) {
    using X = std::remove_cvref_t<decltype(*walk.value())>;
    std::vector<Qor::Ptr<X const>> rows;
    for (; walk; ++walk) rows.emplace_back(walk.value());
    std::sort(rows.begin(), rows.end(),
              [](auto const& a, auto const& b) { return a->qorName() < b->qorName(); });
    sink.begin(collection);
    for (auto const& row : rows) {
        sink.begin(row->qorName().view());
        tellRow(*row, sink);
        sink.end();
    }
    sink.end();
}

// References: the key's text, and the name of the row.
template <class Walk, class Text>
void tellReferences(std::string_view collection, Walk walk, Text const& text, ContentSink& sink) {
    std::vector<std::pair<std::string, std::string>> entries;
    for (; walk; ++walk) entries.emplace_back(text(walk.key()), walk.value()->qorName().view());
    std::sort(entries.begin(), entries.end());
    sink.begin(collection);
    for (auto const& [key, target] : entries) sink.value(key, std::string_view(target));
    sink.end();
}

std::string keyText(Qor::String8 const& key) { return std::string(key.view()); }
std::string addressText(Kelp::IpAddr key) { return std::string(key.stringValue().view()); }
std::string locatorKeyText(Vgw::PhysicalLocatorKey const& key) {
    return std::string(Vgw::stringValue(key.encapType()).view()) + " " + addressText(key.dstIp());
}

void tellDatabase(HwVtepOvsdb const& database, ContentSink& sink) {
    sink.begin("ovsdb");
    tellRows("logicalBindingStats", database.logicalBindingStatsIteratorConst(), sink);
    tellRows("logicalSwitch", database.logicalSwitchIteratorConst(), sink);
    tellRows("manager", database.managerIteratorConst(), sink);
    tellReferences("physicalLocator", database.physicalLocatorIteratorConst(), addressText, sink);
    tellRows("physicalLocatorRaw", database.physicalLocatorRawIteratorConst(), sink);
    tellRows("physicalLocatorSet", database.physicalLocatorSetIteratorConst(), sink);
    tellRows("physicalPort", database.physicalPortIteratorConst(), sink);
    tellReferences("physicalSwitch", database.physicalSwitchIteratorConst(), keyText, sink);
    tellRows("physicalSwitchRaw", database.physicalSwitchRawIteratorConst(), sink);
    tellReferences("remoteLocator", database.remoteLocatorIteratorConst(), locatorKeyText, sink);
    tellRows("root", database.rootIteratorConst(), sink);
    sink.end();
}

template <class X>
void tellMacRows(std::string_view table, Qor::Dir const& directory, ContentSink& sink) {
    std::vector<std::pair<Qor::Name, Qor::Ptr<X const>>> rows;
    for (auto walk = directory.entryIteratorConst(); walk; ++walk)
        if (auto const row = Qor::dynamicCast<X const>(walk.value()))
            rows.emplace_back(walk.key(), row);
    std::sort(rows.begin(), rows.end(),
              [](auto const& a, auto const& b) { return a.first < b.first; });
    sink.begin(table);
    for (auto const& [name, row] : rows) {
        sink.begin(name.view());
        tellRow(*row, sink);
        sink.end();
    }
    sink.end();
}

void tellSession(Vgw::OvsdbSessionStatus const& session, ContentSink& sink) {
    sink.begin("ovsdbSessionStatus");
    sink.value("lastErrorCode", session.lastErrorCode().view());
    sink.value("lastFailedMsg", session.lastFailedMsg().view());
    sink.value("lastFailedMsgDetail", session.lastFailedMsgDetail().view());
    sink.value("lastMsgSent", session.lastMsgSent().view());
    sink.value("lastMsgSentDetail", session.lastMsgSentDetail().view());
    sink.value("lastSuccessfulMsg", session.lastSuccessfulMsg().view());
    sink.value("lastSuccessfulMsgDetail", session.lastSuccessfulMsgDetail().view());
    sink.value("numFailedMsg", std::uint64_t{session.numFailedMsg()});
    sink.value("numSuccessfulMsg", std::uint64_t{session.numSuccessfulMsg()});
    sink.value("sessionState", Vgw::stringValue(session.sessionState()).view());
    sink.end();
}

}  // namespace

void tellMirror(Ovsdb::Mirror const& mirror, ContentSink& sink) {
    tellMirror(mirror.database(), mirror.directories(), mirror.lost(), sink);
}

void tellMirror(HwVtepOvsdb const& database, Ovsdb::MacDirectories const& directories,
                std::vector<std::string> const& lost, ContentSink& sink) {
    sink.list("lost", {lost.begin(), lost.end()});
    tellMacRows<Vgw::McastMacsLocal>("mcastMacsLocal", *directories.mcastMacsLocal, sink);
    tellMacRows<Vgw::McastMacsRemote>("mcastMacsRemote", *directories.mcastMacsRemote, sink);
    tellDatabase(database, sink);
    tellMacRows<Vgw::UcastMacsLocal>("ucastMacsLocal", *directories.ucastMacsLocal, sink);
    tellMacRows<Vgw::UcastMacsRemote>("ucastMacsRemote", *directories.ucastMacsRemote, sink);
}

void tellStatus(Vgw::Status const& status, ContentSink& sink) {
    sink.begin("status");
    if (auto const session = status.ovsdbSessionStatus()) tellSession(*session, sink);
    sink.value("running", std::string_view(status.running() ? "true" : "false"));
    sink.value("vtepListType", Vgw::stringValue(status.vtepListType()).view());
    sink.end();
}

}  // namespace Vgwd
