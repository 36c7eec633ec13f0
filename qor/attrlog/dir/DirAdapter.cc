#include <qor/attrlog/dir/DirAdapter.h>

namespace Qor {

template class AdapterLevel<Dir>;

using Adapter = Dir::QorNboAttrLogSa;

Dir::QorNboAttrLogSa::QorNboAttrLogSa(AdapterState::Bits bits, U32 version,
                                      Qor::Ptr<NboAttrLog::Out> const& out, PtrInterface* owner)
    : AdapterLevel(bits, version, out, owner) {}

Dir::QorNboAttrLogSa::~QorNboAttrLogSa() { Qor::endAdapter(*this); }

Adapter::Ptr Dir::QorNboAttrLogSa::QorNboAttrLogSaIs(AdapterState::Bits bits,
                                                     Qor::Ptr<Dir> const& entity, U32 version,
                                                     Qor::Ptr<NboAttrLog::Out> const& out,
                                                     PtrInterface* owner) {
    return makeAdapter<QorNboAttrLogSa>(bits, entity, version, out, owner);
}

void Dir::QorNboAttrLogSa::onIsNondestructing() { serializeScalar<IsNondestructingStream>(*this); }

void Dir::QorNboAttrLogSa::onEntry(Name key) { serializeChangedKey<EntryStream>(*this, key); }

void Dir::QorNboAttrLogSa::doRemountSelf(Qor::Ptr<NboAttrLog::Out> const& out) {
    AdapterLevel::doRemountSelf(out);
    Qor::Ptr<NboAttrLog::Out const> const reader(out);
    Qor::Ptr<Dir const> const dir(&entityOf<EntryStream>(*this));
    for (EntryIteratorConst at(*dir); at; ++at) {
        Entity& entity = *at->value();
        if (entity.qorHasAttrLogInterface()) NboAttrLog::deleteAdapter(entity, reader);
    }
}

void Adapter::QorNboAttrLogSaAdapter_::onIsNondestructing() {
    forward(&QorNboAttrLogSa::onIsNondestructing);
}

void Adapter::QorNboAttrLogSaAdapter_::onEntry(Name key) {
    forward(&QorNboAttrLogSa::onEntry, key);
}

bool Dir::qorHasAttrLogInterface() const { return true; }

Entity::QorNboAttrLogSa* Dir::qorNboAttrLogSa(Qor::Ptr<NboAttrLog::Out const> const& out) {
    return NboAttrLog::adapterOnList(notifierList_, out);
}

Entity::QorNboAttrLogSa* Dir::qorNboAttrLogSaForMsgChannel(
    Qor::Ptr<Entity::QorNboAttrLogSa> const& other) const {
    return NboAttrLog::adapterForMsgChannel(notifierList_, *other);
}

Qor::Ptr<Entity::QorNboAttrLogSa> Dir::qorNboAttrLogSaIs(BitSet<27, U32> bits, U32 version,
                                                         Qor::Ptr<NboAttrLog::Out> const& out,
                                                         PtrInterface* owner) {
    return findOrMakeAdapter(*this, AdapterState::Bits(bits.word()), version, out, owner);
}

Qor::Ptr<Entity::QorNboAttrLogSa> Dir::qorNboAttrLogSaDel(
    Qor::Ptr<NboAttrLog::Out const> const& out) {
    return NboAttrLog::deleteAdapter(*this, out);
}

}  // namespace Qor
