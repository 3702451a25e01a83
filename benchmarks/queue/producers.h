#pragma once

#include "measure.h"

#include <atomic>
#include <barrier>
#include <functional>
#include <thread>
#include <vector>

/// So many events go through the queue in one run.
constexpr int eventCount = 100000;

/// Lets threads raise, and the thread that measures deliver meanwhile until all has come.
/// @param raise    called on thread `i` with `i` and the number of events to raise
/// @param deliver  answers how many events it has delivered
template <class Raise, class Deliver>
void measureProducers(benchmark::State& state, int producerCount, const Raise& raise,
                      const Deliver& deliver)
{
    std::barrier start(producerCount + 1);
    std::atomic<bool> isOver = false;
    std::vector<std::thread> producers;
    producers.reserve(static_cast<std::size_t>(producerCount));
    for (int i = 0; i < producerCount; ++i)
        producers.emplace_back([&, i] {
            while (start.arrive_and_wait(), !isOver)
                raise(i, eventCount / producerCount);
        });
    measure(state, [&] {
        start.arrive_and_wait();
        for (std::size_t left = eventCount; left > 0;) {
            const std::size_t delivered = deliver();
            left -= delivered;
            if (delivered == 0)
                std::this_thread::yield();
        }
    });
    isOver = true;
    start.arrive_and_wait();
    for (std::thread& producer : producers)
        producer.join();
}
