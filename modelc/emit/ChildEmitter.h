// One owned entity: `ovsdb : owns HwVtepOvsdb`.
#ifndef MODELC_EMIT_CHILDEMITTER_H
#define MODELC_EMIT_CHILDEMITTER_H

#include <modelc/emit/MemberEmitter.h>

namespace Modelc {

class ChildEmitter : public MemberEmitter {
  public:
    ChildEmitter(Entity const& entity, Attribute const& attribute);

    std::string declarations() const override;
    std::string field() const override;
    std::string handlers() const override;
    std::string forwards() const override;
    std::string wrapperDefinitions() const override;
    std::string descriptor() const override;
    std::string definitions() const override;
    std::string handlerDefinitions() const override;
    std::vector<std::string> headers() const override;
    bool isOwner() const override { return true; }

  private:
    Attribute const& attribute_;
};

}  // namespace Modelc

#endif
