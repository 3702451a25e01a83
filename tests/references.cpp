#include "support/logs.h"

#include <zintar/reference.h>

#include <map>
#include <memory>
#include <type_traits>
#include <unordered_set>
#include <utility>

namespace
{
/// An object that counts its likes.
struct Node : ZTBase {
    explicit Node(ZTBase* parent = nullptr) : ZTBase(parent) { ++alive; }
    Node(Node&& other) noexcept : ZTBase(std::move(other)), value(other.value) { ++alive; }
    Node& operator=(Node&&) noexcept = default;
    ~Node() override { --alive; }

    int value = 7;
    inline static int alive = 0;
};
struct Leaf : Node {
    using Node::Node;
};

const std::string heldLine =
    "Zintar Error: ZTBase object destroyed while being controlled by ZTStrongRef.\n";

template <class Reference>
class AnyReference : public testing::Test
{};
template <template <class> class Reference>
struct Kind {
    template <class T>
    using Of = Reference<T>;
};
using Kinds = testing::Types<Kind<ZTRef>, Kind<ZTStrongRef>>;
TYPED_TEST_SUITE(AnyReference, Kinds, );

TYPED_TEST(AnyReference, CopiesShareAndMovesHandOver)
{
    using Ref = typename TypeParam::template Of<Node>;
    ZTStrongRef<Node> owner(new Node);
    Ref first(owner.get()), copy(first), moved(std::move(first)), null(nullptr);
    moved->value = 9;
    EXPECT_EQ((*copy).value, 9);
    EXPECT_FALSE(first);
    EXPECT_EQ(moved, copy);
    EXPECT_EQ(first, null);
    EXPECT_EQ(null, nullptr);
    first = copy;
    copy = std::move(first);
    EXPECT_EQ(copy, moved);
    EXPECT_FALSE(first);
    Ref& itself = copy;
    copy = itself;
    copy = std::move(itself);
    EXPECT_EQ(copy, owner);
    std::swap(copy, first);
    EXPECT_TRUE(first);
    EXPECT_FALSE(copy);
}

TYPED_TEST(AnyReference, ConvertsComparesAndHashesByObject)
{
    using Ref = typename TypeParam::template Of<Node>;
    using Base = typename TypeParam::template Of<ZTBase>;
    using Derived = typename TypeParam::template Of<Leaf>;
    using Constant = typename TypeParam::template Of<const Node>;
    static_assert(std::is_convertible_v<Derived, Base> && !std::is_convertible_v<Base, Derived>);
    static_assert(!std::is_convertible_v<Constant, Ref> && !std::is_constructible_v<Derived, Ref>);
    const ZTStrongRef<Leaf> one(new Leaf);
    const ZTStrongRef<Node> other(new Node);
    Derived leaf(one.get());
    const Base base = leaf;
    const Constant constant = leaf;
    const Base taken = std::move(leaf);
    EXPECT_EQ(constant, base);
    EXPECT_EQ(taken, base);
    EXPECT_FALSE(leaf);
    const Ref a(one.get());
    EXPECT_EQ(a, one);
    EXPECT_EQ(a, one.get());
    EXPECT_EQ(one.get(), a);
    EXPECT_NE(a, other);
    EXPECT_NE(a, nullptr);
    const std::unordered_set<Ref> set{a, Ref(one.get()), Ref(other.get()), Ref()};
    EXPECT_EQ(set.size(), 3U);
}

TYPED_TEST(AnyReference, ReadsNullOnceTheObjectIsGone)
{
    using Ref = typename TypeParam::template Of<Node>;
    const bool strong = std::is_same_v<Ref, ZTStrongRef<Node>>;
    for (bool byParent : {true, false}) {
        auto* parent = new Node;
        Ref child(new Node(parent));
        const Ref copy = child;
        Node* dying = byParent ? parent : child.get();
        {
            ZTLogCapture log;
            delete dying;
            EXPECT_EQ(log.err(), strong ? heldLine : "");
            EXPECT_EQ(log.out(), "");
        }
        EXPECT_FALSE(child);
        EXPECT_FALSE(copy);
        EXPECT_EQ(std::hash<Ref>()(child), std::hash<Ref>()(nullptr));
        if (!byParent)
            delete parent;
        EXPECT_EQ(Node::alive, 0);
    }
}

TEST(StrongReference, TakenWhileTheObjectDiesDoesNotKeepIt)
{
    for (bool drops : {true, false}) {
        ZTStrongRef<ZTBase> late;
        auto* node = new Node;
        int died = 0;
        auto watch = ZTBase::subscribe(node, &ZTBase::destroyed, [&](ZTBase* dying) {
            ++died;
            late = ZTStrongRef<ZTBase>(dying);
            if (drops)
                late.reset();
        });
        EXPECT_LOGS(drops ? "" : heldLine, [&] { delete node; });
        EXPECT_FALSE(late);
        EXPECT_EQ(died, 1);
        EXPECT_EQ(Node::alive, 0);
    }
}

TYPED_TEST(AnyReference, KeysOfAContainerOutliveTheirObjects)
{
    using Ref = typename TypeParam::template Of<Node>;
    std::map<Ref, int> numbers;
    ZTLogCapture log; // of objects that are deleted while strong references hold them
    auto* first = new Node;
    auto* second = new Node;
    const Ref a(first), b(second);
    numbers[a] = 1;
    numbers[b] = 2;
    numbers[Ref(first)] += 10;
    numbers[Ref()] = 3;
    delete first;
    EXPECT_EQ(numbers.size(), 3U);
    EXPECT_EQ(numbers[a], 11);
    EXPECT_EQ(numbers[b], 2);
    EXPECT_EQ(numbers[nullptr], 3);
    EXPECT_EQ(numbers.erase(a), 1U);
    numbers.clear();
    if constexpr (std::is_same_v<Ref, ZTRef<Node>>)
        delete second;
}

TEST(WeakReference, ComesFromAStrongOne)
{
    ZTStrongRef<Leaf> owner(new Leaf);
    const ZTRef<Node> weak = owner;
    const ZTRef<Node> none = ZTStrongRef<Node>();
    EXPECT_EQ(weak, owner);
    EXPECT_FALSE(none);
    owner.reset();
    EXPECT_FALSE(weak);
    static_assert(!std::is_convertible_v<ZTStrongRef<Node>, ZTRef<Leaf>>);
}

TEST(StrongReference, GivesItsObjectAwayUnlessItIsShared)
{
    ZTStrongRef<Node> owner(new Node), other = owner, empty;
    const ZTRef<Node> weak = owner;
    EXPECT_EQ(owner.release(), nullptr);
    EXPECT_EQ(owner, other);
    other.reset();
    EXPECT_LOGS_NOTHING([&] {
        const std::unique_ptr<Node> node(owner.release());
        EXPECT_EQ(node.get(), weak.get());
        EXPECT_FALSE(owner);
        owner = ZTStrongRef<Node>(node.get()); // as before, and again
        EXPECT_EQ(owner.release(), node.get());
    });
    EXPECT_FALSE(weak);
    EXPECT_EQ(empty.release(), nullptr);
    EXPECT_EQ(Node::alive, 0);
}
} // namespace
