// The #include lines of an emitted file: each header once, sorted, the standard library's in front.
#ifndef MODELC_EMIT_INCLUDES_H
#define MODELC_EMIT_INCLUDES_H

#include <set>
#include <string>

namespace Modelc {

class Includes {
  public:
    // A header's name without brackets; an empty one is passed over.
    void add(std::string const& header);
    std::string text() const;

  private:
    std::set<std::string> standard_;
    std::set<std::string> others_;
};

}  // namespace Modelc

#endif
