#include <modelc/check/SymbolTable.h>

#include <algorithm>

namespace Modelc {

bool SymbolTable::add(Type const* type, Place place, Unit const* unit) {
    Symbol symbol{type, place, {}};
    if (unit != nullptr) symbol.units.insert(unit);
    return symbols_.emplace(type->fullName, std::move(symbol)).second;
}

void SymbolTable::share(std::string const& fullName, Unit const* unit) {
    symbols_.at(fullName).units.insert(unit);
}

Symbol const* SymbolTable::symbol(std::string const& fullName) const {
    auto const found = symbols_.find(fullName);
    return found == symbols_.end() ? nullptr : &found->second;
}

void SymbolTable::visibleIs(Unit const* from, Unit const* imported) {
    std::set<Unit const*>& sees = sees_[from];
    sees.insert(imported);
    auto const through = sees_.find(imported);
    if (through != sees_.end()) sees.insert(through->second.begin(), through->second.end());
}

Symbol const* SymbolTable::visible(std::string const& fullName, Unit const& unit) const {
    Symbol const* const found = symbol(fullName);
    if (found == nullptr || found->units.empty() || found->units.contains(&unit)) return found;
    auto const sees = sees_.find(&unit);
    if (sees == sees_.end()) return nullptr;
    bool const isSeen = std::any_of(found->units.begin(), found->units.end(),
                                    [&](Unit const* u) { return sees->second.contains(u); });
    return isSeen ? found : nullptr;
}

Symbol const* SymbolTable::lookUp(std::string const& name, Unit const& unit) const {
    for (std::string around = unit.nameSpace; !around.empty();) {
        if (Symbol const* found = visible(around + "::" + name, unit)) return found;
        std::size_t const outer = around.rfind("::");
        around = outer == std::string::npos ? std::string() : around.substr(0, outer);
    }
    return visible(name, unit);
}

}  // namespace Modelc
