// What every other program relies on when it asks this process for its types, written down once
// more by hand: each type with its base, its constructor's arguments and its own attributes, each
// attribute with its number, its types, its words of flags and its arguments. Numbers and words
// travel between processes: a change here breaks whoever runs an older library.
#ifndef TESTS_CONTRACT_REGISTRY_REGISTRY_TABLE_H
#define TESTS_CONTRACT_REGISTRY_REGISTRY_TABLE_H

#include <cstdint>
#include <string>
#include <vector>

namespace Contract {

/// A class of flags: the two words, and the word for tools that look into types.
struct Flags {
    std::uint32_t low = 0;
    std::uint32_t high = 0;
    bool isFunction = false;
    bool isIndependentDomainAttr = false;
    bool hasInternalIndex = false;
};

namespace FlagsOf {

inline constexpr Flags literal{0x00020001, 0x40200400};
inline constexpr Flags nondestructing{0x00002043, 0x01000000};
inline constexpr Flags functionBase{0x00022001, 0x00000400, true};
inline constexpr Flags function{0x00020001, 0x00000400, true};
inline constexpr Flags functionWithArg{0x00020001, 0x00000410, true};
inline constexpr Flags derived{0x00020001, 0x00000400};
inline constexpr Flags key{0x00200001, 0x00000400};
inline constexpr Flags constField{0x00220109, 0x40000400, false, true};
inline constexpr Flags scalar{0x00220143, 0x01000400, false, true};
inline constexpr Flags scalarBase{0x00222143, 0x01000400, false, true};
inline constexpr Flags valueMap{0x01A20143, 0x01000400, false, true};
inline constexpr Flags valueMapBase{0x01A22143, 0x01000400, false, true};
inline constexpr Flags childEntity{0x08220143, 0x11000400, false, true};
inline constexpr Flags childMap{0x09A20143, 0x11000400, false, true, true};
inline constexpr Flags refMap{0x09A20143, 0x01000400, false, true};
inline constexpr Flags classConstant{0x00220001, 0x40000410};

}  // namespace FlagsOf

/// An argument by its name and the full name of its type.
struct RegisteredArgument {
    std::string name;
    std::string type;
    bool operator==(RegisteredArgument const&) const = default;
};

/// How a record comes to be: defined in one step, or made on the tree and completed by hand, as
/// what has arguments needs it.
enum class Made { step, tree };

struct RegisteredAttribute {
    std::string name;
    int id;
    std::string valueType;
    std::string keyType;  // empty for what is no collection
    Flags flags;
    Made made;
    std::vector<RegisteredArgument> arguments;
};

enum class Sort { enumeration, value, entity };

struct RegisteredType {
    std::string name;
    Sort sort;
    std::string base;  // empty for enumerations and values
    std::vector<RegisteredArgument> constructorArguments;
    bool hasFactory;
    std::vector<RegisteredAttribute> own;  // in the order of their definition
};

/// The types in the order of their registration.
std::vector<RegisteredType> const& registryTable();

// The parts of it, a file each.
std::vector<RegisteredType> tableOfSwitchesAndPorts();
std::vector<RegisteredType> tableOfMacsAndLocators();
std::vector<RegisteredType> tableOfTheDatabase();
std::vector<RegisteredType> tableOfTheAgent();

/// An enumeration: its literals count from 0.
RegisteredType enumeration(std::string const& name, std::vector<std::string> const& literals);

/// Names that many rows share.
namespace TypeNames {

inline constexpr char const* text = "Qor::String8";
inline constexpr char const* name = "Qor::Name";
inline constexpr char const* flag = "bool";
inline constexpr char const* ip = "Kelp::IpAddr";
inline constexpr char const* mac = "Kelp::EthAddr";
inline constexpr char const* vni = "Vxlan::Vni";
inline constexpr char const* entity = "Qor::Entity";
inline constexpr char const* row = "Vgw::OvsdbDataModel";

}  // namespace TypeNames

}  // namespace Contract

#endif
