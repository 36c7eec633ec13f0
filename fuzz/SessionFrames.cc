// Frames that are nearly right, mixed with changes of the agent's own: as SessionBytes.cc, further
// in. A peer that may only read changes nothing.
#include <fuzz/FuzzInput.h>
#include <fuzz/HostilePeer.h>
#include <fuzz/ServedTree.h>

namespace {

void play(HostilePeer& peer, ServedTree& tree, ServedSession& served, bool mayChange) {
    served.receive(HostilePeer::hello());
    while (!peer.isOver() && served.session().closed().length() == 0) {
        std::string wire;
        HostileStep const step = peer.next(wire);
        if (step == HostileStep::send) served.receive(wire);
        if (step == HostileStep::serve) served.serve();
        if (step == HostileStep::change && mayChange) tree.change(peer.byte());
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    if (size == 0) return 0;
    bool const mayWrite = (data[0] & 1) != 0;
    HostilePeer peer(textOf(data + 1, size - 1));
    ServedTree tree;
    ServedTree copy;
    std::string const before = tree.text();
    {
        ServedSession served(tree.root, mayWrite, (data[0] & 4) != 0);
        if (data[0] & 2) served.mount(copy.status);
        if (data[0] & 8) served.session().askForDigest({"/peer", 0, "", 16});
        play(peer, tree, served, mayWrite);
        tree.mustBeConsistent();
        copy.mustBeConsistent();
        if (!mayWrite) must(tree.text() == before);
    }
    tree.mustBeConsistent();
    return 0;
}
