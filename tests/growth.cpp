#include "support/hostclasses.h"

#include <pthread.h>
#include <sys/resource.h>

#include <algorithm>
#include <ctime>
#include <deque>
#include <limits>
#include <vector>

// How costs grow. Machines are noisy, so only the difference between n, n log n and n * n is
// tested: eight times as much of something may take no more than 30 times as long.

namespace
{
using namespace host;

double now()
{
    std::timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return double(time.tv_sec) + 1e-9 * double(time.tv_nsec);
}

/// The least of some measurements of what `work(n)` tells it took.
template <class Work>
double leastOf(const Work& work, std::size_t n)
{
    double least = std::numeric_limits<double>::max();
    for (int i = 0; i < 3; ++i)
        least = std::min(least, work(n));
    return least;
}

template <class Work>
void expectNoSquare(const Work& work, std::size_t n)
{
    const double few = leastOf(work, n);
    const double many = leastOf(work, 8 * n);
    EXPECT_LT(many, 30 * std::max(few, 1e-4)) << few << " s grow to " << many << " s";
}

template <class Action>
double timed(const Action& action)
{
    const double start = now();
    action();
    return now() - start;
}

TEST(Growth, UnsubscribingOneWhereBothEndsHaveMany)
{
    expectNoSquare(
        [](std::size_t n) {
            Speaker hub;
            ZTBase receiver;
            std::deque<Speaker> speakers(n);
            std::deque<ZTBase> others(n);
            Diary diary;
            Hearer hearer("h", diary);
            for (std::size_t i = 0; i < n; ++i) {
                ZTBase::subscribe(&hub, &Speaker::said, &others[i], [] {});
                ZTBase::subscribe(&speakers[i], &Speaker::said, &hearer, &Hearer::hear);
            }
            return timed([&] {
                for (std::size_t i = 0; i < n; ++i) {
                    ZTBase::subscribe(&hub, &Speaker::said, &hearer, &Hearer::hear);
                    ASSERT_TRUE(ZTBase::unsubscribe(&hub, &Speaker::said, &hearer, &Hearer::hear));
                }
            });
        },
        1000);
}

TEST(Growth, UnsubscribingOneAmongTheCallablesOfOneReceiver)
{
    expectNoSquare(
        [](std::size_t n) {
            Speaker speaker;
            Diary diary;
            Hearer hearer("h", diary);
            for (std::size_t i = 0; i < n; ++i)
                ZTBase::subscribe(&speaker, &Speaker::said, &hearer, [] {});
            return timed([&] {
                for (std::size_t i = 0; i < n; ++i) {
                    ZTBase::subscribe(&speaker, &Speaker::said, &hearer, &Hearer::hear);
                    ASSERT_TRUE(
                        ZTBase::unsubscribe(&speaker, &Speaker::said, &hearer, &Hearer::hear));
                }
            });
        },
        1000);
}

TEST(Growth, BlockersEndInTheOrderOfTheirBeginning)
{
    expectNoSquare(
        [](std::size_t n) {
            ZTBase object;
            std::deque<ZTEventBlocker> blockers;
            for (std::size_t i = 0; i < n; ++i)
                blockers.emplace_back(&object, true);
            return timed([&] {
                while (!blockers.empty())
                    blockers.pop_front();
            });
        },
        2000);
}

TEST(Growth, SubscriptionsThatComeAndGoWithinOneDelivery)
{
    auto largest = [] {
        rusage usage{};
        getrusage(RUSAGE_SELF, &usage);
        return usage.ru_maxrss; // in KiB
    };
    Speaker speaker;
    ZTBase receiver;
    const long before = largest();
    ZTBase::subscribe(&speaker, &Speaker::said, &receiver, [&] {
        for (int i = 0; i < 1'000'000; ++i)
            ASSERT_TRUE(
                ZTBase::unsubscribe(ZTBase::subscribe(&speaker, &Speaker::told, &receiver, [] {})));
        for (int i = 0; i < 1'000'000; ++i)
            ASSERT_TRUE(
                ZTBase::unsubscribe(ZTBase::subscribe(&speaker, &Speaker::said, &receiver, [] {})));
    });
    speaker.said(1);
#if !defined(__SANITIZE_ADDRESS__) // which keeps freed memory
    EXPECT_LT(largest() - before, 16 * 1024);
#else
    (void)before;
#endif
}

TEST(Growth, NestedRaisesBehindWhatHasEnded)
{
    expectNoSquare(
        [](std::size_t n) {
            Speaker speaker;
            ZTBase first, others;
            double spent = 0;
            ZTBase::subscribe(&speaker, &Speaker::said, &first, [&](int depth) {
                if (depth != 0)
                    return;
                speaker.unsubscribe(&others);
                spent = timed([&] {
                    for (std::size_t i = 0; i < n; ++i)
                        speaker.said(1);
                });
            });
            for (std::size_t i = 0; i < n; ++i)
                ZTBase::subscribe(&speaker, &Speaker::said, &others, [] {});
            speaker.said(0);
            return spent;
        },
        1000);
}

TEST(Growth, ChildrenGoFromTheLastToTheFirst)
{
    expectNoSquare(
        [](std::size_t n) {
            ZTBase parent;
            std::vector<ZTBase*> children(n);
            for (auto& child : children)
                child = new ZTBase(&parent);
            return timed([&] {
                for (; !children.empty(); children.pop_back())
                    delete children.back();
            });
        },
        5000);
}
TEST(Growth, DepthThatAMegabyteOfStackLetsGo)
{
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__) || !defined(NDEBUG)
    constexpr int depth = 500; // their frames are larger
#else
    constexpr int depth = 6000;
#endif
    auto chain = [](void*) -> void* {
        auto root = std::make_unique<ZTBase>();
        ZTBase* lowest = root.get();
        for (int i = 1; i < depth; ++i)
            lowest = new ZTBase(lowest);
        return nullptr;
    };
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    ASSERT_EQ(pthread_attr_setstacksize(&attributes, 1 << 20), 0);
    pthread_t thread{};
    ASSERT_EQ(pthread_create(&thread, &attributes, chain, nullptr), 0);
    EXPECT_EQ(pthread_join(thread, nullptr), 0);
    pthread_attr_destroy(&attributes);
}
} // namespace
