// Our columns of the mixed rows: what is written comes from the handlers of real entities'
// adapters, and what is read goes through the readers that those have for their attributes.
#include <qor/attrlog/family/TextIn.h>
#include <qor/attrlog/family/ValueOut.h>

#include "../../Row.h"
#include "../PutRecord.h"
#include "OurRows.h"

namespace Bench {

namespace {

using Qor::InboundRecord;
using Qor::NboAttrLog::In;
using Qor::NboAttrLog::Out;
using Header = Qor::NboAttrLog::MsgHeader;
using Token = Out::TransactToken;

template <class X>
using Sa = typename X::QorNboAttrLogSa;

void drainOut(Out& out) {
    while (!out.unsent().empty()) out.sentInc(out.unsent().size());
}

// A record's values.
struct Values {
    explicit Values(MixedRecord const& record)
        : key(record.key),
          text(record.text),
          mac(Kelp::EthAddr::fromNumber(isOfMac(record.shape) ? record.number : 0)),
          pair(mac, Vxlan::Vni(isOfMac(record.shape) ? record.second : 0)) {}
    static bool isOfMac(Shape shape) {
        return shape == Shape::mac || shape == Shape::pairKey || shape == Shape::pairKeyGone;
    }
    Qor::String8 key;
    Qor::String8 text;
    Kelp::EthAddr mac;
    Vgw::MacVniPair pair;
};

// As those of texts, whose only chunk stands behind its key.
template <class... Keys>
void putText(Qor::Ptr<Out> const& out, Header const& header, Qor::String8 const& text,
             Keys const&... keys) {
    std::size_t const size = (Qor::NboAttrLog::sizeOnWire(keys) + ... + text.length());
    if (unsigned char* at = out->claimRecord(header, size)) [[likely]] {
        static_cast<void>(((at = Qor::NboAttrLog::storeOnWire(at, keys)), ...));
        std::copy_n(text.view().data(), text.length(), at);
        return;
    }
    out->nextHeaderIs(header);
    out << Token::begin;
    (Qor::putValue(out, keys), ...);
    auto position = text.iteratorConst();
    out->putChunk(position);
    out << Token::end;
}

void putMember(Qor::Ptr<Out> const& out, Header const& header, MixedRecord const& record,
               Values const& values) {
    switch (record.shape) {
        case Shape::rowKey:
            return putRecord(out, header, values.key, true);
        case Shape::rowKeyGone:
            return putRecord(out, header, values.key);
        case Shape::pairKey:
            return putRecord(out, header, values.pair, true);
        case Shape::pairKeyGone:
            return putRecord(out, header, values.pair);
        case Shape::numberToText:
            return putText(out, header, values.text, static_cast<Qor::U16>(record.second));
        case Shape::textToText:
            return putText(out, header, values.text, values.key);
        default:
            return putRecord(out, header, Kelp::IpAddr::fromHostOrder(record.second),
                             record.number);
    }
}

void put(Qor::Ptr<Out> const& out, MixedRecord const& record, Values const& values) {
    Header const header{Qor::EntityId(record.entity), record.attribute};
    switch (record.what) {
        case What::flag:
            return putRecord(out, header, record.number != 0);
        case What::port:
            return putRecord(out, header, static_cast<Qor::U16>(record.number));
        case What::tunnelKey:
            return putRecord(out, header, static_cast<Qor::U32>(record.number));
        case What::address:
            return putRecord(out, header,
                             Kelp::IpAddr::fromHostOrder(static_cast<Qor::U32>(record.number)));
        case What::state:
            return putRecord(out, header, static_cast<Vgw::SessionState>(record.number));
        case What::counter:
            return putRecord(out, header, record.number);
        case What::mac:
            return putRecord(out, header, values.mac);
        case What::rowText:
        case What::otherRowText:
        case What::shortText:
            return putText(out, header, values.text);
        default:
            return putMember(out, header, record, values);
    }
}

void write(benchmark::State& state) {
    Mixture const mixture;
    std::vector<Values> const values(mixture.records().begin(), mixture.records().end());
    auto const out = Qor::make<Out>();
    for (auto _ : state) {
        auto const* its = values.data();
        for (MixedRecord const& record : mixture.records()) {
            put(out, record, *its++);
            if (!out->hasSufficientBuffer()) drainOut(*out);
        }
    }
    tellOperations(state, Mixture::size);
}

void send(benchmark::State& state) {
    Mixture const mixture;
    OurRows rows(mixture);
    auto const& out = rows.out();
    drainOut(*out);
    std::uint64_t const before = out->frames();
    for (auto _ : state) {
        for (MixedRecord const& record : mixture.records()) {
            rows.send(record);
            if (!out->hasSufficientBuffer()) drainOut(*out);
        }
    }
    auto const written = static_cast<std::uint64_t>(state.iterations()) * Mixture::size;
    if (out->frames() - before != written) state.SkipWithError("not every record was written");
    tellOperations(state, Mixture::size);
}

std::string bytesOf(Mixture const& mixture, OurRows& rows) {
    std::string bytes;
    drainOut(*rows.out());
    for (MixedRecord const& record : mixture.records()) {
        rows.send(record);
        for (auto const& out = rows.out(); !out->unsent().empty();) {
            bytes += out->unsent();
            out->sentInc(out->unsent().size());
        }
    }
    return bytes;
}

template <class S>
auto nextOf(InboundRecord& record) {
    return Qor::nextAttributeValue<typename S::Value>(record);
}

// As readText and readTextMember take a text that has come in one piece.
void takeText(InboundRecord& record, Taken& taken) {
    taken.text(record.in.nextText(record.size).view());
}
void takeMembersText(InboundRecord& record, Taken& taken) {
    Qor::String8::Iterator text;
    Qor::gatherChunk(record, text, record.in.available(), false);
    taken.text(text.text().view());
}

void takePair(InboundRecord& record, Taken& taken) {
    auto const pair = Qor::nextKey<Sa<Vgw::PhysicalLocator>::UcastMacRefStream>(record.in);
    taken.number(pair.mac().number());
    taken.number(pair.vni().value());
}

void takeMember(What what, InboundRecord& record, Taken& taken) {
    using Switch = Sa<Vgw::PhysicalSwitch>;
    switch (what) {
        case What::portRow:
        case What::portRowGone:
            taken.text(Qor::nextKey<Switch::PortStream>(record.in).view());
            if (what == What::portRow) benchmark::DoNotOptimize(record.in.nextbool());
            return;
        case What::pair:
        case What::pairGone:
            takePair(record, taken);
            if (what == What::pair) benchmark::DoNotOptimize(record.in.nextbool());
            return;
        case What::binding:
            taken.number(Qor::nextKey<Sa<Vgw::PhysicalPort>::VlanBindingStream>(record.in));
            return takeMembersText(record, taken);
        case What::word:
            taken.text(Qor::nextKey<Sa<Vgw::PhysicalLocator>::BfdStatusStream>(record.in).view());
            return takeMembersText(record, taken);
        default:
            taken.number(
                Qor::nextKey<Sa<Vgw::HwVtepOvsdb>::PhysicalLocatorStream>(record.in).hostOrder());
            return taken.number(record.in.nextEntityId().value());
    }
}

void takeValue(What what, InboundRecord& record, Taken& taken) {
    using Config = Sa<Vgw::CliConfig>;
    using RemoteMac = Sa<Vgw::UcastMacsRemote>;
    switch (what) {
        case What::counter:
            return taken.number(nextOf<Sa<Vgw::LogicalBindingStats>::InBytesStream>(record));
        case What::mac:
            return taken.number(nextOf<RemoteMac::MacStream>(record).number());
        case What::address:
            return taken.number(nextOf<RemoteMac::IpAddrStream>(record).hostOrder());
        case What::rowText:
        case What::otherRowText:
        case What::shortText:
            return takeText(record, taken);
        case What::tunnelKey:
            return taken.number(nextOf<Sa<Vgw::LogicalSwitch>::TunnelKeyStream>(record));
        case What::port:
            return taken.number(nextOf<Config::ManagerPortStream>(record));
        case What::flag:
            return taken.number(nextOf<Config::EnableAgentStream>(record) ? 1 : 0);
        case What::state:
            return taken.number(nextOf<Sa<Vgw::OvsdbSessionStatus>::SessionStateStream>(record));
        default:
            return takeMember(what, record, taken);
    }
}

// The bytes are put into the ring, too, as a transport would.
void read(benchmark::State& state) {
    Mixture const mixture;
    OurRows rows(mixture);
    std::string const bytes = bytesOf(mixture, rows);
    In& in = *rows.demuxer().in();
    Taken taken;
    Qor::NboAttrLog::Frame frame;
    for (auto _ : state) {
        taken = Taken();
        for (std::size_t given = 0; given < bytes.size();) {
            given += in.receive(std::string_view(bytes).substr(given));
            while (in.nextFrame(frame)) {
                auto const& header = frame.header;
                InboundRecord record{in, rows.demuxer(), header.attributeId, frame.payloadSize,
                                     false};
                takeValue(mixture.whatOf(header.entityId.value(), header.attributeId), record,
                          taken);
                in.frameDone(frame);
            }
        }
        benchmark::DoNotOptimize(taken);
    }
    if (taken != mixture.all()) state.SkipWithError("not every record was read");
    tellOperations(state, Mixture::size);
}

}  // namespace

void addMixedOurs() {
    cell(writeMixedRow, "ours", write);
    cell(sendMixedRow, "ours", send);
    cell(readMixedRow, "ours", read);
}

}  // namespace Bench
