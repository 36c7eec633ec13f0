// A counted object that tells the test of its end.
#ifndef TESTS_UNIT_PTR_COUNTED_H
#define TESTS_UNIT_PTR_COUNTED_H

#include <qor/core/Ptr.h>
#include <qor/core/VFPtrInterface.h>

#include <functional>

class Counted : public Qor::VFPtrInterface {
  public:
    using Ptr = Qor::Ptr<Counted>;

    Counted() { ++living; }
    ~Counted() override {
        if (onDestruction) {
            onDestruction();
        }
        --living;
    }
    void zeroReferencesIs(bool zeroReferences) override {
        ++ends;
        endArgument = zeroReferences;
        if (onZero) {
            onZero();
        }
    }

    static inline int living = 0;
    static inline int ends = 0;
    static inline bool endArgument = false;
    std::function<void()> onZero;
    std::function<void()> onDestruction;
};

#endif
