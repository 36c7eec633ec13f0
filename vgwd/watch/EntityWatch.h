#ifndef VGWD_WATCH_ENTITY_WATCH_H
#define VGWD_WATCH_ENTITY_WATCH_H

// What the notifiees that print share: the path of their entity, and how an attribute, or a key of
// a keyed attribute, is told.

#include <vgwd/watch/ChangePrinter.h>
#include <vgwd/watch/ValueText.h>

#include <string>
#include <string_view>

namespace Vgwd {

template <class X>
class EntityWatch : public X::NotifieeConst {
  public:
    EntityWatch(std::string path, ChangePrinter& printer)
        : path_(std::move(path)), printer_(printer) {}

  protected:
    X const& entity() const { return static_cast<X const&>(*this->qorNotifier()); }

    template <class V>
    void scalar(std::string_view attribute, V const& value) {
        printer_.tell(path_, attribute, textOf(value));
    }
    // A key may be gone, which its default value wouldn't tell.
    template <class K, class Walk>
    void keyed(std::string_view attribute, K const& key, Walk walk) {
        while (walk && !(walk.key() == key)) ++walk;
        printer_.tellKey(path_, attribute, keyText(key),
                         walk ? textOf(walk.value()) : ChangePrinter::removed);
    }

  private:
    std::string path_;
    ChangePrinter& printer_;
};

}  // namespace Vgwd

#endif
