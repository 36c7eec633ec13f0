// How clone copies one attribute from a row to another. All of it goes through the setters, so that
// notifiees hear what really changes and nothing else.
#ifndef VGW_SNAPSHOT_ROW_COPY_H
#define VGW_SNAPSHOT_ROW_COPY_H

#include <qor/core/Assert.h>
#include <qor/model/Keyed.h>
#include <qor/model/Scalar.h>
#include <vgw/tables/OvsdbDataModel.h>
#include <vgw/values/Trace.h>

namespace Vgw {

/// Traces the entry into a clone, whose signature is `banner`.
inline void traceClone(int line, char const* banner) {
    traceEntry(ovsdbDataTypesUnit, line, "clone", banner);
}

/// A row and the one that it is made like. Both are held until it is done: a handler that hears of
/// a change may let go of either.
template <class Row>
class RowCopy {
  public:
    /// A source of any other class stops the process.
    /// REQUIRES: rhs && "Dynamic_cast failed."
    RowCopy(Row& to, OvsdbDataModel::PtrConst const& rhs, int line, char const* banner)
        : target_(&to), source_(Qor::dynamicCast<Row const>(rhs)) {
        Qor::assertThat(static_cast<bool>(source_), "rhs && \"Dynamic_cast failed.\"",
                        ovsdbDataTypesUnit, line, banner);
    }

    Row& target() const { return *target_; }
    Row const& source() const { return *source_; }

    /// Copies a single attribute.
    template <class A>
    void copyUnlessInvalid() const {
        if (!source().invalidAttrib(A::name)) {
            Qor::setScalar<A>(target(), A::field(source()));
        }
    }
    /// Makes the target's collection equal to the source's: first everything goes whose value the
    /// source holds as the default of its type or not at all, then the source's members are set. A
    /// member whose value is the default is thus removed and made anew.
    template <class A>
    void mirror() const {
        for (Qor::AttributeIterator<A> at(target()); at; ++at) {
            if (Qor::keyedValue<A>(source(), at->fwkKey()) == typename A::Value()) {
                at.del();
            }
        }
        for (Qor::AttributeIteratorConst<A> at(source()); at; ++at) {
            Qor::setKeyed<A>(target(), at.key(), at.value());
        }
    }
    template <class A>
    void mirrorUnlessInvalid() const {
        if (!source().invalidAttrib(A::name)) {
            mirror<A>();
        }
    }
    /// Adds every key of the source with the value true, whatever value it has there; removes
    /// nothing.
    template <class A>
    void addKeys() const {
        for (Qor::AttributeIteratorConst<A> at(source()); at; ++at) {
            Qor::setKeyed<A>(target(), at.key(), true);
        }
    }

  private:
    typename Row::Ptr target_;
    typename Row::PtrConst source_;
};

}  // namespace Vgw

#endif
