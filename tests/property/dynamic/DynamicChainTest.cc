// Three processes in a row: one with the classes, one that knows them by description and serves the
// tree on, and a third of either sort. Under random changes on any of them, random room and cuts,
// all hold the same once nothing is on its way.
#include "../../unit/attrlog/Peers.h"
#include "../../unit/dynamic/Described.h"
#include "../../unit/dynamic/Tree.h"

#include <qor/dynamic/DynamicAdapter.h>

#include <vgw/attrlog/Status.h>

#include <tests/support/Settings.h>

#include <gtest/gtest.h>

#include <memory>

namespace {

using Qor::Entity;
using Qor::make;
using Qor::Name;
using Qor::Ptr;

Ptr<Entity> describedStatus() { return Described::twin("Vgw::Status").newInstance(Name("status")); }

// A mount of one process's tree by the next.
class Link {
  public:
    Link(Ptr<Entity> source, Ptr<Entity> copy)
        : source_(std::move(source)), copy_(std::move(copy)) {
        connect();
    }
    // As after a reconnect: the copy stays and is mounted again.
    void cut() {
        peers_->source.demuxer->close();
        peers_->reader.demuxer->close();
        connect();
    }
    std::size_t carrySome(Tree::Random& random) {
        std::size_t const most = random() % 8 == 0 ? ~std::size_t{0} : random() % 300;
        return carry(peers_->source, peers_->reader, most) +
               carry(peers_->reader, peers_->source, most);
    }
    std::size_t carryAll() {
        return carry(peers_->source, peers_->reader) + carry(peers_->reader, peers_->source);
    }
    std::string failure() const {
        return std::string(peers_->source.failure.view()) +
               std::string(peers_->reader.failure.view());
    }

  private:
    void connect() {
        peers_ = std::make_unique<Peers>(4);
        peers_->reader.copy = copy_;
        auto const bits = Qor::AdapterState::Bits(Qor::AdapterState::weakNotifier);
        auto const adapter = source_->qorNboAttrLogSaIs(bits, 1, peers_->source.outPtr(), nullptr);
        adapter->qorOnInit();
        adapter->doSerializeOrphan();
    }

    Ptr<Entity> const source_;
    Ptr<Entity> const copy_;
    std::unique_ptr<Peers> peers_;
};

class DynamicChain : public testing::TestWithParam<unsigned> {
  protected:
    void settle() {
        while (first.carryAll() + second.carryAll() != 0) {
        }
        ASSERT_EQ(first.failure() + second.failure(), "") << "seed " << GetParam();
    }
    void expectEqual() {
        std::string const held = Tree::dump(source);
        ASSERT_EQ(Tree::dump(middle), held) << "seed " << GetParam();
        ASSERT_EQ(Tree::dump(third), held) << "seed " << GetParam();
    }

    Tree::Random random{GetParam()};
    Ptr<Entity> const source = make<Vgw::Status>(Name("status"));
    Ptr<Entity> const middle = describedStatus();
    Ptr<Entity> const third =
        GetParam() % 2 ? describedStatus() : Ptr<Entity>(make<Vgw::Status>(Name("status")));
    Link first{source, middle};
    Link second{middle, third};
};

TEST_P(DynamicChain, HoldsTheSameEverywhereAtRest) {
    settle();
    for (int round = 0; round < 6; ++round) {
        // One writes at a time; the source alone while links are cut, since a copy's own changes
        // give way to what it is mounted on again.
        bool const isCut = random() % 2 == 0;
        Ptr<Entity> const writers[] = {source, middle, third};
        Ptr<Entity> const& writer = writers[isCut ? 0 : random() % 3];
        for (int i = 0; i < 20; ++i) {
            Tree::change(random, writer);
            first.carrySome(random);
            second.carrySome(random);
            if (isCut && random() % 10 == 0) first.cut();
            if (isCut && random() % 10 == 0) second.cut();
        }
        Tree::dropDangling(writer);
        settle();
        expectEqual();
        if (HasFatalFailure()) return;
    }
}

INSTANTIATE_TEST_SUITE_P(Seeds, DynamicChain,
                         testing::Range(1U, 1U + unsigned{Settings::volume(100, 50, 15)}));

}  // namespace
