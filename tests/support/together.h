#pragma once

#include <barrier>
#include <functional>
#include <thread>
#include <vector>

namespace support
{
/// Runs each action on a thread of its own, all starting at one moment; returns when all have
/// ended.
inline void together(const std::vector<std::function<void()>>& actions)
{
    std::barrier start(static_cast<std::ptrdiff_t>(actions.size()));
    std::vector<std::thread> threads;
    threads.reserve(actions.size());
    for (const auto& action : actions)
        threads.emplace_back([&] {
            start.arrive_and_wait();
            action();
        });
    for (std::thread& thread : threads)
        thread.join();
}
} // namespace support
