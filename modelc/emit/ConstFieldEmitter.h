// A value that only the constructor sets: the argument `macAddr : Kelp::EthAddr` of its class.
#ifndef MODELC_EMIT_CONSTFIELDEMITTER_H
#define MODELC_EMIT_CONSTFIELDEMITTER_H

#include <modelc/emit/MemberEmitter.h>

namespace Modelc {

class ConstFieldEmitter : public MemberEmitter {
  public:
    ConstFieldEmitter(Entity const& entity, Attribute const& attribute);

    std::string declarations() const override;
    std::string field() const override;
    std::string descriptor() const override;
    std::vector<std::string> headers() const override;

  private:
    Attribute const& attribute_;
};

}  // namespace Modelc

#endif
