#include <zintar/detail/blocks.h>
#include <zintar/zintar.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <thread>
#include <vector>

namespace
{
TEST(Blocks, AreGivenBackOnAnyThread)
{
    struct Late {
        ZTVariant value{1};
        ~Late() { value = ZTVariant(std::string(60, 'y')); }
    };
    std::vector<ZTVariant> values;
    for (int round = 0; round < 5; ++round) {
        std::thread([&] {
            thread_local Late late; // outlives what the thread keeps
            late.value = ZTVariant(round);
            for (int i = 0; i < 500; ++i)
                values.emplace_back(std::string(60, 'x') + std::to_string(i));
        }).join();
        for (std::size_t i = 0; i < values.size(); ++i)
            ASSERT_EQ(values[i], ZTVariant(std::string(60, 'x') + std::to_string(i % 500)));
        if (round % 2)
            std::thread([&] { values.clear(); }).join();
    }
}

TEST(Blocks, DoNotOverlapAndAreAligned)
{
    struct alignas(128) Wide {};
    for (std::size_t size = 1; size <= 300; ++size) {
        std::vector<unsigned char*> blocks;
        for (unsigned char i = 0; i < 200; ++i) {
            blocks.push_back(static_cast<unsigned char*>(zt::detail::takeBlock(size)));
            ASSERT_EQ(reinterpret_cast<std::uintptr_t>(blocks.back()) % alignof(std::max_align_t),
                      0U);
            std::fill_n(blocks.back(), size, i);
        }
        for (std::size_t i = 0; i < blocks.size(); ++i) {
            ASSERT_EQ(std::count(blocks[i], blocks[i] + size, i), std::ptrdiff_t(size));
            zt::detail::giveBlockBack(blocks[i], size);
        }
    }
    const std::vector<ZTVariant> wide(10, ZTVariant(Wide{}));
    for (const ZTVariant& variant : wide)
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(variant.data()) % alignof(Wide), 0U);
}
} // namespace
