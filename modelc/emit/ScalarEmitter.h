// A single value with a setter: `tunnelKey : U32 = 0x1000000;`
#ifndef MODELC_EMIT_SCALAREMITTER_H
#define MODELC_EMIT_SCALAREMITTER_H

#include <modelc/emit/MemberEmitter.h>

namespace Modelc {

class ScalarEmitter : public MemberEmitter {
  public:
    ScalarEmitter(Entity const& entity, Attribute const& attribute);

    std::string declarations() const override;
    std::string field() const override;
    std::string handlers() const override;
    std::string forwards() const override;
    std::string wrapperDefinitions() const override;
    std::string descriptor() const override;
    std::string inlineDefinitions() const override;
    std::string definitions() const override;
    std::string handlerDefinitions() const override;
    std::vector<std::string> headers() const override;

  private:
    Attribute const& attribute_;
};

}  // namespace Modelc

#endif
