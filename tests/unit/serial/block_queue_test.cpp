#include "serial/block_queue.h"

#include <gtest/gtest.h>

#include <memory>
#include <thread>

namespace kavrel {
namespace {

// Holds a reference that somebody else holds, too: dropping a block then takes the library lock,
// which would never end if the queue held it.
class Block final : public Record {
  public:
    Block(int number, Ref<Record> shared) : number_(number), shared_(std::move(shared)) {}
    int number() const { return number_; }

  private:
    int number_;
    Ref<Record> shared_;
};

class Shared final : public Record {};

class BlockQueueTest : public testing::Test {
  protected:
    ~BlockQueueTest() override {
        queue_.reset();
        shared_.Reset();
        EXPECT_EQ(before_, Record::LiveCount());
    }

    bool Push(int number) { return queue_->Push(MakeRef<Block>(number, shared_)); }

    // The number of the oldest block, or -1.
    int Pop() {
        const Ref<Block> block = queue_->Pop();
        return block ? block->number() : -1;
    }

    const std::int32_t before_ = Record::LiveCount();
    Ref<Record> shared_ = MakeRef<Shared>();
    std::unique_ptr<BlockQueue<Block>> queue_ = std::make_unique<BlockQueue<Block>>();
};

TEST_F(BlockQueueTest, GivesBackInOrder) {
    EXPECT_EQ(-1, Pop());
    for (int i = 1; i <= 2; ++i)
        EXPECT_TRUE(Push(i));
    EXPECT_EQ(1, Pop());
    EXPECT_TRUE(Push(3));
    EXPECT_EQ(2, Pop());
    EXPECT_EQ(3, Pop());
    EXPECT_EQ(-1, Pop());
    EXPECT_TRUE(Push(4));
    queue_->Clear();
    EXPECT_EQ(-1, Pop());
    EXPECT_TRUE(Push(5));
    EXPECT_EQ(5, Pop());
}

TEST_F(BlockQueueTest, IsEmptyWhileItAcceptsNothing) {
    Push(1);
    queue_->SetAccepting(false);
    EXPECT_FALSE(queue_->IsAccepting());
    EXPECT_FALSE(Push(2));
    EXPECT_EQ(-1, Pop());
    queue_->SetAccepting(true);
    EXPECT_TRUE(Push(3));
    queue_->SetAccepting(true);
    EXPECT_EQ(3, Pop());
}

// Dropped one by one; as a chain of destructors they would overflow the stack.
TEST_F(BlockQueueTest, DropsAMillionBlocks) {
    for (int i = 0; i < 1'000'000; ++i)
        queue_->Push(nullptr);
    queue_->Clear();
    for (int i = 0; i < 1'000'000; ++i)
        queue_->Push(nullptr);
}

TEST_F(BlockQueueTest, PassesBlocksBetweenThreads) {
    constexpr int kCount = 20'000;
    std::thread producer([this] {
        for (int i = 1; i <= kCount; ++i)
            Push(i);
    });
    for (int expected = 1; expected <= kCount;) {
        const int number = Pop();
        if (number == -1) {
            std::this_thread::yield();
            continue;
        }
        ASSERT_EQ(expected, number);
        ++expected;
    }
    producer.join();
}

}  // namespace
}  // namespace kavrel
