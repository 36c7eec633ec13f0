#include "NaiveRow.h"

#include <set>

#include "ModelTable.h"

namespace Naive {

namespace {

struct Step {
    std::string attribute;
    char const* how;  // copying: plain, guarded, mirrored, mirrored unguarded, added to
};

using Steps = std::vector<Step>;

// How each class is copied; those that are not here never are.
std::map<std::string, Steps> const& copies() {
    static std::map<std::string, Steps> const all{
        {"Vgw::Global", {{"pSwitch", "GM"}, {"manager", "GM"}}},
        {"Vgw::Manager", {{"target", ""}}},
        {"Vgw::PhysicalSwitch",
         {{"displayName", "G"},
          {"desc", "G"},
          {"port", "GM"},
          {"mgmtIp", "GM"},
          {"tunnelIp", "GM"},
          {"fault", "GM"}}},
        {"Vgw::PhysicalPort",
         {{"displayName", "G"},
          {"desc", "G"},
          {"vlanBinding", "GM"},
          {"vlanStat", "GM"},
          {"fault", "GM"}}},
        {"Vgw::LogicalSwitch", {{"displayName", ""}, {"desc", ""}, {"tunnelKey", ""}}},
        {"Vgw::UcastMacsLocal", {{"vtepIp", ""}, {"uuid", ""}, {"vni", ""}}},
        {"Vgw::McastMacsLocal",
         {{"vtepIp", "M"}, {"physicalLocatorSet", ""}, {"uuid", ""}, {"vni", ""}}},
        {"Vgw::UcastMacsRemote",
         {{"mac", ""}, {"logicalSwitch", ""}, {"physicalLocator", ""}, {"ipAddr", ""}}},
        {"Vgw::McastMacsRemote",
         {{"mac", ""}, {"logicalSwitch", ""}, {"physicalLocatorSet", ""}, {"ipAddr", ""}}},
        {"Vgw::PhysicalLocator",
         {{"key", "G"},
          {"bfd", "GM"},
          {"bfdStatus", "GM"},
          {"ucastMacRef", "A"},
          {"mcastMacRef", "A"}}},
        {"Vgw::PhysicalLocatorSet", {{"locator", "GM"}}},
    };
    return all;
}

struct Guarded {
    std::string attribute;
    std::string guard;  // empty for none
};

std::map<std::string, std::vector<Guarded>> const& comparisons() {
    static std::map<std::string, std::vector<Guarded>> const all{
        {"Vgw::Global", {{"pSwitch", ""}, {"manager", ""}}},
        {"Vgw::Manager", {{"target", ""}}},
        {"Vgw::PhysicalSwitch",
         {{"displayName", "displayName"},
          {"desc", "desc"},
          {"port", "ports"},
          {"mgmtIp", "mgmtIp"},
          {"tunnelIp", "tunnelIp"},
          {"fault", "fault"}}},
        {"Vgw::PhysicalPort",
         {{"displayName", "displayName"},
          {"desc", "desc"},
          {"vlanBinding", "vlanBinding"},
          {"vlanStat", "vlanStat"},
          {"fault", "fault"}}},
        {"Vgw::PhysicalLocator", {{"key", "key"}, {"bfd", "bfd"}, {"bfdStatus", "bfdStatus"}}},
        {"Vgw::PhysicalLocatorSet", {{"locator", "locator"}}},
    };
    return all;
}

// A standby manager is copied and compared as a manager.
std::string kin(std::string const& className) {
    return className == "Vgw::BackupManager" ? "Vgw::Manager" : className;
}

bool isDefault(std::string const& value) { return value == "false" || value == "''"; }

std::string valueAt(Members const& members, std::string const& key, std::string const& otherwise) {
    auto const at = members.find(key);
    return at == members.end() ? otherwise : at->second;
}

void append(Changes& all, Changes const& more) { all.insert(all.end(), more.begin(), more.end()); }

}  // namespace

Row::Row(std::string name) : className(std::move(name)) {
    std::string at = className;
    while (!at.empty() && at != "Qor::Entity") {
        std::string above;
        for (auto const& row : Contract::modelTable()) {
            if (row.name != at) {
                continue;
            }
            above = row.base;
            for (auto const& a : row.attributes) {
                if (!a.key.empty()) {
                    keyed[a.name];
                } else if (a.kind == "scalar") {
                    single[a.name] = a.defaultValue;
                }
            }
        }
        at = above;
    }
    // Each row class stores its own kind, which bears the name of the class.
    if (single.count("type")) {
        std::string kind = className.substr(std::string("Vgw::").size());
        kind[0] = static_cast<char>(kind[0] - 'A' + 'a');
        single["type"] = "'" + kind + "'";
    }
}

Changes Row::set(std::string const& attribute, std::string const& value) {
    std::string& held = single.at(attribute);
    if (held == value) {
        return {};
    }
    held = value;
    return {{attribute, ""}};
}

Changes Row::set(std::string const& attribute, std::string const& key, std::string const& value) {
    Members& members = keyed.at(attribute);
    auto const at = members.find(key);
    if (at != members.end() && at->second == value) {
        return {};
    }
    members[key] = value;
    return {{attribute, key}};
}

Changes Row::remove(std::string const& attribute, std::string const& key) {
    return keyed.at(attribute).erase(key) ? Changes{{attribute, key}} : Changes{};
}

Changes Row::removeAll(std::string const& attribute) {
    Changes changes;
    for (auto const& member : std::exchange(keyed.at(attribute), {})) {
        changes.emplace_back(attribute, member.first);
    }
    return changes;
}

bool Row::marks(std::string const& attribute) const {
    return valueAt(keyed.at("invalidAttrib"), "'" + attribute + "'", "false") == "true";
}

bool Row::canClone(Row const& source) const {
    static std::set<std::string> const macRows{"Vgw::UcastMacsLocal", "Vgw::McastMacsLocal",
                                               "Vgw::UcastMacsRemote", "Vgw::McastMacsRemote"};
    bool const isValid = !macRows.count(className) || source.keyed.at("invalidAttrib").empty();
    return kin(className) == kin(source.className) && copies().count(kin(className)) && isValid;
}

Changes Row::mirror(std::string const& attribute, Row const& source) {
    Changes changes;
    Members const theirs = source.keyed.at(attribute);
    Members const mine = keyed.at(attribute);
    for (auto const& [key, value] : mine) {
        if (!theirs.count(key) || isDefault(theirs.at(key))) {
            append(changes, remove(attribute, key));
        }
    }
    for (auto const& [key, value] : theirs) {
        append(changes, set(attribute, key, value));
    }
    return changes;
}

Changes Row::clone(Row const& source) {
    Changes changes;
    for (auto const& [attribute, how] : copies().at(kin(className))) {
        std::string const marksOf(how);
        if (marksOf.find('G') != std::string::npos && source.marks(attribute)) {
            continue;
        }
        if (marksOf == "A") {
            for (auto const& member : source.keyed.at(attribute)) {
                append(changes, set(attribute, member.first, "true"));
            }
        } else if (marksOf.find('M') != std::string::npos) {
            append(changes, mirror(attribute, source));
        } else {
            append(changes, set(attribute, source.single.at(attribute)));
        }
    }
    return changes;
}

bool Row::sameMembers(std::string const& attribute, Row const& other) const {
    Members const& mine = keyed.at(attribute);
    Members const& theirs = other.keyed.at(attribute);
    if (mine.size() != theirs.size()) {
        return false;
    }
    for (auto const& [key, value] : mine) {
        auto const at = theirs.find(key);
        if (at == theirs.end() ? !isDefault(value) : at->second != value) {
            return false;
        }
    }
    return true;
}

std::optional<bool> Row::isEqualTo(Row const& other) const {
    auto const found = comparisons().find(kin(className));
    if (found == comparisons().end() || kin(className) != kin(other.className)) {
        return std::nullopt;
    }
    for (auto const& [attribute, guard] : found->second) {
        if (!guard.empty() && marks(guard)) {
            continue;
        }
        bool const same = keyed.count(attribute)
                              ? sameMembers(attribute, other)
                              : single.at(attribute) == other.single.at(attribute);
        if (!same) {
            return false;
        }
    }
    return true;
}

}  // namespace Naive
