// The floor of the setter rows: the work itself, written by hand. Counts are changed plainly or,
// for the rows with several threads, by the locked instruction.
#ifndef BENCH_SETTERS_FLOOR_H
#define BENCH_SETTERS_FLOOR_H

#include <array>
#include <atomic>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <vector>

namespace Bench {

class PlainCount {
  public:
    void take() { ++count_; }
    bool give() { return --count_ == 0; }

  private:
    std::uint32_t count_ = 1;
};

class AtomicCount {
  public:
    void take() { count_.fetch_add(1, std::memory_order_relaxed); }
    bool give() { return count_.fetch_sub(1, std::memory_order_acq_rel) == 1; }

  private:
    std::atomic<std::uint32_t> count_{1};
};

/// A counted text: one pointer, copied by taking a reference.
template <class Count>
class FloorString {
  public:
    explicit FloorString(std::string_view text) : block_(new Block) {
        block_->length = static_cast<std::uint32_t>(text.size());
        std::memcpy(block_->bytes, text.data(), text.size());
    }
    FloorString(FloorString const& other) : block_(other.block_) { block_->count.take(); }
    FloorString(FloorString&& other) noexcept : block_(std::exchange(other.block_, nullptr)) {}
    FloorString& operator=(FloorString&& other) noexcept {
        std::swap(block_, other.block_);
        return *this;
    }
    ~FloorString() {
        if (block_ && block_->count.give()) {
            delete block_;
        }
    }
    bool operator==(FloorString const& other) const {
        return block_ == other.block_ ||
               (block_->length == other.block_->length &&
                std::memcmp(block_->bytes, other.block_->bytes, block_->length) == 0);
    }

  private:
    struct Block {
        Count count;
        std::uint32_t length;
        char bytes[40];
    };
    Block* block_;
};

template <class Count>
struct FloorRow {
    std::uint32_t number = 0;
    FloorString<Count> text{"unset"};

    void numberIs(std::uint32_t value) {
        if (number != value) {
            number = value;
        }
    }
    void textIs(FloorString<Count> value) {
        if (!(text == value)) {
            text = std::move(value);
        }
    }
};

template <class Count>
class FloorNotifiee {
  public:
    virtual ~FloorNotifiee() = default;
    virtual void onNumber() = 0;
    virtual void onException() = 0;
    Count count;
    FloorNotifiee* next = nullptr;
};

/// A setter that tells: over a snapshot of counted pointers, what a handler throws contained.
template <class Count>
class FloorNotifier {
  public:
    using Notifiee = FloorNotifiee<Count>;

    void attach(Notifiee& notifiee) {
        notifiee.next = head_;
        head_ = &notifiee;
    }
    void numberIs(std::uint32_t value) {
        if (number_ == value) {
            return;
        }
        number_ = value;
        std::array<Notifiee*, 16> snapshot;
        std::size_t size = 0;
        for (Notifiee* at = head_; at; at = at->next) {
            at->count.take();
            snapshot[size++] = at;
        }
        for (std::size_t i = 0; i < size; ++i) {
            try {
                snapshot[i]->onNumber();
            } catch (...) {
                snapshot[i]->onException();
            }
            if (snapshot[i]->count.give()) {
                delete snapshot[i];
            }
        }
    }

  private:
    std::uint32_t number_ = 0;
    Notifiee* head_ = nullptr;
};

}  // namespace Bench

#endif
