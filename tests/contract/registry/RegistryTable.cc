#include "RegistryTable.h"

namespace Contract {

std::vector<RegisteredType> const& registryTable() {
    static std::vector<RegisteredType> const all = [] {
        std::vector<RegisteredType> types;
        for (auto const& part : {tableOfSwitchesAndPorts(), tableOfMacsAndLocators(),
                                 tableOfTheDatabase(), tableOfTheAgent()}) {
            types.insert(types.end(), part.begin(), part.end());
        }
        return types;
    }();
    return all;
}

RegisteredType enumeration(std::string const& name, std::vector<std::string> const& literals) {
    RegisteredType type{name, Sort::enumeration, "", {}, false, {}};
    for (std::string const& literal : literals) {
        int const number = static_cast<int>(type.own.size());
        type.own.push_back({literal, number, name, "", FlagsOf::literal, Made::step, {}});
    }
    return type;
}

}  // namespace Contract
