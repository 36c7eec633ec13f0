// The two files of an enumeration.
#ifndef MODELC_EMIT_ENUMERATIONEMITTER_H
#define MODELC_EMIT_ENUMERATIONEMITTER_H

#include <string>

#include <modelc/check/Model.h>
#include <modelc/emit/Holes.h>

namespace Modelc {

class EnumerationEmitter {
  public:
    explicit EnumerationEmitter(Enumeration const& enumeration);

    std::string header() const;
    std::string source() const;

  private:
    std::string enumerators() const;
    std::string names() const;

    Enumeration const& enumeration_;
    Holes holes_;
};

}  // namespace Modelc

#endif
