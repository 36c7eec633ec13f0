// What members start with: a literal held against the type of its member.
#ifndef MODELC_CHECK_INITIALS_H
#define MODELC_CHECK_INITIALS_H

#include <optional>

#include <modelc/check/Context.h>

namespace Modelc {

// What the literal gives the type, or reported and nothing.
std::optional<Initial> checkInitial(Context const& context, Type const& type,
                                    Tree::Literal const& literal);

// What can stand behind `=` for the type, in words.
std::string expectedInitial(Type const& type);

}  // namespace Modelc

#endif
