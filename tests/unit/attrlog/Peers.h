// Two ends of a connection in one thread, without a transport: bytes go over when a test says so,
// and as many as it says.
#ifndef TESTS_UNIT_ATTRLOG_PEERS_H
#define TESTS_UNIT_ATTRLOG_PEERS_H

#include <qor/attrlog/family/MakeAdapter.h>

#include <algorithm>
#include <cstdio>
#include <string>
#include <string_view>

// One end: a demuxer, and what it hears of the connection.
class Peer : public Qor::NboAttrLog::LinkHandler {
  public:
    using Demuxer = Qor::NboAttrLog::Demuxer;
    using Out = Qor::NboAttrLog::Out;

    explicit Peer(Demuxer::Side side, Qor::U32 blocks = Out::defaultBlocks)
        : demuxer(Qor::make<Demuxer>(Qor::Name("peer"), Qor::make<Qor::NboAttrLog::In>(),
                                     Qor::make<Out>(blocks), side)) {
        demuxer->linkHandlerIs(this);
    }
    ~Peer() override {
        demuxer->linkHandlerIs(nullptr);
        demuxer->close();
    }

    void handleLink(Qor::NboAttrLog::Frame const&, Qor::NboAttrLog::In&) override {}
    Orphan orphan(Qor::EntityId const& id, Qor::String8 const& type,
                  Qor::Name const& name) override {
        orphanId = id;
        orphanType = type;
        orphanName = name;
        return {copy, flags};
    }
    void failed(Qor::String8 const& reason) override { failure = reason; }

    Out& out() const { return *demuxer->out(); }
    Qor::Ptr<Out> const& outPtr() const { return demuxer->out(); }

    // Leaves no room in the ring for another record.
    void fillRing() {
        Qor::String8 const text(std::string(30000, 'x'));
        while (out().hasSufficientBuffer()) {
            outPtr()->nextHeaderIs({Qor::EntityId(99), 1});
            outPtr() << Out::TransactToken::begin << text << Out::TransactToken::end;
        }
    }

    // The adapter of an entity on this end.
    template <class X>
    typename X::QorNboAttrLogSa* adapter(Qor::Ptr<X> const& entity) const {
        return dynamic_cast<typename X::QorNboAttrLogSa*>(
            entity->qorNboAttrLogSa(Qor::Ptr<Out const>(outPtr())));
    }
    // An adapter that is entered and sends nothing by itself.
    template <class X>
    typename X::QorNboAttrLogSa::Ptr attach(Qor::Ptr<X> const& entity,
                                            Qor::U32 more = Qor::AdapterState::weakNotifier) {
        auto const bits = Qor::AdapterState::Bits(more);
        auto const adapter =
            X::QorNboAttrLogSa::QorNboAttrLogSaIs(bits, entity, 1, outPtr(), nullptr);
        adapter->qorOnInit();
        return adapter;
    }
    // Announces an entity and sends its state.
    template <class X>
    typename X::QorNboAttrLogSa::Ptr send(Qor::Ptr<X> const& entity) {
        auto const adapter = attach(entity);
        adapter->doSerializeOrphan();
        return adapter;
    }

    Demuxer::Ptr demuxer;
    Qor::Ptr<Qor::Entity> copy;  // what an orphan of the peer's stands for
    Qor::AdapterState::Bits flags{Qor::AdapterState::weakNotifier};
    Qor::String8 failure;
    Qor::EntityId orphanId;
    Qor::String8 orphanType;
    Qor::Name orphanName;
};

// Bytes that wait in an Out; they are taken.
inline std::string takeBytes(Qor::NboAttrLog::Out& out, std::size_t most = ~std::size_t{0}) {
    std::string bytes;
    while (bytes.size() < most && !out.unsent().empty()) {
        auto const piece = out.unsent().substr(0, most - bytes.size());
        bytes += piece;
        out.sentInc(piece.size());
    }
    return bytes;
}

inline std::string hex(std::string_view bytes) {
    std::string text;
    char digits[3];
    for (char const byte : bytes) {
        std::snprintf(digits, sizeof digits, "%02x", static_cast<unsigned char>(byte));
        text += digits;
    }
    return text;
}

// Up to `most` bytes from one end to the other, and what they lead to. The number that went over.
inline std::size_t carry(Peer& from, Peer& to, std::size_t most = ~std::size_t{0}) {
    std::size_t gone = 0;
    from.demuxer->serveFlows(~Qor::U64{0});
    while (gone < most && !from.out().unsent().empty()) {
        auto const piece = from.out().unsent().substr(0, most - gone);
        auto const taken = to.demuxer->in()->receive(piece);
        from.out().sentInc(taken);
        gone += taken;
        to.demuxer->serveFrames(~std::size_t{0});
        if (taken == 0 || to.demuxer->hasFailed()) break;
    }
    return gone;
}

// Two ends and the way between them.
struct Peers {
    explicit Peers(Qor::U32 blocks = Peer::Out::defaultBlocks)
        : source(Peer::Demuxer::Side::accepting, blocks),
          reader(Peer::Demuxer::Side::connecting, blocks) {}

    // Until both are at rest.
    void settle() {
        while (carry(source, reader) + carry(reader, source) != 0) {
        }
    }
    // Mounts `original` as `copy`, whole.
    template <class X>
    void mount(Qor::Ptr<X> const& original, Qor::Ptr<X> const& copy) {
        reader.copy = copy;
        source.send(original);
        settle();
    }

    Peer source;
    Peer reader;
};

#endif
