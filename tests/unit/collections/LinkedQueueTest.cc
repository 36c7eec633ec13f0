#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include <qor/collections/LinkedQueue.h>

namespace {

using Queue = Qor::LinkedQueue<std::string>;

std::vector<std::string> contents(Queue const& queue) { return {queue.begin(), queue.end()}; }

TEST(LinkedQueue, WhatCameFirstGoesFirst) {
    Queue queue;
    EXPECT_TRUE(queue.isEmpty());
    queue.enq("a");
    queue.enq("b");
    EXPECT_EQ(queue.size(), 2U);
    EXPECT_EQ(queue.deq(), "a");
    queue.enq("c");
    EXPECT_EQ(queue.deq(), "b");
    EXPECT_EQ(queue.deq(), "c");
    EXPECT_TRUE(queue.isEmpty());
    EXPECT_EQ(queue.size(), 0U);
}

TEST(LinkedQueue, EmptiedOneTakesUpAgain) {
    Queue queue{"a"};
    queue.deq();
    queue.enq("b");
    queue.enq("c");
    EXPECT_EQ(contents(queue), (std::vector<std::string>{"b", "c"}));
}

TEST(LinkedQueue, CopyIsTakenFromWithoutItsOriginal) {
    Queue const queue{"a", "b"};
    Queue copy = queue;
    copy.deq();
    copy.enq("c");
    EXPECT_EQ(contents(queue), (std::vector<std::string>{"a", "b"}));
    EXPECT_EQ(contents(copy), (std::vector<std::string>{"b", "c"}));
}

TEST(LinkedQueue, MovedFromIsEmptyAndUsable) {
    Queue queue{"a", "b"};
    Queue moved = std::move(queue);
    EXPECT_EQ(contents(moved), (std::vector<std::string>{"a", "b"}));
    queue = Queue();
    queue.enq("c");
    EXPECT_EQ(contents(queue), std::vector<std::string>{"c"});
    queue = moved;
    EXPECT_EQ(contents(queue), contents(moved));
}

TEST(LinkedQueue, AssignedToItselfStays) {
    Queue queue{"a", "b"};
    Queue const& same = queue;
    queue = same;
    EXPECT_EQ(contents(queue), (std::vector<std::string>{"a", "b"}));
}

TEST(LinkedQueue, IteratorOutlivesTheComingOfOthers) {
    Queue queue{"a"};
    Queue::Iterator at(queue);
    queue.enq("b");
    EXPECT_EQ(*at, "a");
    EXPECT_EQ(*++at, "b");
    EXPECT_FALSE(++at);
    EXPECT_FALSE(Queue::Iterator());
}

// An element whose copies are counted and, after some, refused.
struct Rare {
    explicit Rare(int& living) : living_(&living) { ++*living_; }
    Rare(Rare const& other) : living_(other.living_) {
        if (left == 0) throw std::runtime_error("no more copies");
        --left;
        ++*living_;
    }
    ~Rare() { --*living_; }
    static inline int left = 0;

  private:
    int* living_;
};

TEST(LinkedQueue, CopyThatCantBeCompletedLeavesNothingBehind) {
    int living = 0;
    {
        Qor::LinkedQueue<Rare> queue;
        Rare::left = 6;  // into the argument, and into the queue
        for (int i = 0; i < 3; ++i) queue.enq(Rare(living));
        ASSERT_EQ(living, 3);
        Rare::left = 5;
        EXPECT_THROW(Qor::LinkedQueue<Rare>{queue}, std::runtime_error);
        EXPECT_EQ(living, 3);
    }
    Rare const one(living);
    Rare::left = 6;  // three into the list
    EXPECT_THROW((Qor::LinkedQueue<Rare>{one, one, one}), std::runtime_error);
    EXPECT_EQ(living, 1);
}

TEST(LinkedQueue, LongOneEndsWithoutRecursion) {
    Qor::LinkedQueue<std::shared_ptr<int>> queue;
    auto const element = std::make_shared<int>(1);
    for (int i = 0; i < 1'000'000; ++i) {
        queue.enq(element);
    }
    EXPECT_EQ(element.use_count(), 1'000'001);
    queue = {};
    EXPECT_EQ(element.use_count(), 1);
}

TEST(LinkedQueueDeathTest, NothingIsTakenFromAnEmptyOne) {
    Queue queue;
    EXPECT_DEATH(queue.deq(), "the queue is not empty");
}

}  // namespace
