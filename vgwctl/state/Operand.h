#ifndef VGWCTL_STATE_OPERAND_H
#define VGWCTL_STATE_OPERAND_H

// What an operator writes of one attribute, in the form of the OVSDB tools:
//
//     ATTRIBUTE   ATTRIBUTE:KEY   ATTRIBUTE[:KEY]=VALUE   and, in conditions, != < <= > >=
//
// A key or value that contains an operator or a colon stands between double quotes, as in JSON.

#include <vgwctl/state/Value.h>

#include <qor/generic/GenericIf.h>

#include <optional>
#include <string>
#include <string_view>

namespace Vgwctl {

struct Operand {
    enum class Relation { none, equal, unequal, less, atMost, greater, atLeast };

    std::string attribute;
    std::optional<std::string> key;
    Relation relation = Relation::none;
    std::string value;
};

/// Raises Failure for what has another form.
Operand operandOf(std::string_view word);

/// The value of a type that a word stands for: a text without its quotes, an entity by its path.
/// Raises Failure, which tells what the value is of, its type and what was expected.
Qor::GenericIf::Ptr valueFrom(Qor::QorType& type, std::string const& word, std::string_view of);

/// Whether an entity has what the operand tells; false for a member that is absent.
/// REQUIRES: operand.relation is not none.
bool holds(Operand const& operand, Qor::Entity& entity);
/// The value that the operand names. Raises Failure, absent, for a member that is absent.
Value valueAt(Operand const& operand, Qor::Entity& entity);

}  // namespace Vgwctl

#endif
