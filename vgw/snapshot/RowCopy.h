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

/// The source as a row of class `Row`; any other stops the process.
/// REQUIRES: rhs && "Dynamic_cast failed."
template <class Row>
Row const& sourceRow(OvsdbDataModel::PtrConst const& rhs, int line, char const* banner) {
    auto const* const row = dynamic_cast<Row const*>(rhs.ptr());
    Qor::assertThat(row != nullptr, "rhs && \"Dynamic_cast failed.\"", ovsdbDataTypesUnit, line,
                    banner);
    return *row;
}

/// Copies single attributes of `source` that its marks do not exclude.
template <class A>
void copyUnlessInvalid(typename A::Entity& target, typename A::Entity const& source) {
    if (!source.invalidAttrib(A::name)) {
        Qor::setScalar<A>(target, A::field(source));
    }
}

/// Makes the target's collection equal to the source's: first everything goes whose value the
/// source holds as the default of its type or not at all, then the source's members are set. A
/// member whose value is the default is thus removed and made anew.
template <class A>
void mirror(typename A::Entity& target, typename A::Entity const& source) {
    for (Qor::AttributeIterator<A> at(target); at; ++at) {
        if (Qor::keyedValue<A>(source, at->fwkKey()) == typename A::Value()) {
            at.del();
        }
    }
    for (Qor::AttributeIteratorConst<A> at(source); at; ++at) {
        Qor::setKeyed<A>(target, at.key(), at.value());
    }
}

template <class A>
void mirrorUnlessInvalid(typename A::Entity& target, typename A::Entity const& source) {
    if (!source.invalidAttrib(A::name)) {
        mirror<A>(target, source);
    }
}

/// Adds every key of the source with the value true, whatever value it has there; removes nothing.
template <class A>
void addKeys(typename A::Entity& target, typename A::Entity const& source) {
    for (Qor::AttributeIteratorConst<A> at(source); at; ++at) {
        Qor::setKeyed<A>(target, at.key(), true);
    }
}

}  // namespace Vgw

#endif
