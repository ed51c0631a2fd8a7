#include "KestroCore/Support/SerialQueue.h"

#include <future>
#include <gtest/gtest.h>
#include <vector>

namespace kestro {
namespace {

using namespace std::chrono_literals;

TEST(SerialQueue, RunsInOrderAndFinishesBeforeItGoes)
{
    std::vector<int> ran;
    {
        SerialQueue queue("test");
        for (int i = 0; i < 3; ++i)
            queue.async([&, i] { ran.push_back(i); });
        queue.drain();
        EXPECT_EQ(ran, (std::vector{ 0, 1, 2 }));
        queue.async([&] { ran.push_back(3); });
    }
    EXPECT_EQ(ran, (std::vector{ 0, 1, 2, 3 }));
}

TEST(SerialQueue, DrainingHasAnEndWhereTheWorkHasNone)
{
    std::promise<void> mount;
    SerialQueue queue("test");
    queue.async([answer = mount.get_future().share()] { answer.wait(); });
    EXPECT_FALSE(queue.drainFor(20ms));
    mount.set_value();
    EXPECT_TRUE(queue.drainFor(5s));
}

} // namespace
} // namespace kestro
