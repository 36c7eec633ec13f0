// Our columns of the mixed rows: what is written comes from the handlers of real entities'
// adapters, and what is read goes through the readers that those have for their attributes.
#include <qor/attrlog/family/TextIn.h>
#include <qor/attrlog/family/ValueOut.h>

#include "../../Row.h"
#include "OurRows.h"

namespace Bench {

namespace {

using Qor::InboundRecord;
using Qor::NboAttrLog::In;
using Qor::NboAttrLog::Out;

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

// As TextMemberOut puts the only chunk of a text.
void putText(Qor::Ptr<Out> const& out, Qor::String8 const& text) {
    auto position = text.iteratorConst();
    out->putChunk(position);
}

void putMember(Qor::Ptr<Out> const& out, MixedRecord const& record, Values const& values) {
    switch (record.shape) {
        case Shape::rowKey:
            out << values.key << true;
            return;
        case Shape::rowKeyGone:
            out << values.key;
            return;
        case Shape::pairKey:
            out << values.pair << true;
            return;
        case Shape::pairKeyGone:
            out << values.pair;
            return;
        case Shape::numberToText:
            out << static_cast<Qor::U16>(record.second);
            return putText(out, values.text);
        case Shape::textToText:
            out << values.key;
            return putText(out, values.text);
        default:
            out << Kelp::IpAddr::fromHostOrder(record.second) << record.number;
            return;
    }
}

void putPayload(Qor::Ptr<Out> const& out, MixedRecord const& record, Values const& values) {
    switch (record.what) {
        case What::flag:
            return Qor::putValue(out, record.number != 0);
        case What::port:
            return Qor::putValue(out, static_cast<Qor::U16>(record.number));
        case What::tunnelKey:
            return Qor::putValue(out, static_cast<Qor::U32>(record.number));
        case What::address:
            return Qor::putValue(out,
                                 Kelp::IpAddr::fromHostOrder(static_cast<Qor::U32>(record.number)));
        case What::state:
            return Qor::putValue(out, static_cast<Vgw::SessionState>(record.number));
        case What::counter:
            return Qor::putValue(out, record.number);
        case What::mac:
            return Qor::putValue(out, values.mac);
        case What::rowText:
        case What::otherRowText:
        case What::shortText:
            return out->putBytes(values.text.view());
        default:
            return putMember(out, record, values);
    }
}

void write(benchmark::State& state) {
    using Token = Out::TransactToken;
    Mixture const mixture;
    std::vector<Values> const values(mixture.records().begin(), mixture.records().end());
    auto const out = Qor::make<Out>();
    for (auto _ : state) {
        auto const* its = values.data();
        for (MixedRecord const& record : mixture.records()) {
            out->nextHeaderIs({Qor::EntityId(record.entity), record.attribute});
            out << Token::begin;
            putPayload(out, record, *its++);
            out << Token::end;
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
