#include <vgwd/agent/ManagerRequest.h>

#include <vector>

namespace Vgwd {
namespace {

using nlohmann::json;

// The one row of Global; null when the database has none yet.
Vgw::Global::PtrConst globalOf(Vgw::HwVtepOvsdb const& database) {
    auto const root = database.rootIteratorConst();
    return root ? Vgw::Global::PtrConst(root.value()) : Vgw::Global::PtrConst();
}

// The uuids of the managers with one of the targets.
std::vector<std::string> managersOf(Vgw::HwVtepOvsdb const& database,
                                    std::set<std::string> const& targets) {
    std::vector<std::string> found;
    for (auto manager = database.managerIteratorConst(); manager; ++manager)
        if (targets.contains(std::string(manager.value()->target().view())))
            found.emplace_back(manager.key().view());
    return found;
}

std::vector<std::string> referredBy(Vgw::Global::PtrConst const& global) {
    std::vector<std::string> found;
    if (!global) return found;
    for (auto key = global->managerIteratorConst(); key; ++key)
        found.emplace_back(key.key().view());
    return found;
}

json uuid(std::string_view text) { return {"uuid", text}; }

json uuids(std::vector<std::string> const& texts) {
    json set = json::array();
    for (std::string const& text : texts) set.push_back(uuid(text));
    return {"set", set};
}

json whereIs(Vgw::Global::PtrConst const& global) {
    if (!global) return json::array();
    return json::array({{"_uuid", "==", uuid(global->name().view())}});
}

json asSeen(Vgw::Global::PtrConst const& global) {
    json rows = json::array();
    if (global) rows.push_back({{"managers", uuids(referredBy(global))}});
    return {{"op", "wait"},
            {"timeout", 0},
            {"table", "Global"},
            {"where", whereIs(global)},
            {"columns", json::array({"managers"})},
            {"until", "=="},
            {"rows", rows}};
}

json comment(std::string const& text) { return {{"op", "comment"}, {"comment", "vgwd: " + text}}; }

// The row of Global that refers to the manager and to no other.
json referring(Vgw::Global::PtrConst const& global, json const& manager) {
    json operation{{"op", global ? "update" : "insert"},
                   {"table", "Global"},
                   {"row", {{"managers", manager}}}};
    if (global) operation["where"] = whereIs(global);
    return operation;
}

}  // namespace

json managerSetting(Vgw::HwVtepOvsdb const& database, std::string_view target) {
    auto const global = globalOf(database);
    std::vector<std::string> const there = managersOf(database, {std::string(target)});
    if (!there.empty() && referredBy(global) == there) return json::array();
    json operations{comment("set manager " + std::string(target)), asSeen(global)};
    if (!there.empty()) {
        operations.push_back(referring(global, uuid(there.front())));
        return operations;
    }
    operations.push_back({{"op", "insert"},
                          {"table", "Manager"},
                          {"row", {{"target", target}}},
                          {"uuid-name", "manager"}});
    operations.push_back(referring(global, {"named-uuid", "manager"}));
    return operations;
}

json managerRemoval(Vgw::HwVtepOvsdb const& database, std::set<std::string> const& targets) {
    auto const global = globalOf(database);
    std::vector<std::string> const there = managersOf(database, targets);
    if (there.empty() || !global) return json::array();
    json operations = json::array({comment("remove the manager")});
    operations.push_back({{"op", "mutate"},
                          {"table", "Global"},
                          {"where", whereIs(global)},
                          {"mutations", json::array({{"managers", "delete", uuids(there)}})}});
    return operations;
}

}  // namespace Vgwd
