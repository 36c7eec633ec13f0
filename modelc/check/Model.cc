#include <modelc/check/Model.h>

namespace Modelc {

std::string Type::nameSpace() const {
    std::size_t const at = fullName.rfind("::");
    return at == std::string::npos ? std::string() : fullName.substr(0, at);
}

std::string Type::shortName() const {
    std::size_t const at = fullName.rfind("::");
    return at == std::string::npos ? fullName : fullName.substr(at + 2);
}

std::string const& nameOf(Member const& member) {
    if (auto const* attribute = std::get_if<Attribute>(&member)) return attribute->name;
    return std::get<Operation>(member).name;
}

Entity const& Entity::root() const {
    Entity const* at = this;
    while (at->base != nullptr) at = at->base;
    return *at;
}

std::uint32_t Entity::level() const {
    std::uint32_t result = 1;
    for (Entity const* at = base; at != nullptr; at = at->base) ++result;
    return result;
}

}  // namespace Modelc
