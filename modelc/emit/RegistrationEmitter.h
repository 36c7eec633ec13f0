// The registration of a unit's classes: the tables from which the type records are described, the
// section of the library file that names the types, and what loads and unloads it all.
#ifndef MODELC_EMIT_REGISTRATIONEMITTER_H
#define MODELC_EMIT_REGISTRATIONEMITTER_H

#include <string>

#include <modelc/check/Model.h>
#include <modelc/emit/Holes.h>

namespace Modelc {

class RegistrationEmitter {
  public:
    explicit RegistrationEmitter(Unit const& unit);

    std::string header() const;
    std::string source() const;

  private:
    std::string includes() const;
    // What `text` gives for each class, in the order of registration.
    template <typename Text>
    std::string each(Text text) const;
    std::string byName() const;

    Unit const& unit_;
    Holes holes_;
};

}  // namespace Modelc

#endif
