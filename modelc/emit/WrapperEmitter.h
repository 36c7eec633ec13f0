// The registry's files of an entity: its generic wrapper, what hands a notifiee's calls on, and
// what its type record can do.
#ifndef MODELC_EMIT_WRAPPEREMITTER_H
#define MODELC_EMIT_WRAPPEREMITTER_H

#include <memory>
#include <string>
#include <vector>

#include <modelc/check/Model.h>
#include <modelc/emit/Holes.h>
#include <modelc/emit/MemberEmitter.h>

namespace Modelc {

class WrapperEmitter {
  public:
    explicit WrapperEmitter(Entity const& entity);

    std::string header() const;
    std::string source() const;

  private:
    std::string includes() const;
    std::string forwardingClass() const;
    std::string wrapperClass() const;
    std::string typeClass() const;
    std::string typeDefinitions() const;
    std::string fillIn(std::string_view text) const { return fill(text, holes_); }

    Entity const& entity_;
    std::vector<std::unique_ptr<MemberEmitter>> members_;
    Holes holes_;
};

}  // namespace Modelc

#endif
