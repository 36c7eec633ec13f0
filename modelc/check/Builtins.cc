#include <modelc/check/Builtins.h>

#include <array>

namespace Modelc {
namespace {

constexpr std::array<BuiltinType, 10> table{{
    {"Bool", "bool", "bool", Builtin::boolean, false, 0},
    {"U8", "Qor::U8", "U8", Builtin::u8, false, 0xff},
    {"U16", "Qor::U16", "U16", Builtin::u16, false, 0xffff},
    {"U32", "Qor::U32", "U32", Builtin::u32, false, 0xffffffff},
    {"U64", "Qor::U64", "U64", Builtin::u64, true, 0xffffffffffffffff},
    {"I32", "Qor::I32", "I32", Builtin::i32, false, 0x7fffffff},
    {"Double", "double", "double", Builtin::real, true, 0},
    {"Qor::Seconds", "Qor::Seconds", "double", Builtin::real, true, 0},
    {"Qor::String8", "Qor::String8", "Qor::String8", Builtin::text, false, 0},
    {"Qor::Name", "Qor::Name", "Qor::Name", Builtin::name, false, 0},
}};

}  // namespace

std::span<BuiltinType const> builtinTypes() { return table; }

BuiltinType const& builtinType(Type const& type) {
    for (BuiltinType const& one : table) {
        if (one.name == type.fullName) return one;
    }
    return table[0];
}

}  // namespace Modelc
