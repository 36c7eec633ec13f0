// A hostile peer beside an honest one on the same tree: whatever the first does, the second's
// session goes on, and its copy equals the tree.
#include <fuzz/FuzzInput.h>
#include <fuzz/HostilePeer.h>
#include <fuzz/ServedTree.h>

namespace {

using Qor::NboAttrLog::MemoryTransport;
using Qor::NboAttrLog::Session;

class Honest {
  public:
    explicit Honest(ServedTree const& tree) {
        MemoryTransport::connect(near_, far_);
        Session::Config config;
        reader_ = std::make_unique<Session>(config, near_, nullptr);
        config.side = Qor::NboAttrLog::Demuxer::Side::accepting;
        agent_ = std::make_unique<Session>(config, far_, tree.root);
        reader_->mount("/vgw/status", false, copy);
        settle();
    }
    void settle() {
        for (std::uint64_t before = ~std::uint64_t{0}; before != written();) {
            before = written();
            agent_->service();
            reader_->service();
        }
    }
    bool isOpen() const {
        return agent_->closed().length() == 0 && reader_->closed().length() == 0;
    }

    Vgw::Status::Ptr copy = Vgw::statusFactory(Qor::Name("status"));

  private:
    std::uint64_t written() const {
        return agent_->counters().bytesOut + reader_->counters().bytesOut;
    }

    MemoryTransport near_;
    MemoryTransport far_;
    std::unique_ptr<Session> agent_;
    std::unique_ptr<Session> reader_;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    HostilePeer peer(textOf(data, size));
    ServedTree tree;
    Honest honest(tree);
    {
        ServedSession served(tree.root, true);
        served.receive(HostilePeer::hello());
        while (!peer.isOver() && served.session().closed().length() == 0) {
            std::string wire;
            HostileStep const step = peer.next(wire);
            if (step == HostileStep::send) served.receive(wire);
            if (step == HostileStep::serve) honest.settle();
            if (step == HostileStep::change) tree.change(peer.byte());
        }
    }
    tree.mustBeConsistent();
    honest.settle();
    must(honest.isOpen());
    must(textOf(*honest.copy) == textOf(*tree.status));
    return 0;
}
