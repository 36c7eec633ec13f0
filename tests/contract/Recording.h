// The notifiees of the contract suite: each notes every handler that is called. Recorder<X> is made
// from the models by accessors.py, which overrides all handlers of X and of the classes above it.
#ifndef TESTS_CONTRACT_RECORDING_H
#define TESTS_CONTRACT_RECORDING_H

#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include <qor/core/Strep.h>
#include <qor/model/Attribute.h>
#include <qor/notify/EntityNotifiee.h>

namespace Contract {

/// One call of a handler: the attribute, and the key of a keyed one.
struct Told {
    Qor::AttributeId id = 0;
    std::string key;
    bool operator==(Told const&) const = default;
};

inline void PrintTo(Told const& told, std::ostream* out) {
    *out << told.id << (told.key.empty() ? "" : " ") << told.key;
}

using AllTold = std::vector<Told>;

/// Any value as text. References are told by the address of what they refer to.
template <class T>
std::string textOf(T const& value) {
    using Qor::valueToStrep;
    return std::string(valueToStrep(value).view());
}

template <class X>
std::string textOf(Qor::Ptr<X> const& reference) {
    return reference ? std::to_string(reinterpret_cast<std::uintptr_t>(reference.ptr())) : "null";
}

template <class Key>
std::string keyText(Key const& key) {
    return textOf(key);
}

/// What recorders of all classes have in common.
class Listener {
  public:
    /// What was told since the last call.
    AllTold take() { return std::exchange(told_, {}); }
    /// From now on each handler throws after it has noted its call.
    void throwsIs(bool throws) { throws_ = throws; }

  protected:
    ~Listener() = default;
    void note(Qor::AttributeId id, std::string key = {}) {
        told_.push_back({id, std::move(key)});
        if (throws_) {
            throw id;
        }
    }
    void noteException(Qor::AttributeId id) { told_.push_back({id, "exception"}); }

  private:
    bool throws_ = false;
    AllTold told_;
};

template <class X>
class Recording : public X::NotifieeConst, public Listener {
  public:
    explicit Recording(Qor::Ptr<Qor::PtrInterface const> const& notifier, bool isWeak = false) {
        this->isWeakReferenceIs(isWeak);
        this->notifierIs(notifier);
    }

    void onIsNondestructing() override { note(6); }
    void onZeroReferences() override { note(5); }
    void onNotificationException(Qor::AttributeId id) override { noteException(id); }
};

template <class X>
class Recorder;

template <class A>
struct Accessors;

template <class F>
struct FieldAccess;

template <class E>
struct EnumAccess;

}  // namespace Contract

#endif
