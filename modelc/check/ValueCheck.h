// Second pass of the check: enumerations, then values.
//
// A value may hold what is declared above it only, so that no value can hold itself.
#ifndef MODELC_CHECK_VALUECHECK_H
#define MODELC_CHECK_VALUECHECK_H

#include <set>
#include <string>

#include <modelc/check/Context.h>
#include <modelc/check/Numbering.h>

namespace Modelc {

class ValueCheck {
  public:
    explicit ValueCheck(Context const& context) : context_(context) {}

    void enumeration(Tree::Enumeration const& tree, Enumeration& result);
    void value(Tree::Value const& tree, Value& result);

  private:
    void enumerator(Tree::Enumerator const& tree, bool gapsAllowed, Enumeration& result);
    void field(Tree::ValueMember const& tree, Value& result);
    void constant(Tree::ValueMember const& tree, Value& result);
    void hash(Tree::ValueMember const& tree, Value& result);
    void hashWord(Tree::Word const& word, Value const& result, ValueHash& hash);
    void checkWhole(Tree::Value const& tree, Value const& result);
    Type const* memberType(Tree::ValueMember const& tree, Value const& owner);
    Initial initial(Tree::ValueMember const& tree, Type const* type);

    Context const& context_;
    std::set<std::string> enumerators_;
    std::set<Value const*> declared_;
    std::set<Type const*> damaged_;
};

// Whether values may have fields of the type: what has a text form and a wire form of its own.
bool canBeField(Type const& type);
// Whether one 32-bit word of a value's hash can be made of a member of the type.
bool canBeHashWord(Type const& type);
// Whether a collection may be keyed by the type.
bool canBeKey(Type const& type);

}  // namespace Modelc

#endif
