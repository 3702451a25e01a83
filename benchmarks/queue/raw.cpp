#include "producers.h"

#include <deque>
#include <mutex>
#include <utility>

// What a program without a library writes.

namespace
{
class Queue
{
public:
    void push(std::function<void()> function)
    {
        const std::lock_guard lock(m_mutex);
        m_functions.push_back(std::move(function));
    }
    std::size_t deliver()
    {
        std::size_t count = 0;
        for (std::function<void()> function = take(); function; function = take(), ++count)
            function();
        return count;
    }

private:
    std::function<void()> take()
    {
        const std::lock_guard lock(m_mutex);
        if (m_functions.empty())
            return {};
        std::function<void()> first = std::move(m_functions.front());
        m_functions.pop_front();
        return first;
    }

    std::mutex m_mutex;
    std::deque<std::function<void()>> m_functions;
};

struct Receiver {
    void take(int value) { sum += value; }
    long sum = 0;
};

void queueOnOneThread(benchmark::State& state)
{
    Queue queue;
    Receiver receiver;
    int value = 0;
    measure(state, [&] {
        ++value;
        queue.push([&receiver, value] { receiver.take(value); });
        queue.deliver();
    });
}
BENCHMARK(queueOnOneThread)->Name("queue_same_thread/raw");

void queueFrom(benchmark::State& state, int producers)
{
    Queue queue;
    Receiver receiver;
    measureProducers(
        state, producers,
        [&](int, int count) {
            for (int value = 0; value < count; ++value)
                queue.push([&receiver, value] { receiver.take(value); });
        },
        [&] { return queue.deliver(); });
}
BENCHMARK_CAPTURE(queueFrom, one, 1)->Name("queue_1_producer/raw")->UseRealTime();
BENCHMARK_CAPTURE(queueFrom, four, 4)->Name("queue_4_producers/raw")->UseRealTime();
} // namespace
