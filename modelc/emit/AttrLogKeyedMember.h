// What the collections of an entity put into the files of its stream adapter.
#ifndef MODELC_EMIT_ATTRLOGKEYEDMEMBER_H
#define MODELC_EMIT_ATTRLOGKEYEDMEMBER_H

#include <modelc/emit/AttrLogMember.h>

namespace Modelc {

class AttrLogKeyedMember : public AttrLogMember {
  public:
    // `sing` are the parameters behind the key of the handler of one key, `handedOn` its arguments.
    AttrLogKeyedMember(Entity const& entity, Attribute const& attribute, std::string const& base,
                       std::string const& result, std::string const& sing,
                       std::string const& handedOn, std::string const& function);

    std::string declarations() const override;
    std::string definitions() const override;
    std::string flowOut() const override;
    std::string forwarding() const override;
};

// Entities that are owned: what announces them, too.
class AttrLogChildMapMember : public AttrLogKeyedMember {
  public:
    AttrLogChildMapMember(Entity const& entity, Attribute const& attribute);
    std::string declarations() const override;
    std::string definitions() const override;
    std::string adapterHeaderOfTarget() const override;
};

// A single one.
class AttrLogChildMember : public AttrLogMember {
  public:
    AttrLogChildMember(Entity const& entity, Attribute const& attribute);
    std::string declarations() const override;
    std::string definitions() const override;
    std::string adapterHeaderOfTarget() const override;
};

}  // namespace Modelc

#endif
