#include <qor/core/Pool.h>

#include <sys/mman.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdint>
#include <mutex>
#include <new>
#include <utility>

namespace Qor {

#ifdef QOR_PLAIN_NEW

void* memNew(std::size_t size) { return ::operator new(size); }
void* memNewOrNull(std::size_t size) noexcept { return ::operator new(size, std::nothrow); }
void memDel(void* block, std::size_t) noexcept { ::operator delete(block); }
std::size_t memFromSystem() noexcept { return 0; }

#else

namespace {

constexpr std::size_t grain = 8;
constexpr std::size_t largest = 512;
constexpr std::size_t classes = largest / grain;
constexpr std::size_t cacheLine = 64;
constexpr std::size_t batchBytes = 8192;  // what moves between a cache and the arena

// What is asked of the system at once grows with what is held, so that a small process stays small
// and any other gets large pages.
constexpr std::size_t firstPiece = std::size_t{1} << 20;
constexpr std::size_t mostPiece = std::size_t{1} << 26;
constexpr std::size_t pieceShare = 4;  // a piece is a quarter of what is held
constexpr std::size_t page = 4096;
constexpr std::size_t largePage = std::size_t{1} << 21;
// Of the first piece the system brings so many pages at a time, which costs less than to
// fault them in one by one.
constexpr std::size_t leastAtOnce = std::size_t{1} << 16;
constexpr std::size_t mostAtOnce = std::size_t{1} << 18;

struct Block {
    Block* next;
};

// A chain that was given back, among others: it is handed out as it came, so that nobody walks
// through memory that no cache holds any more.
struct Batch : Block {
    Batch* nextBatch;
    std::size_t count;
};

// A chain of free blocks of one class; `count` of them.
struct Chain {
    Block* head = nullptr;
    std::size_t count = 0;
};

constexpr std::size_t classOf(std::size_t size) { return size == 0 ? 0 : (size - 1) / grain; }
constexpr std::size_t blockSize(std::size_t cls) { return (cls + 1) * grain; }
constexpr std::size_t batchOf(std::size_t cls) { return batchBytes / blockSize(cls); }
constexpr bool bearsBatch(std::size_t cls) { return blockSize(cls) >= sizeof(Batch); }

// Asks for large pages where whole ones fit: members that lie far apart are reached without a walk
// through the page tables, and fresh memory costs few page faults. A refusal changes nothing.
void* withLargePages(void* block, std::size_t size) noexcept {
    auto const at = reinterpret_cast<std::uintptr_t>(block);
    auto const begin = (at + largePage - 1) & ~(largePage - 1);
    auto const end = (at + size) & ~(largePage - 1);
    if (block && begin < end) {
        ::madvise(static_cast<char*>(block) + (begin - at), end - begin, MADV_HUGEPAGE);
    }
    return block;
}

char* pageOf(char* at) noexcept { return at - reinterpret_cast<std::uintptr_t>(at) % page; }

// The arena behind all threads. It is never destroyed: blocks may come back while the process ends.
class Arena {
  public:
    Chain take(std::size_t cls) noexcept {
        std::lock_guard lock(mutex_);
        Chain& spare = spare_[cls];
        if (!spare.head) return carve(cls);
        return bearsBatch(cls) ? firstBatch(spare) : cut(spare, batchOf(cls));
    }
    void give(std::size_t cls, Chain chain) noexcept {
        if (chain.count == 0) {
            return;
        }
        std::lock_guard lock(mutex_);
        if (bearsBatch(cls)) {
            auto* const next = static_cast<Batch*>(spare_[cls].head);
            spare_[cls].head = ::new (chain.head) Batch{{chain.head->next}, next, chain.count};
            return;
        }
        Block* tail = chain.head;
        while (tail->next) {
            tail = tail->next;
        }
        tail->next = spare_[cls].head;
        spare_[cls].head = chain.head;
        spare_[cls].count += chain.count;
    }
    static Chain cut(Chain& from, std::size_t n) noexcept {
        Chain out{from.head, 0};
        Block* last = nullptr;
        while (from.head && out.count < n) {
            last = from.head;
            from.head = last->next;
            ++out.count;
        }
        if (last) {
            last->next = nullptr;
        }
        from.count -= out.count;
        return out;
    }
    std::size_t fromSystem() const noexcept { return fromSystem_.load(std::memory_order_relaxed); }

  private:
    static Chain firstBatch(Chain& spare) noexcept {
        auto* const batch = static_cast<Batch*>(spare.head);
        spare.head = batch->nextBatch;
        return {batch, batch->count};
    }
    Chain carve(std::size_t cls) noexcept {
        std::size_t const size = blockSize(cls);
        if (left_ < size + cacheLine && !refill()) {
            return {};
        }
        pass(offTheLines(size));
        Chain out;
        std::size_t const n = std::min(batchOf(cls), left_ / size);
        bring(n * size);
        char* at = piece_;
        for (std::size_t i = 0; i < n; ++i, at += size) {
            auto* block = ::new (static_cast<void*>(at)) Block{nullptr};
            block->next = i + 1 < n ? reinterpret_cast<Block*>(at + size) : nullptr;
        }
        out.head = reinterpret_cast<Block*>(piece_);
        out.count = n;
        pass(n * size);
        return out;
    }
    // How far it is from the rest of the piece to where blocks of that size lie as even as they
    // can: they bear any type of their size, and straddle no more lines of the cache than they
    // must.
    std::size_t offTheLines(std::size_t size) const noexcept {
        std::size_t const alignment = std::min(size & -size, cacheLine);
        return -reinterpret_cast<std::uintptr_t>(piece_) & (alignment - 1);
    }
    void pass(std::size_t bytes) noexcept {
        piece_ += bytes;
        left_ -= bytes;
    }
    // Has the pages of the next `bytes` brought, and some more: the more, the more are in use. A
    // refusal changes nothing: they come as they are touched.
    void bring(std::size_t bytes) noexcept {
        if (piece_ + bytes <= brought_) return;
        std::size_t const ahead = std::clamp((fromSystem() - left_) / 2, leastAtOnce, mostAtOnce);
        char* const from = pageOf(brought_);
        brought_ = std::min(piece_ + left_, pageOf(piece_ + bytes + ahead));
        ::madvise(from, static_cast<std::size_t>(brought_ - from), MADV_POPULATE_WRITE);
    }
    // All pieces but the first are whole large pages.
    std::size_t pieceSize() const noexcept {
        std::size_t const held = fromSystem();
        if (held == 0) return firstPiece;
        return std::clamp(held / pieceShare, largePage, mostPiece) / largePage * largePage;
    }
    bool refill() noexcept {
        std::size_t const size = pieceSize();
        std::align_val_t const alignment{size < largePage ? cacheLine : largePage};
        void* const piece = withLargePages(::operator new(size, alignment, std::nothrow), size);
        if (!piece) {
            return false;
        }
        fromSystem_.fetch_add(size, std::memory_order_relaxed);
        piece_ = static_cast<char*>(piece);
        left_ = size;
        brought_ = size < largePage ? piece_ : piece_ + size;
        return true;
    }

    std::mutex mutex_;
    std::array<Chain, classes> spare_{};
    char* piece_ = nullptr;
    std::size_t left_ = 0;
    char* brought_ = nullptr;  // up to here the piece's pages are there, or come as large ones
    std::atomic<std::size_t> fromSystem_{0};
};

constinit Arena arena;

// Plain data, so that reaching it costs one load; `state` says what the thread's end has done to
// it. Small: it stands in the static thread storage, which libraries that are loaded later share.
struct Cache {
    enum class State : unsigned char { fresh, live, over };
    std::array<Block*, classes> heads;
    std::array<std::uint16_t, classes> counts;
    State state;

    Chain all(std::size_t cls) noexcept {
        return {std::exchange(heads[cls], nullptr), std::exchange(counts[cls], std::uint16_t{0})};
    }
    void are(std::size_t cls, Chain chain) noexcept {
        heads[cls] = chain.head;
        counts[cls] = static_cast<std::uint16_t>(chain.count);
    }
};
static_assert(2 * batchOf(0) < UINT16_MAX);

__attribute__((tls_model("initial-exec"))) thread_local constinit Cache cache{};

// Gives the thread's blocks back to the arena at its end.
struct CacheEnd {
    ~CacheEnd() {
        cache.state = Cache::State::over;
        for (std::size_t cls = 0; cls < classes; ++cls) {
            arena.give(cls, cache.all(cls));
        }
    }
};

void watchThreadEnd() {
    if (cache.state == Cache::State::fresh) {
        cache.state = Cache::State::live;
        static thread_local CacheEnd end;
        static_cast<void>(&end);
    }
}

__attribute__((noinline)) void* fill(std::size_t cls) noexcept {
    watchThreadEnd();
    Chain chain = arena.take(cls);
    if (!chain.head) {
        return nullptr;
    }
    Block* block = chain.head;
    chain.head = block->next;
    --chain.count;
    if (cache.state == Cache::State::over) {
        arena.give(cls, chain);
    } else {
        cache.are(cls, chain);
    }
    return block;
}

// A chain is too long, or this is the first that the thread does with the pool, or its end is past.
__attribute__((noinline)) void spill(std::size_t cls) noexcept {
    watchThreadEnd();
    std::size_t const most = cache.state == Cache::State::over ? 0 : 2 * batchOf(cls);
    if (cache.counts[cls] > most) {
        Chain chain = cache.all(cls);
        arena.give(cls, Arena::cut(chain, chain.count - most / 2));
        cache.are(cls, chain);
    }
}

}  // namespace

namespace {

inline void* blockOrNull(std::size_t size) noexcept {
    if (size > largest) [[unlikely]] {
        return withLargePages(::operator new(size, std::nothrow), size);
    }
    std::size_t const cls = classOf(size);
    if (Block* block = cache.heads[cls]) [[likely]] {
        cache.heads[cls] = block->next;
        --cache.counts[cls];
        __builtin_prefetch(block->next, 1);  // where the next one is taken from
        return block;
    }
    return fill(cls);
}

}  // namespace

void* memNewOrNull(std::size_t size) noexcept { return blockOrNull(size); }

void* memNew(std::size_t size) {
    void* block = blockOrNull(size);
    if (!block) [[unlikely]] {
        throw std::bad_alloc();
    }
    return block;
}

void memDel(void* block, std::size_t size) noexcept {
    if (!block) {
        return;
    }
    if (size > largest) {
        ::operator delete(block);
        return;
    }
    std::size_t const cls = classOf(size);
    cache.heads[cls] = ::new (block) Block{cache.heads[cls]};
    if (++cache.counts[cls] > 2 * batchOf(cls) || cache.state != Cache::State::live) [[unlikely]] {
        spill(cls);
    }
}

std::size_t memFromSystem() noexcept { return arena.fromSystem(); }

#endif

}  // namespace Qor
