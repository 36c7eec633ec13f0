#include <modelc/emit/RegistryPlace.h>

namespace Modelc {

std::string parentFolder(std::string const& folder) {
    std::size_t const at = folder.rfind('/');
    return at == std::string::npos ? folder : folder.substr(0, at);
}

std::string unitFolder(Unit const& unit) {
    return parentFolder(unit.entitiesFolder.empty() ? unit.valuesFolder : unit.entitiesFolder);
}

std::string registryHeader(Unit const& unit, std::string const& className) {
    return unitFolder(unit) + "/registry/" + className + ".h";
}

std::string registrationHeader(Unit const& unit) {
    return registryHeader(unit, unit.name + "Registration");
}

}  // namespace Modelc
