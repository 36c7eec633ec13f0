// An operation: declared here, defined by hand.
#ifndef MODELC_EMIT_OPERATIONEMITTER_H
#define MODELC_EMIT_OPERATIONEMITTER_H

#include <modelc/emit/MemberEmitter.h>

namespace Modelc {

class OperationEmitter final : public MemberEmitter {
  public:
    OperationEmitter(Entity const& entity, Operation const& operation);

    std::string descriptorName() const override;
    std::string declarations() const override;
    std::string descriptor() const override;
    std::vector<std::string> headers() const override;
    bool isIntroduced() const override { return operation_.isVirtual && !operation_.overrides; }

  private:
    std::string parameters() const;
    std::string argumentTypes() const;
    std::string argumentNames() const;

    Operation const& operation_;
};

}  // namespace Modelc

#endif
