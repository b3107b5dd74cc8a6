#include "serial/block_queue.h"

#include <gmock/gmock.h>

#include "base/byte_block.h"

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

TEST(BlockQueue, GivesBackInOrderWhatItAccepted) {
    const Ref<Record> shared = MakeRef<ByteBlock>(std::vector<std::uint8_t>());
    BlockQueue<Block> queue;
    const auto push = [&](int number) { return queue.Push(MakeRef<Block>(number, shared)); };
    const auto popAll = [&] {
        std::vector<int> numbers;
        while (const Ref<Block> block = queue.Pop())
            numbers.push_back(block->number());
        return numbers;
    };
    for (const int number : {1, 2, 3})
        EXPECT_TRUE(push(number));
    EXPECT_EQ(queue.Pop()->number(), 1);
    EXPECT_TRUE(push(4));
    EXPECT_THAT(popAll(), testing::ElementsAre(2, 3, 4));
    push(5);
    queue.Clear();
    EXPECT_TRUE(push(6));
    EXPECT_THAT(popAll(), testing::ElementsAre(6));

    push(7);
    queue.SetAccepting(false);
    EXPECT_FALSE(queue.IsAccepting());
    EXPECT_FALSE(push(8));
    EXPECT_THAT(popAll(), testing::IsEmpty());
    queue.SetAccepting(true);
    EXPECT_TRUE(push(9));
    queue.SetAccepting(true);
    EXPECT_THAT(popAll(), testing::ElementsAre(9));
    push(10);
}

// Dropped one by one; as a chain of destructors they would overflow the stack.
TEST(BlockQueue, DropsAMillionBlocks) {
    BlockQueue<Block> queue;
    for (int i = 0; i < 1'000'000; ++i)
        queue.Push(nullptr);
    queue.Clear();
    for (int i = 0; i < 1'000'000; ++i)
        queue.Push(nullptr);
}

}  // namespace
}  // namespace kavrel
