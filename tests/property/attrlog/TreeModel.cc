#include "TreeModel.h"

namespace {

using Qor::Name;
using Qor::String8;

String8 name8(std::string const& text) { return String8(text); }

std::string plain(String8 const& text) { return std::string(text.view()); }

Vgw::PhysicalLocatorKey keyOf(std::string const& name) {
    return Vgw::PhysicalLocatorKey(Vgw::vxlan_over_ipv4,
                                   Kelp::IpAddr("192.0.2." + std::to_string(name[0] - 'a' + 1)));
}

void addSwitches(Vgw::HwVtepOvsdb const& db, Lines& lines) {
    for (auto at = db.logicalSwitchIterator(); at; ++at) {
        std::string const path = "ls/" + plain(at.key());
        lines[path] = "";
        lines[path + "/desc"] = plain(at.value()->desc());
        lines[path + "/tunnelKey"] = std::to_string(at.value()->tunnelKey());
    }
    for (auto at = db.physicalSwitchRawIterator(); at; ++at) {
        std::string const path = "ps/" + plain(at.key());
        lines[path] = "";
        lines[path + "/displayName"] = plain(at.value()->displayName());
        for (auto port = at.value()->portIterator(); port; ++port) {
            lines[path + "/port/" + plain(port.key())] = port.value() ? "true" : "false";
        }
    }
    for (auto at = db.physicalSwitchIterator(); at; ++at) {
        // A row that was taken out of the database stays out of the copies, though something holds
        // it.
        if (db.physicalSwitchRaw(at.value()->name()) != at.value()) continue;
        lines["ref/" + plain(at.key())] = plain(at.value()->name());
    }
}

void addPorts(Vgw::HwVtepOvsdb const& db, Lines& lines) {
    for (auto at = db.physicalPortIterator(); at; ++at) {
        std::string const path = "pp/" + plain(at.key());
        lines[path] = "";
        for (auto vlan = at.value()->vlanBindingIterator(); vlan; ++vlan) {
            lines[path + "/vlan/" + std::to_string(vlan.key())] = plain(vlan.value());
        }
    }
    for (auto at = db.physicalLocatorRawIterator(); at; ++at) {
        std::string const path = "pl/" + plain(at.key());
        lines[path] = "";
        for (auto bfd = at.value()->bfdIterator(); bfd; ++bfd) {
            lines[path + "/bfd/" + plain(bfd.key())] = plain(bfd.value());
        }
    }
    for (auto at = db.remoteLocatorIterator(); at; ++at) {
        if (db.physicalLocatorRaw(at.value()->name()) != at.value()) continue;
        lines["remote/" + plain(at.key().dstIp().stringValue())] = plain(at.value()->name());
    }
}

}  // namespace

Lines linesOf(Vgw::Status const& status) {
    Lines lines;
    if (status.running()) lines["running"] = "true";
    if (auto const session = status.ovsdbSessionStatus()) {
        lines["session"] = plain(session->lastMsgSent());
    }
    if (auto const db = status.ovsdb()) {
        addSwitches(*db, lines);
        addPorts(*db, lines);
    }
    return lines;
}

std::string difference(Lines const& left, Lines const& right) {
    for (auto const& [path, value] : left) {
        auto const found = right.find(path);
        if (found == right.end()) return path + " is missing";
        if (found->second != value) return path + " differs";
    }
    for (auto const& line : right) {
        if (!left.contains(line.first)) return line.first + " is too much";
    }
    return {};
}

ChangingTree::ChangingTree(Vgw::Status::Ptr status, std::uint64_t seed)
    : status_(std::move(status)), random_(seed) {
    status_->ovsdbIs(Name("db"));
}

// Mostly short, at times empty, at times longer than a record.
std::string ChangingTree::text() {
    std::uint64_t const kind = below(40);
    if (kind == 0) return {};
    std::size_t const length = kind == 1 ? 30000 + below(60000) : 1 + below(12);
    std::string result;
    for (std::size_t i = 0; i < length; ++i) result += static_cast<char>('a' + below(26));
    return result;
}

void ChangingTree::eraseBelow(std::string const& path) {
    std::erase_if(model_, [&](auto const& line) {
        return line.first == path || line.first.starts_with(path + "/");
    });
}

void ChangingTree::step() {
    std::string const name(1, static_cast<char>('a' + below(5)));
    switch (below(9)) {
        case 0:
        case 1:
            return logicalSwitch(name);
        case 2:
        case 3:
        case 4:
            return physicalSwitch(name);
        case 5:
        case 6:
            return port(name);
        case 7:
            return locator(name);
        default:
            return status();
    }
}

void ChangingTree::logicalSwitch(std::string const& name) {
    auto const db = status_->ovsdbIs(Name("db"));
    std::string const path = "ls/" + name;
    if (below(6) == 0) {
        db->logicalSwitchDel(Name(name8(name)));
        return eraseBelow(path);
    }
    auto const row = db->logicalSwitchIs(Name(name8(name)));
    if (!has(path)) {
        set(path, "");
        set(path + "/desc", "");
        set(path + "/tunnelKey", "16777216");
    }
    if (below(2) == 0) {
        std::string const desc = text();
        row->descIs(name8(desc));
        set(path + "/desc", desc);
    } else {
        auto const key = static_cast<Qor::U32>(below(1000));
        row->tunnelKeyIs(key);
        set(path + "/tunnelKey", std::to_string(key));
    }
}

void ChangingTree::physicalSwitch(std::string const& name) {
    auto const db = status_->ovsdbIs(Name("db"));
    std::string const path = "ps/" + name;
    if (below(8) == 0) {
        db->physicalSwitchDel(name8(name));
        db->physicalSwitchRawDel(Name(name8(name)));
        erase("ref/" + name);
        return eraseBelow(path);
    }
    auto const row = db->physicalSwitchRawIs(Name(name8(name)));
    if (!has(path)) {
        set(path, "");
        set(path + "/displayName", "");
    }
    std::string const key(1, static_cast<char>('p' + below(4)));
    switch (below(5)) {
        case 0:
            row->displayNameIs(Name(name8(key)));
            return set(path + "/displayName", key);
        case 1:
            row->portDel(name8(key));
            return erase(path + "/port/" + key);
        case 2:
            db->physicalSwitchIs(name8(name), row);
            return set("ref/" + name, name);
        case 3:
            db->physicalSwitchDel(name8(name));
            return erase("ref/" + name);
        default: {
            bool const on = below(2) == 0;
            row->portIs(name8(key), on);
            return set(path + "/port/" + key, on ? "true" : "false");
        }
    }
}

void ChangingTree::port(std::string const& name) {
    auto const db = status_->ovsdbIs(Name("db"));
    std::string const path = "pp/" + name;
    if (below(10) == 0) {
        db->physicalPortDel(Name(name8(name)));
        return eraseBelow(path);
    }
    auto const row = db->physicalPortIs(Name(name8(name)));
    set(path, "");
    auto const vlan = static_cast<Qor::U16>(below(6));
    std::string const line = path + "/vlan/" + std::to_string(vlan);
    if (below(3) == 0) {
        row->vlanBindingDel(vlan);
        return erase(line);
    }
    std::string const value = text();
    row->vlanBindingIs(vlan, name8(value));
    set(line, value);
}

void ChangingTree::locator(std::string const& name) {
    auto const db = status_->ovsdbIs(Name("db"));
    std::string const path = "pl/" + name;
    auto const key = keyOf(name);
    std::string const remote = "remote/" + plain(key.dstIp().stringValue());
    if (below(6) == 0) {
        db->remoteLocatorDel(key);
        db->physicalLocatorRawDel(Name(name8(name)));
        erase(remote);
        return eraseBelow(path);
    }
    auto const row = db->physicalLocatorRawIs(Name(name8(name)));
    set(path, "");
    db->remoteLocatorIs(key, row);
    set(remote, name);
    std::string const value = text();
    row->bfdIs("enable", name8(value));
    set(path + "/bfd/enable", value);
}

void ChangingTree::status() {
    switch (below(8)) {
        case 0:
            status_->ovsdbDel();
            status_->ovsdbIs(Name("db"));
            std::erase_if(model_, [](auto const& line) {
                return line.first != "running" && line.first != "session";
            });
            return;
        case 1:
            status_->ovsdbSessionStatusDel();
            return erase("session");
        case 2:
        case 3:
        case 4: {
            std::string const value = text();
            status_->ovsdbSessionStatusIs(Name("s"))->lastMsgSentIs(name8(value));
            return set("session", value);
        }
        default: {
            bool const on = below(2) == 0;
            status_->runningIs(on);
            return on ? set("running", "true") : erase("running");
        }
    }
}
