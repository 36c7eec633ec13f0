// The outbound half of AdapterLevel.
#ifndef QOR_ATTRLOG_FAMILY_ADAPTERLEVELOUT_H
#define QOR_ATTRLOG_FAMILY_ADAPTERLEVELOUT_H

#include <qor/attrlog/family/AdapterLevel.h>

namespace Qor {

template <class X, class Base>
AttributeId AdapterLevel<X, Base>::handleAttrFlowOut(AttributeId startAttr) {
    using List = typename Adapter::QorStreamed;
    Ptr<NboAttrLog::FlowOut> const flow(this->StreamAdapter::flowOut());
    typename Entity::QorNboAttrLogSa::HandlingScheduledFlowOutAnchor const anchor(*this,
                                                                                  flow != nullptr);
    if (!flow) return 0;
    flow->retryLaterIs(false);
    this->sendPendingAborts(*flow);
    if constexpr (List::size == 0) return Base::handleAttrFlowOut(startAttr);
    if (startAttr < List::first()) {
        AttributeId const left = Base::handleAttrFlowOut(startAttr);
        if (left != 0) return left;
        // A handler that heard of what was sent may have ended the flow.
        if (this->StreamAdapter::flowOut() != flow.ptr()) return 0;
        if (!this->continueFlowOut()) return List::first();
    } else if (!List::has(startAttr)) {
        return 0;
    }
    AttributeId next = 0;
    List::whileTrue(
        [&]<class S>() { return S::id < startAttr || this->template sendAttribute<S>(next); });
    return next;
}

template <class X, class Base>
AttributeId AdapterLevel<X, Base>::sendAtOnce() {
    AttributeId left = 0;
    askForTexts();
    if constexpr (!isFirstLevel) left = Base::sendAtOnce();
    if (left != 0) return left;
    Adapter::QorStreamed::forEach([&]<class S>() {
        if (left == 0 && !this->template sendAttributeAtOnce<S>()) left = S::id;
    });
    return left;
}

// They lie anywhere in memory, and come while what stands before them is sent.
template <class X, class Base>
void AdapterLevel<X, Base>::askForTexts() {
    Adapter::QorStreamed::forEach([&]<class S>() {
        if constexpr (S::kind == StreamKind::text) {
            __builtin_prefetch(S::get(entityOf<S>(self())).data());
        }
    });
}

// Whether it went. What a flow may have to stop in is left to one.
template <class X, class Base>
template <class S>
bool AdapterLevel<X, Base>::sendAttributeAtOnce() {
    if (!this->continueFlowOut()) return false;
    if constexpr (S::isKeyed) {
        if (collectionOf<S>(self()).size() != 0) return false;
        beginSnapshot<S>(self());
        this->sendTransactionMarker(S::id, StreamAdapter::end, 0);
    } else if constexpr (S::kind == StreamKind::text) {
        auto const& text = S::get(entityOf<S>(self()));
        if (text.length() > this->nboAttrLogOut()->chunkLimit()) return false;
        serializeText<S>(self());
    } else {
        if constexpr (S::kind == StreamKind::child) {
            if (S::get(entityOf<S>(self()))) return false;
        }
        S::on(self());
    }
    return !this->StreamAdapter::flowOut();
}

// Whether to go on with the attribute after it; else `next` is where to go on later.
template <class X, class Base>
template <class S>
bool AdapterLevel<X, Base>::sendAttribute(AttributeId& next) {
    using List = typename Adapter::QorStreamed;
    auto& flow = *this->StreamAdapter::flowOut();
    flow.attrIdIs(S::id);
    bool const isSent = sendOwed<S>(flow);
    if (this->StreamAdapter::flowOut() != &flow) return false;
    AttributeId const after = List::after(S::id);
    // NOLINTNEXTLINE(bugprone-branch-clone): the order of the questions counts.
    if (flow.retryLater()) {
        next = S::id;
    } else if (!isSent && (after == 0 || flow.bookmark() || flow.valueIter())) {
        next = S::id;
    } else if (after == 0) {
        next = 0;
    } else if (this->continueFlowOut()) {
        return true;
    } else if (!isSent) {
        next = S::id;
    } else {
        bool const isValue = S::kind == StreamKind::scalar || S::kind == StreamKind::child;
        next = isValue || flow.hasDirtyAttributes() ? after : 0;
    }
    return false;
}

// True when nothing more is owed of the attribute; always of a value, which marks itself.
template <class X, class Base>
template <class S>
bool AdapterLevel<X, Base>::sendOwed(NboAttrLog::FlowOut& base) {
    auto& flow = static_cast<typename Adapter::FlowOut&>(base);
    if constexpr (S::kind == StreamKind::reference) {
        dropOwedInVain<S>(self());
        if (this->StreamAdapter::flowOut() != &base) return false;
    }
    if constexpr (S::isKeyed) {
        return serializeCollection<S>(self());
    } else if constexpr (S::kind == StreamKind::text) {
        if (!flow.valueIter() && !flow.template isDirty<S>()) return true;
        bool const isSent = serializeText<S>(self());
        flow.template isDirtyIs<S>(!isSent);
        return isSent;
    } else {
        if (flow.template isDirty<S>()) S::on(self());
        return true;
    }
}

template <class X, class Base>
void AdapterLevel<X, Base>::freeResyncState(Ptr<NboAttrLog::FlowOut> const& flow) {
    bool isOwn = false;
    Adapter::QorStreamed::forEach([&]<class S>() {
        if (flow->attrId() != S::id) return;
        isOwn = true;
        if constexpr (S::isKeyed) {
            using Key = typename S::Key;
            if (flow->bookmark()) NboAttrLog::qorFlowOutBookmarkDeq<Key>(*flow);
            if (flow->valueIterKey()) NboAttrLog::qorFlowOutValueKeyDeq<Key>(*flow);
        }
        NboAttrLog::qorFlowOutValueDeq(*flow);
    });
    if (!isOwn) Base::freeResyncState(flow);
}

template <class X, class Base>
Ptr<NboAttrLog::FlowOut> AdapterLevel<X, Base>::flowOutIs(Ptr<NboAttrLog::Out> const& out,
                                                          NboAttrLog::ConnectDesc const& desc,
                                                          bool flag, AttributeId startAttr) {
    return make<typename Adapter::FlowOut>(out, Ptr<Entity::QorNboAttrLogSa>(this), desc, flag,
                                           startAttr);
}

template <class X, class Base>
void AdapterLevel<X, Base>::doNotification(AttributeId id, void* key) {
    AttributeId const wanted = withoutSign(id);
    if (!Adapter::QorStreamed::has(wanted)) return Base::doNotification(id, key);
    Adapter::QorStreamed::forEach([&]<class S>() {
        if (S::id != wanted) return;
        if constexpr (S::isKeyed) {
            if (key) S::on(self(), typename S::Key(*static_cast<typename S::Key const*>(key)));
        } else {
            S::on(self());
        }
    });
}

template <class X, class Base>
void AdapterLevel<X, Base>::putTypeChain() {
    NboAttrLog::putText(*this->nboAttrLogOut(), X::qorTypeName);
    Base::putTypeChain();
}

template <class X, class Base>
void AdapterLevel<X, Base>::putConstructorArgument() {
    bool isOwn = false;
    X::QorAttributes::forEach([&]<class A>() {
        if constexpr (A::kind == AttributeKind::constField) {
            this->nboAttrLogOut() << A::field(static_cast<X const&>(*this->qorNotifierEntity()));
            isOwn = true;
        }
    });
    if (!isOwn) Base::putConstructorArgument();
}

template <class X, class Base>
void AdapterLevel<X, Base>::doSerializeOrphan() {
    using Token = NboAttrLog::Out::TransactToken;
    Ptr<NboAttrLog::Out> const out = this->nboAttrLogOut();
    Ptr<Entity const> const entity(this->qorNotifierEntity());
    out->nextHeaderIs({orphanEntityId, NboAttrLog::orphanAttributeId});
    out << Token::begin;
    out->currentPayloadSectionIs(NboAttrLog::PayloadSection::typeChain);
    putTypeChain();
    out->currentPayloadSectionIs(NboAttrLog::PayloadSection::name);
    out << String8(entity->name());
    out->currentPayloadSectionIs(NboAttrLog::PayloadSection::entityId);
    out << this->entityId();
    out << Token::end;
    this->doThis();
}

template <class X, class Base>
void AdapterLevel<X, Base>::qorInstantiateSerialize() {
    Base::qorInstantiateSerialize();
    Adapter::QorStreamed::forEach([&]<class S>() {
        if constexpr (S::kind == StreamKind::childMember) {
            serializeCollection<S>(self());
        } else if constexpr (S::kind == StreamKind::child) {
            S::on(self());
        }
    });
}

template <class X, class Base>
void AdapterLevel<X, Base>::doRemountSelf(Ptr<NboAttrLog::Out> const& out) {
    Base::doRemountSelf(out);
    Adapter::QorStreamed::forEach([&]<class S>() {
        if constexpr (S::kind == StreamKind::childMember) {
            for (auto at = typename S::Attr::Map::IteratorConst(&collectionOf<S>(self())); at; ++at)
                deleteChildAdapter<S>(self(), childOfMember<S>(at.member().ptr()));
        } else if constexpr (S::kind == StreamKind::child) {
            deleteChildAdapter<S>(self(), S::get(entityOf<S>(self())));
        }
    });
}

}  // namespace Qor

#endif
