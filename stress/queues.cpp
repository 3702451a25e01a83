#include <zintar/zintar.h>

#include <algorithm>
#include <atomic>
#include <barrier>
#include <cstdlib>
#include <iostream>
#include <malloc.h>
#include <memory>
#include <mutex>
#include <random>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

// zintar_stress_queues [EVENTS [SEED]]     until so many events have come through queues
//
// Threads raise events to each other's objects through queues, while objects of both sides are
// made, moved and destroyed and subscriptions made and ended at random. Each subscription has a
// model beside it, which counts what must come. Meant for the sanitizers; the threads take turns as
// they happen to, so a seed does not bring back a fault for certain.

namespace
{
constexpr int threadCount = 4;
/// Threads that are ahead of the others by so many events wait for them.
constexpr std::size_t mostWaiting = 2000;
constexpr std::size_t eventsPerRound = 250000;
/// What the library keeps for threads that come later, in bytes.
constexpr std::size_t mostGrowth = 100000;

std::atomic<int> faults = 0;

void expect(bool holds, const char* what)
{
    if (!holds && ++faults <= 10)
        std::cerr << "fault: " + std::string(what) + "\n";
}

class Speaker : public ZTBase
{
    ZT_OBJECT(Speaker, ZTBase)
public:
    void spoke(int number) { sendEvent<&Self::spoke>(number); }

private:
    static constexpr auto members() { return zt::members(zt::event<&Self::spoke>()); }
};

/// What one subscription must bring: the numbers that its speaker raises, one by one, from the
/// first on; or of those the last, where it is one of the latest only.
struct Link {
    const bool isLatestOnly;
    const std::thread::id receiverThread;
    ZTSubscription handle; ///< for all threads, from the moment on when the link is known

    // Of the thread of the receiver.
    int next;
    bool isOver = false; ///< nothing may come any more

    /// Set by the thread of the speaker: the number behind the last one that was raised.
    std::atomic<int> end = -1;
    /// Ended by another thread than the receiver's: what comes then may be missing.
    std::atomic<bool> isCancelled = false;

    Link(bool latestOnly, std::thread::id thread, int first)
        : isLatestOnly(latestOnly), receiverThread(thread), next(first)
    {}

    void take(int number)
    {
        expect(std::this_thread::get_id() == receiverThread, "called on another thread");
        expect(!isOver, "delivered after its end");
        if (isLatestOnly)
            expect(number >= next, "an older value behind a newer one");
        else
            expect(number == next, "not the next event of its sender");
        next = number + 1;
    }
    void check() const
    {
        if (!isOver && !isCancelled)
            expect(next == end, "an event did not arrive");
    }
};
using Links = std::vector<std::shared_ptr<Link>>;

struct Sender {
    std::unique_ptr<Speaker> object = std::make_unique<Speaker>();
    int raised = 0;
    Links links;

    /// What was raised so far is all.
    void close()
    {
        for (const auto& link : links)
            link->end = raised;
    }
};
struct Receiver {
    std::unique_ptr<ZTBase> object = std::make_unique<ZTBase>();
    Links links;
};

/// One thread, with its queue and its objects.
class Worker
{
public:
    explicit Worker(unsigned int seed) : m_random(seed) {}

    /// Until the threads together have delivered so many events.
    void run(std::vector<std::unique_ptr<Worker>>& all, std::atomic<std::size_t>& delivered,
             std::barrier<>& together)
    {
        m_thread = std::this_thread::get_id();
        for (int i = 0; i < 8; ++i) {
            m_senders.emplace_back();
            addReceiver();
        }
        together.arrive_and_wait();
        while (delivered < eventsPerRound) {
            step(all);
            delivered += deliver();
        }
        for (Sender& sender : m_senders)
            sender.close();
        together.arrive_and_wait();
        while (m_queue->waitingCount() > 0)
            delivered += deliver();
        for (const Receiver& receiver : m_receivers)
            for (const auto& link : receiver.links)
                link->check();
        together.arrive_and_wait();
        m_senders.clear();
        m_receivers.clear();
    }

private:
    int chance(int outOf) { return std::uniform_int_distribution(0, outOf - 1)(m_random); }
    /// One of several; there has to be one.
    template <class Things>
    auto* any(Things& things)
    {
        return &things[static_cast<std::size_t>(chance(static_cast<int>(things.size())))];
    }

    void step(std::vector<std::unique_ptr<Worker>>& all)
    {
        switch (chance(100)) {
        case 0:
            subscribe(*all[static_cast<std::size_t>(chance(threadCount))]);
            break;
        case 1:
            endOne();
            break;
        case 2:
            replaceSender();
            break;
        case 3:
            replaceReceiver();
            break;
        case 4:
            moveSender();
            break;
        default:
            raise(all);
            break;
        }
    }

    void raise(const std::vector<std::unique_ptr<Worker>>& all)
    {
        if (chance(8) == 0)
            for (const auto& worker : all)
                if (worker.get() != this && worker->isFarBehind())
                    return std::this_thread::yield();
        Sender& sender = *any(m_senders);
        sender.object->spoke(sender.raised++);
    }

    bool isFarBehind()
    {
        const std::lock_guard lock(m_mutex);
        return m_queue->waitingCount() > mostWaiting;
    }

    void subscribe(Worker& other)
    {
        Sender& sender = *any(m_senders);
        if (sender.links.size() > 6)
            return;
        const std::lock_guard lock(other.m_mutex); // so that the receiver lives
        Receiver& receiver = *any(other.m_receivers);
        const bool latestOnly = chance(4) == 0;
        const auto link = std::make_shared<Link>(latestOnly, other.m_thread, sender.raised);
        const auto handler = [link, &other](int number) {
            link->take(number);
            other.meddle(number);
        };
        link->handle = latestOnly
                           ? ZTBase::subscribe(sender.object.get(), &Speaker::spoke, *other.m_queue,
                                               receiver.object.get(), handler, zt::latestOnly)
                           : ZTBase::subscribe(sender.object.get(), &Speaker::spoke, *other.m_queue,
                                               receiver.object.get(), handler);
        sender.links.push_back(link);
        receiver.links.push_back(link);
    }

    /// What a handler does besides.
    void meddle(int number)
    {
        if (number % 1009 == 0)
            replaceReceiver(); // perhaps its own
        if (number % 4001 == 0)
            replaceQueue(); // which delivers just now
        if (number % 997 == 0)
            throw std::runtime_error("a handler that throws");
    }

    /// At the sender's end or at the receiver's.
    void endOne()
    {
        if (chance(2) == 0) {
            const Links& links = any(m_senders)->links;
            if (links.empty())
                return;
            Link& link = **any(links);
            link.isCancelled = true;
            ZTBase::unsubscribe(link.handle);
        } else {
            const std::lock_guard lock(m_mutex); // others add links
            const Links& links = any(m_receivers)->links;
            if (links.empty())
                return;
            Link& link = **any(links);
            ZTBase::unsubscribe(link.handle);
            link.isOver = true;
        }
    }

    void replaceSender()
    {
        Sender& sender = *any(m_senders);
        sender.close();
        sender = Sender();
    }
    void moveSender()
    {
        Sender& sender = *any(m_senders);
        sender.object = std::make_unique<Speaker>(std::move(*sender.object));
    }

    void addReceiver()
    {
        const std::lock_guard lock(m_mutex);
        m_receivers.emplace_back();
    }
    void replaceReceiver()
    {
        const std::lock_guard lock(m_mutex);
        Receiver& receiver = *any(m_receivers);
        receiver.object.reset();
        for (const auto& link : receiver.links)
            link->isOver = true;
        receiver = Receiver();
    }

    void replaceQueue()
    {
        const std::lock_guard lock(m_mutex);
        m_queue = std::make_unique<ZTEventQueue>();
        for (const Receiver& receiver : m_receivers)
            for (const auto& link : receiver.links)
                link->isOver = true;
    }

    std::size_t deliver()
    {
        const std::size_t before = m_delivered;
        try {
            m_delivered += chance(3) == 0 ? m_queue->deliver(3) : m_queue->deliver();
        } catch (const std::runtime_error&) {
            ++m_delivered;
        }
        return m_delivered - before;
    }

    std::mt19937 m_random;
    std::thread::id m_thread;
    std::vector<Sender> m_senders;
    /// Held while other threads name the queue or a receiver, and while these come and go.
    std::mutex m_mutex;
    std::unique_ptr<ZTEventQueue> m_queue{new ZTEventQueue};
    std::vector<Receiver> m_receivers;
    std::size_t m_delivered = 0;
};

std::size_t round(unsigned int seed)
{
    std::atomic<std::size_t> delivered = 0;
    std::barrier<> together(threadCount);
    std::vector<std::unique_ptr<Worker>> workers;
    for (unsigned int i = 0; i < threadCount; ++i)
        workers.push_back(std::make_unique<Worker>(seed * threadCount + i));
    std::vector<std::thread> threads;
    for (const auto& worker : workers)
        threads.emplace_back([&] { worker->run(workers, delivered, together); });
    for (std::thread& thread : threads)
        thread.join();
    return delivered;
}
} // namespace
ZT_CLASS(Speaker)

int main(int count, char** arguments)
{
    const auto events = count > 1 ? std::strtoull(arguments[1], nullptr, 10) : 1000000;
    auto seed = static_cast<unsigned int>(count > 2 ? std::strtoul(arguments[2], nullptr, 10) : 1);
    std::size_t delivered = 0;
    std::size_t heapAtFirst = mallinfo2().uordblks;
    for (int i = 0; delivered < events && faults == 0; ++i) {
        delivered += round(seed++);
        if (i == 1) // what the library keeps has come
            heapAtFirst = mallinfo2().uordblks;
    }
    // Nothing where the allocator is a sanitizer's, which looks for leaks itself.
    const std::size_t heap = mallinfo2().uordblks;
    expect(heap <= heapAtFirst + mostGrowth, "memory has grown");
    std::cout << delivered << " events delivered, " << faults << " faults; heap in use "
              << heapAtFirst << " bytes after two rounds, " << heap << " at the end\n";
    return faults == 0 ? 0 : 1;
}
