#include <qor/attrlog/RingBlocks.h>

#include <qor/core/Pool.h>

#include <array>

namespace Qor {

namespace Connection {

namespace {

constexpr std::size_t mostKept = 8;
#ifdef QOR_PLAIN_NEW
constexpr bool keeps = false;
#else
constexpr bool keeps = true;
#endif

// Plain data, which can be reached while the thread ends: what comes then is not kept.
struct Kept {
    enum class State : unsigned char { fresh, live, over };
    std::array<unsigned char*, mostKept> blocks;
    std::size_t count;
    State state;
};

__attribute__((tls_model("initial-exec"))) thread_local constinit Kept kept{};

struct KeptEnd {
    ~KeptEnd() {
        kept.state = Kept::State::over;
        while (kept.count > 0) memDel(kept.blocks[--kept.count], ringBlockSize);
    }
};

void watchThreadEnd() {
    kept.state = Kept::State::live;
    static thread_local KeptEnd end;
    static_cast<void>(&end);
}

}  // namespace

unsigned char* takeRingBlock() {
    if (kept.count > 0) return kept.blocks[--kept.count];
    return static_cast<unsigned char*>(memNew(ringBlockSize));
}

void giveRingBlock(unsigned char* block) noexcept {
    if (kept.state == Kept::State::fresh) watchThreadEnd();
    bool const isFull = kept.state == Kept::State::over || kept.count == mostKept;
    if (!keeps || isFull) return memDel(block, ringBlockSize);
    kept.blocks[kept.count++] = block;
}

}  // namespace Connection

}  // namespace Qor
