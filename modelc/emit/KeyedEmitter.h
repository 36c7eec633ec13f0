// What all collections have in common: iterators, the count, the handlers and the removal of
// everything.
#ifndef MODELC_EMIT_KEYEDEMITTER_H
#define MODELC_EMIT_KEYEDEMITTER_H

#include <modelc/emit/MemberEmitter.h>

namespace Modelc {

class KeyedEmitter : public MemberEmitter {
  public:
    // `keyName` is what its accessors call the key.
    KeyedEmitter(Entity const& entity, Attribute const& attribute, std::string const& keyName);

    std::string aliases() const override;
    std::string declarations() const override;
    std::string handlers() const override;
    std::string forwards() const override;
    std::string wrapperDefinitions() const override;
    std::string pendingKey() const override;
    std::string pendingKeyDrop() const override;
    std::string descriptor() const override;
    std::string definitions() const override;
    std::string handlerDefinitions() const override;
    std::vector<std::string> headers() const override;
    bool isKeyed() const override { return true; }

  protected:
    // A kind fills these holes: Base, the base of the descriptor with its arguments, and
    // memberAlias, the declaration of the attribute's own member class, if it has one.
    //
    // Readers, setters and removers.
    virtual std::string accessorDeclarations() const = 0;
    virtual std::string accessorDefinitions() const = 0;

  private:
    Attribute const& attribute_;
};

}  // namespace Modelc

#endif
