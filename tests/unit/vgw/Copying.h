// A row that is brought up to date from another of its class, and who hears of it.
#ifndef TESTS_UNIT_VGW_COPYING_H
#define TESTS_UNIT_VGW_COPYING_H

#include "Accessors.h"

/// A target with its recorder, and a source.
template <class X>
struct Copying {
    template <class Argument>
    Copying(Argument const& one, Argument const& two)
        : target(Qor::make<X>(one)),
          source(Qor::make<X>(two)),
          recorder(Qor::make<Contract::Recorder<X>>(target)) {}
    Copying() : Copying("target", "source") {}

    /// What a clone tells.
    Contract::AllTold run() {
        recorder->take();
        target->clone(source);
        return recorder->take();
    }

    Qor::Ptr<X> target;
    Qor::Ptr<X> source;
    Qor::Ptr<Contract::Recorder<X>> recorder;
};

#endif
