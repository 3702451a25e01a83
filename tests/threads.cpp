#include "support/together.h"

#include <zintar/classes.h>
#include <zintar/converter.h>
#include <zintar/create.h>
#include <zintar/declare.h>
#include <zintar/reference.h>

#include <dlfcn.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>

// What the library promises between threads. Most faults here show under ThreadSanitizer alone.

namespace
{
using support::together;

/// Calls `each` with every number below `count`, as a constant.
template <int count, class Each>
void forEachNumber(Each each)
{
    [&]<int... N>(std::integer_sequence<int, N...>)
    {
        (each(std::integral_constant<int, N>()), ...);
    }
    (std::make_integer_sequence<int, count>());
}

constexpr int rounds = 200;

template <int N>
struct Sample {
    int value = N;
    bool operator==(const Sample&) const = default;
};

TEST(Registration, GivesOneHandleForAllThreads)
{
    constexpr int count = 60;
    std::array<std::array<const ZTMetaType*, count>, 2> handles{};
    const auto use = [&](auto& own) {
        return [&] {
            forEachNumber<count>([&](auto n) {
                ZTVariant sample(Sample<n>{});
                EXPECT_EQ(ztVariantValue<Sample<n>>(sample).value, n);
                own[n] = &sample.type();
            });
        };
    };
    std::array<bool, count> found{};
    together({use(handles[0]), use(handles[1]), [&] {
                  forEachNumber<count>([&](auto n) {
                      const std::string name(ztTypeName<Sample<n>>());
                      while (!ztMetaType(name))
                          std::this_thread::yield();
                      found[n] = ztMetaType(name).name() == name;
                  });
              }});
    EXPECT_EQ(handles[0], handles[1]);
    EXPECT_EQ(std::count(found.begin(), found.end(), true), count);
}

TEST(Registration, OfAliasesRunsBesideTheirReaders)
{
    struct Named {};
    const auto add = [](int i) { zt::detail::registerType<Named>("Alias" + std::to_string(i)); };
    const ZTMetaType& type = ztMetaType<Named>();
    together({[&] {
                  for (int i = 0; i < rounds; ++i)
                      add(i);
              },
              [&] {
                  for (int i = rounds; i-- > 0;)
                      add(i);
              },
              [&] {
                  std::size_t count = 0;
                  while (count < rounds) {
                      const std::size_t next = type.aliases().size();
                      EXPECT_GE(next, count);
                      count = next;
                  }
              }});
    EXPECT_EQ(&ztMetaType("Alias0"), &type);
    EXPECT_EQ(type.aliases().size(), static_cast<std::size_t>(rounds));
}

TEST(Converters, AreReplacedBesideConversions)
{
    struct Celsius {
        double degrees = 0;
    };
    const ZTVariant whole(20);
    std::atomic<bool> done = false;
    int wrong = 0;
    together({[&] {
                  for (int i = 0; i < rounds; ++i) {
                      ztRegisterConverter([](int n) { return Celsius{double(n)}; });
                      ztRegisterConverter([](int n) { return Celsius{double(n) + 0.5}; });
                  }
                  done = true;
              },
              [&] {
                  forEachNumber<30>([](auto n) {
                      using Other = Sample<1000 + decltype(n)::value>;
                      ztRegisterConverter([](int number) { return Other{number}; });
                  });
              },
              [&] {
                  while (!done) {
                      Celsius read;
                      int number = 20;
                      const bool converted =
                          whole.type().convert(&number, ztMetaType<Celsius>(), &read);
                      wrong += converted && read.degrees != 20 && read.degrees != 20.5;
                  }
              }});
    EXPECT_EQ(wrong, 0);
    EXPECT_EQ(ztVariantValue<Celsius>(whole).degrees, 20.5);
    EXPECT_EQ(ztVariantValue<Sample<1029>>(whole).value, 20);
}

/// Each names the next one of two, so neither can be described without the other. The class of a
/// template is made when somebody first asks for it.
template <int N>
class Ring : public ZTBase
{
    ZT_OBJECT(Ring, ZTBase)
public:
    void passed(Ring<N ^ 1>* to) { sendEvent<&Self::passed>(to); }

private:
    static constexpr auto members()
    {
        return zt::members(zt::event<&Self::passed>(),
                           zt::property<&Self::m_next>().template notify<&Self::passed>());
    }
    Ring<N ^ 1>* m_next = nullptr;
};
template <int N>
zt::detail::ClassTable& Ring<N>::ztTable()
{
    return zt::detail::declaredTable<Ring<N>>();
}
template <int N>
const ZTMetaClass& Ring<N>::typeMetaClass()
{
    return zt::detail::declaredClass<Ring<N>>();
}
template <int N>
const ZTMetaClass* Ring<N>::metaClass() const
{
    return &typeMetaClass();
}
template <int N>
const ZTMetaClass* Ring<N>::baseMetaClass() const
{
    return &typeMetaClass();
}

/// What is wrong with a class that should be complete.
std::string faultsOf(const ZTMetaClass& metaClass)
{
    std::string faults;
    const ZTMetaProperty* next = metaClass.property("m_next");
    const ZTMetaInvokable* passed = metaClass.invokable(metaClass.invokableOffset());
    if (metaClass.superClass() != &ZTBase::typeMetaClass())
        faults += "super class ";
    if (!metaClass.metaType() || metaClass.metaType().metaClass() != &metaClass)
        faults += "pointer type ";
    if (!next || !next->metaType().metaClass() || next->changeEvent() != passed)
        faults += "property ";
    if (!passed || !passed->isEvent() || !passed->parameterMetaType(0).metaClass())
        faults += "event ";
    return faults;
}

/// Asks for both classes and looks one of them up by name, on three threads at once.
template <class One, class Other>
std::string faultsOfFirstUse()
{
    std::array<std::string, 3> faults;
    together({[&] { faults[0] = faultsOf(One::typeMetaClass()); },
              [&] { faults[1] = faultsOf(Other::typeMetaClass()); },
              [&] {
                  const std::string name(ztTypeName<One*>());
                  const ZTMetaType* found = &ztMetaType(name);
                  for (; !*found; found = &ztMetaType(name))
                      std::this_thread::yield();
                  faults[2] = faultsOf(*found->metaClass());
              }});
    return faults[0] + faults[1] + faults[2];
}

TEST(FirstUse, OfClassesInACircleGivesEachThreadACompleteOne)
{
    std::string faults;
    forEachNumber<20>([&](auto pair) {
        constexpr int first = 2 * decltype(pair)::value;
        faults += faultsOfFirstUse<Ring<first>, Ring<first + 1>>();
    });
    EXPECT_EQ(faults, "");
}

TEST(Loading, OfAPluginRunsBesideThoseWhoLookForItsClasses)
{
    std::atomic<bool> hasEnded = false;
    const auto waitFor = [&](const std::string& name) {
        const ZTMetaClass* found = ztClass(name);
        while (!found && !hasEnded) {
            std::this_thread::yield();
            found = ztClass(name);
        }
        return found ? found : ztClass(name);
    };
    void* plugin = nullptr;
    int made = 0;
    std::string misplaced;
    together({[&] {
                  plugin = dlopen(LOADED_CLASSES, RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE);
                  hasEnded = true;
              },
              [&] {
                  for (int number = 10; number < 50; ++number) {
                      const auto name = "loaded::Part<" + std::to_string(number) + ">";
                      const ZTMetaClass* found = waitFor(name);
                      const std::unique_ptr<ZTBase> object = found ? ztCreate(*found) : nullptr;
                      made += object && object->property<int>("number") == number;
                  }
              },
              [&] {
                  waitFor("loaded::Whole");
                  std::set<const ZTMetaClass*> before{nullptr};
                  for (const ZTMetaClass* known : ztClasses()) {
                      if (!before.contains(known->superClass()))
                          misplaced += known->typeName();
                      before.insert(known);
                  }
              },
              [&] {
                  while (!hasEnded)
                      for (const ZTMetaClass* known : ztClasses())
                          EXPECT_EQ(ztClass(known->typeName()), known);
              }});
    ASSERT_TRUE(plugin) << dlerror();
    EXPECT_EQ(made, 40);
    EXPECT_EQ(misplaced, "");
    const ZTMetaClass* whole = ztClass("loaded::Whole");
    ASSERT_TRUE(whole);
    EXPECT_EQ(whole->superClass(), ztClass("loaded::Part<19>"));
}

std::atomic<int> alive = 0;
struct Node : ZTBase {
    Node() { ++alive; }
    Node(Node&& other) noexcept : ZTBase(std::move(other)) { ++alive; }
    ~Node() override { --alive; }
};

TEST(WeakReferences, AreCopiedTestedAndDroppedWhileTheObjectMovesAndDies)
{
    for (int i = 0; i < rounds; ++i) {
        auto* node = new Node;
        ZTRef<Node> last(node), kept(node);
        together({[&] {
                      auto* moved = new Node(std::move(*node));
                      for (int j = 0; j < 5; ++j)
                          EXPECT_EQ(ZTRef<Node>(moved).get(), moved);
                      delete node;
                      delete moved;
                      EXPECT_FALSE(kept);
                  },
                  [&] {
                      ZTRef<Node> copy = last;
                      last.reset();
                      (void)bool(copy);
                  },
                  [&] {
                      ZTRef<Node> copy = kept;
                      while (copy)
                          std::this_thread::yield();
                  }});
        EXPECT_FALSE(kept);
    }
    EXPECT_EQ(alive, 0);
}

/// The drop of the only reference meets the making of the next one.
TEST(WeakReferences, AreDroppedWhileAnotherIsMade)
{
    for (int i = 0; i < rounds; ++i) {
        Node node;
        std::optional<ZTRef<Node>> made;
        ZTRef<Node> last(&node);
        together({[&] { made.emplace(&node); }, [&] { last.reset(); }});
        EXPECT_EQ(made->get(), &node);
    }
}

TEST(StrongReferences, EndTheObjectOnceWhereverTheLastGoes)
{
    for (int i = 0; i < rounds; ++i) {
        ZTStrongRef<Node> first(new Node), second = first, third = second;
        const ZTRef<Node> weak(first.get());
        const auto drop = [](ZTStrongRef<Node>& own) {
            return [&own] {
                ZTStrongRef<Node> copy = own;
                own.reset();
            };
        };
        together({drop(first), drop(second), drop(third)});
        EXPECT_FALSE(weak);
        EXPECT_EQ(alive, 0);
    }
}

/// In a capture: tells how often and on which thread it ends.
class Witness
{
public:
    Witness(std::atomic<int>& ends, std::atomic<std::thread::id>& endedOn)
        : m_ends(&ends), m_endedOn(&endedOn)
    {}
    Witness(Witness&& other) noexcept
        : m_ends(std::exchange(other.m_ends, nullptr)), m_endedOn(other.m_endedOn)
    {}
    ~Witness()
    {
        if (!m_ends)
            return;
        ++*m_ends;
        *m_endedOn = std::this_thread::get_id();
    }

private:
    std::atomic<int>* m_ends;
    std::atomic<std::thread::id>* m_endedOn;
};

TEST(Subscriptions, AreLookedAtElsewhereWhileTheyEnd)
{
    std::atomic<int> ends = 0;
    std::atomic<std::thread::id> endedOn, owner;
    for (int i = 0; i < rounds; ++i) {
        auto* sender = new Node;
        auto* receiver = new Node;
        const auto subscribe = [&] {
            return ZTBase::subscribe(sender, &ZTBase::childAdded, receiver,
                                     [witness = Witness(ends, endedOn)](ZTBase*) {});
        };
        const ZTSubscription first = subscribe(), second = subscribe();
        const auto look = [&] {
            const ZTSubscription ended;
            while (first || second) {
                ZTSubscription copy = first;
                EXPECT_TRUE(copy == first);
                copy = second;
                (void)(copy == first);
            }
            EXPECT_TRUE(first == second && first == ended);
        };
        together({look, look, [&] {
                      owner = std::this_thread::get_id();
                      if (i % 3 == 0)
                          ZTBase::unsubscribe(first);
                      delete (i % 3 == 1 ? sender : receiver);
                      delete (i % 3 == 1 ? receiver : sender);
                      EXPECT_EQ(ends, 2 * (i + 1));
                      EXPECT_EQ(endedOn.load(), owner.load());
                  }});
    }
    EXPECT_EQ(ends, 2 * rounds);
}
} // namespace
