// What a wrapper's watcher is told.
#ifndef TESTS_CONTRACT_GENERIC_HEARD_H
#define TESTS_CONTRACT_GENERIC_HEARD_H

#include <functional>
#include <utility>

#include "EveryWrapper.h"

namespace Contract {

/// Notes what a wrapper is told, in the words of the recorders of compiled classes.
class Heard : public Qor::GenericIf::Watcher {
  public:
    static constexpr Qor::AttributeId all = -1;
    static constexpr Qor::AttributeId end = 5;

    AllTold take() { return std::exchange(told_, {}); }
    void onAttribute(Qor::GenericIf&, Qor::AttributeId id, WrapperConst& key) override {
        told_.push_back({id, key ? wrappedText(key.ptr()) : ""});
        lastKey_ = key;
        if (inHandler) {
            std::exchange(inHandler, nullptr)();
        }
    }
    void onNotification(Qor::GenericIf&) override {
        told_.push_back({all, ""});
        if (onAll) {
            std::exchange(onAll, nullptr)();
        }
    }
    void onZeroReferences(Qor::GenericIf&) override { told_.push_back({end, ""}); }
    WrapperConst const& lastKey() const { return lastKey_; }

    std::function<void()> inHandler;
    std::function<void()> onAll;

  private:
    AllTold told_;
    WrapperConst lastKey_;
};

}  // namespace Contract

#endif
