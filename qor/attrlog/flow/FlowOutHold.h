// What a flow out holds by address, put there and taken back with its type. Each place takes one
// thing at a time.
#ifndef QOR_ATTRLOG_FLOW_FLOWOUTHOLD_H
#define QOR_ATTRLOG_FLOW_FLOWOUTHOLD_H

#include <qor/attrlog/flow/FlowOut.h>

#include <memory>

namespace Qor {

namespace NboAttrLog {

template <class K>
void qorFlowOutBookmarkEnq(FlowOut& rsc, K const& key) {
    assertThat(!rsc.bookmark(), "!rsc->bookmark()", "Qor/NboAttrLogFlow", 23,
               "qorFlowOutBookmarkEnq");
    rsc.bookmarkIs(new K(key));
}

// REQUIRES: a bookmark is held
template <class K>
K qorFlowOutBookmarkDeq(FlowOut& rsc) {
    std::unique_ptr<K> const held(static_cast<K*>(rsc.bookmark()));
    rsc.bookmarkIs(nullptr);
    return std::move(*held);
}

inline void qorFlowOutValueEnq(FlowOut& rsc, String8::IteratorConst const& iterator) {
    assertThat(!rsc.valueIter(), "!rsc->valueIter()", "Qor/NboAttrLogFlow", 51,
               "qorFlowOutValueEnq");
    rsc.valueIterIs(new String8::IteratorConst(iterator));
}

// An iterator over the empty text when none is held.
inline String8::IteratorConst qorFlowOutValueDeq(FlowOut& rsc) {
    std::unique_ptr<String8::IteratorConst> const held(
        static_cast<String8::IteratorConst*>(rsc.valueIter()));
    rsc.valueIterIs(nullptr);
    return held ? std::move(*held) : String8::IteratorConst();
}

template <class K>
void qorFlowOutValueKeyEnq(FlowOut& rsc, K const& key) {
    assertThat(!rsc.valueIterKey(), "!rsc->valueIterKey()", "Qor/NboAttrLogFlow", 84,
               "qorFlowOutValueKeyEnq");
    rsc.valueIterKeyIs(new K(key));
}

// REQUIRES: a key is held
template <class K>
K qorFlowOutValueKeyDeq(FlowOut& rsc) {
    std::unique_ptr<K> const held(static_cast<K*>(rsc.valueIterKey()));
    rsc.valueIterKeyIs(nullptr);
    return std::move(*held);
}

template <class K>
bool qorFlowOutValueKeyMatches(FlowOut const& rsc, K const& key) {
    return rsc.valueIterKey() && *static_cast<K const*>(rsc.valueIterKey()) == key;
}

}  // namespace NboAttrLog

}  // namespace Qor

#endif
