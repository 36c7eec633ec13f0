// The entities of the mixture, 64 of each class, with an adapter each on one connection.
#ifndef BENCH_ATTRLOG_MIXED_OUR_ROWS_H
#define BENCH_ATTRLOG_MIXED_OUR_ROWS_H

#include <qor/attrlog/family/MakeAdapter.h>
#include <vgw/attrlog/CliConfig.h>
#include <vgw/attrlog/HwVtepOvsdb.h>
#include <vgw/attrlog/LogicalBindingStats.h>
#include <vgw/attrlog/LogicalSwitch.h>
#include <vgw/attrlog/OvsdbSessionStatus.h>
#include <vgw/attrlog/PhysicalLocator.h>
#include <vgw/attrlog/PhysicalPort.h>
#include <vgw/attrlog/PhysicalSwitch.h>
#include <vgw/attrlog/UcastMacsRemote.h>

#include <tuple>
#include <vector>

#include "Mixture.h"

namespace Bench {

template <class X>
struct OurRow {
    Qor::Ptr<X> entity;
    Qor::Ptr<typename X::QorNboAttrLogSa> adapter;
};

class OurRows {
  public:
    /// Sets what the mixture's records say.
    explicit OurRows(Mixture const& mixture);

    Qor::NboAttrLog::Demuxer& demuxer() const { return *demuxer_; }
    Qor::Ptr<Qor::NboAttrLog::Out> const& out() const { return out_; }

    /// Sends the record, as the telling of the change does: by the adapter's handler.
    void send(MixedRecord const& record);

  private:
    struct Senders;
    template <class X>
    using All = std::vector<OurRow<X>>;

    template <class X>
    void add(Mixture::Class of);
    template <class X>
    OurRow<X>& row(std::size_t index) {
        return std::get<All<X>>(all_)[index];
    }
    void fill(std::size_t index, Mixture const& mixture);
    void fillMembers(std::size_t index, std::size_t member, Mixture const& mixture);

    Qor::Ptr<Qor::NboAttrLog::Out> const out_ = Qor::make<Qor::NboAttrLog::Out>();
    Qor::NboAttrLog::Demuxer::Ptr const demuxer_ =
        Qor::make<Qor::NboAttrLog::Demuxer>(Qor::Name("end"), Qor::make<Qor::NboAttrLog::In>(),
                                            out_, Qor::NboAttrLog::Demuxer::Side::connecting);
    std::tuple<All<Vgw::LogicalBindingStats>, All<Vgw::UcastMacsRemote>, All<Vgw::LogicalSwitch>,
               All<Vgw::CliConfig>, All<Vgw::OvsdbSessionStatus>, All<Vgw::PhysicalSwitch>,
               All<Vgw::PhysicalLocator>, All<Vgw::PhysicalPort>, All<Vgw::HwVtepOvsdb>>
        all_;
    std::vector<Qor::String8> keys_;
    std::vector<Qor::String8> missing_;
    std::vector<Qor::String8> options_;
};

}  // namespace Bench

#endif
