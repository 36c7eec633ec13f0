// The two files of a value.
#ifndef MODELC_EMIT_VALUEEMITTER_H
#define MODELC_EMIT_VALUEEMITTER_H

#include <string>

#include <modelc/check/Model.h>
#include <modelc/emit/Holes.h>

namespace Modelc {

class ValueEmitter {
  public:
    explicit ValueEmitter(Value const& value);

    std::string header() const;
    std::string source() const;

  private:
    std::string includes() const;
    std::string descriptorNames() const;
    std::string descriptorList() const;
    std::string hashedList() const;
    std::string descriptors() const;
    std::string fieldConstructor() const;
    std::string readers() const;
    std::string constants() const;
    std::string hash() const;
    std::string comparisons() const;
    std::string ordering() const;
    std::string fields() const;
    std::string fieldPart() const;

    Value const& value_;
    Holes holes_;
};

}  // namespace Modelc

#endif
