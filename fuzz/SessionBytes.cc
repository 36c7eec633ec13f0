// Any bytes behind a hello, on a session that serves a tree and mounts another: it goes on, or ends
// with one named reason; what it serves stays whole.
#include <fuzz/FuzzInput.h>
#include <fuzz/HostilePeer.h>
#include <fuzz/ServedTree.h>

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    ServedTree tree;
    ServedTree copy;
    {
        ServedSession served(tree.root, true);
        served.mount(copy.status);
        served.receive(HostilePeer::hello());
        must(served.session().closed().length() == 0);
        served.receive(textOf(data, size));
        tree.mustBeConsistent();
        copy.mustBeConsistent();
    }
    tree.mustBeConsistent();
    return 0;
}
