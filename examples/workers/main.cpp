#include "greenhouse.h"
#include "interrupts.h"

#include <zintar/wakedescriptor.h>

#include <charconv>
#include <chrono>
#include <condition_variable>
#include <iostream>
#include <limits>
#include <list>
#include <mutex>
#include <poll.h>
#include <stop_token>
#include <string>
#include <string_view>
#include <thread>

using namespace workers;

namespace
{
struct Orders {
    int rounds = std::numeric_limits<int>::max();
    std::chrono::milliseconds pause{20};
};

/// Waits, or until it is to stop.
void pauseFor(std::chrono::milliseconds time, const std::stop_token& stop)
{
    std::mutex mutex;
    std::unique_lock lock(mutex);
    std::condition_variable_any().wait_for(lock, stop, time, [] { return false; });
}

/// The main thread: it owns the queue and all receivers.
class Greenhouse
{
public:
    explicit Greenhouse(const Orders& orders) : m_orders(orders) {}

    void addBench(const std::string& name, double celsius)
    {
        Bench& bench = m_benches.emplace_back();
        bench.name = name;
        ++m_running;
        bench.worker = std::jthread([this, &bench, celsius](const std::stop_token& stop) {
            measure(bench, celsius, stop);
        });
    }

    /// Until all workers have ended. What they have raised comes before that they have.
    void run()
    {
        while (m_running > 0) {
            pollfd waiting[] = {{m_wake.fd(), POLLIN, 0}, {m_interrupts.fd(), POLLIN, 0}};
            poll(waiting, 2, -1);
            if (m_interrupts.take())
                stop();
            m_wake.clear();
            m_queue.deliver();
        }
        m_line.clear();
    }

    void print() const
    {
        if (m_isStopped)
            std::cout << "stopped by Ctrl-C\n";
        for (const Bench& bench : m_benches) {
            const auto found = m_journal.benches().find(bench.name);
            const Journal::Bench noted =
                found == m_journal.benches().end() ? Journal::Bench() : found->second;
            std::cout << bench.name << ": measured " << bench.measured << ", noted " << noted.count
                      << ", " << noted.coldest << " to " << noted.warmest << " C, heater switched "
                      << bench.heater.switchCount() << " times\n";
        }
        std::cout << "last seen: " << m_line.text() << "\n";
    }

private:
    struct Bench {
        std::string name;
        Heater heater;
        int measured = 0;
        std::jthread worker;
    };

    /// On the thread of the worker: the sensor lives and dies here.
    void measure(Bench& bench, double celsius, const std::stop_token& stop)
    {
        Sensor sensor(bench.name, celsius);
        ZTBase::subscribe(&sensor, &Sensor::measured, m_queue, &m_journal, &Journal::note);
        ZTBase::subscribe(&sensor, &Sensor::measured, m_queue, &bench.heater, &Heater::follow);
        ZTBase::subscribe(&sensor, &Sensor::measured, m_queue, &m_line, &ProgressLine::show,
                          zt::latestOnly);
        while (sensor.count() < m_orders.rounds && !stop.stop_requested()) {
            sensor.measure();
            if (m_orders.pause.count() > 0)
                pauseFor(m_orders.pause, stop);
        }
        m_queue.post([this, &bench, count = sensor.count()] {
            bench.measured = count;
            --m_running;
        });
    }

    void stop()
    {
        m_isStopped = true;
        for (Bench& bench : m_benches)
            bench.worker.request_stop();
    }

    Interrupts m_interrupts;
    const Orders m_orders;
    ZTWakeDescriptor m_wake;
    /// Sensors that are too fast for the journal wait for it: nothing is to be lost.
    ZTEventQueue m_queue{{.capacity = 64, .overflow = ZTOverflow::Wait, .wake = m_wake.waker()}};
    Journal m_journal;
    ProgressLine m_line{isatty(STDERR_FILENO) == 1};
    int m_running = 0;
    bool m_isStopped = false;
    // Last, so that the workers have ended before anything that they use.
    std::list<Bench> m_benches;
};

bool read(std::string_view text, int& number)
{
    const char* end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, number);
    return error == std::errc() && rest == end && number > 0;
}
} // namespace

int main(int count, char** arguments)
{
    Orders orders;
    if (count == 2 && read(arguments[1], orders.rounds)) {
        orders.pause = std::chrono::milliseconds(0);
    } else if (count != 1) {
        std::cerr << "usage: workers [ROUNDS]\n"
                     "Measures until Ctrl-C, or that many rounds as fast as it can.\n";
        return 2;
    }
    Greenhouse greenhouse(orders);
    greenhouse.addBench("north", 20);
    greenhouse.addBench("south", 18.5);
    greenhouse.addBench("seedlings", 17);
    greenhouse.run();
    greenhouse.print();
}
