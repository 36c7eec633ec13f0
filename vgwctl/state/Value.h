#ifndef VGWCTL_STATE_VALUE_H
#define VGWCTL_STATE_VALUE_H

// What stands in an attribute, taken out of its wrapper, so that it can be printed, compared and
// stored without knowing its class.

#include <qor/generic/GenericIf.h>

#include <string>
#include <utility>
#include <vector>

namespace Vgwctl {

struct Value {
    enum class Kind {
        none,       // a reference to nothing
        boolean,    // "true", "false"
        number,     // as it is written in decimal
        text,       // any bytes; also of addresses and enumerators
        reference,  // the path of an entity
        record,     // fields, in their order
        set,        // members, in the collection's order: each its key alone
        map,        // members: key and value
    };
    using Member = std::pair<Value, Value>;

    Kind kind = Kind::none;
    std::string text;             // of what is neither record, set nor map
    std::vector<Member> members;  // of a record: the field's name, as a text, and its value

    bool isCollection() const { return kind == Kind::set || kind == Kind::map; }
    /// Nothing is to be said of it: an empty text or collection, a reference to nothing.
    bool isNothing() const {
        return kind == Kind::none || (isCollection() && members.empty()) ||
               (kind == Kind::text && text.empty());
    }
    bool operator==(Value const&) const = default;
};

/// A text.
Value textValue(std::string text);
/// What a wrapper over a value or an entity holds; of null, none.
Value valueOf(Qor::GenericIf::Ptr const& wrapper);
/// The attribute of an entity; of a collection all members.
Value valueOf(Qor::GenericIf& entity, Qor::QorAttr const& attribute);

/// Without the quotes and escapes that texts have among values. What has none comes back as it is.
std::string unquoted(std::string_view strep);

}  // namespace Vgwctl

#endif
