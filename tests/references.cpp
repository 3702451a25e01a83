#include "support/logs.h"

#include <zintar/reference.h>

#include <optional>
#include <type_traits>
#include <unordered_set>
#include <utility>
#include <vector>

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

TYPED_TEST(AnyReference, OfNothingIsNull)
{
    using Ref = typename TypeParam::template Of<Node>;
    EXPECT_LOGS_NOTHING([] {
        const Ref none, fromNull(nullptr), fromNullPointer(static_cast<Node*>(nullptr));
        EXPECT_FALSE(none || fromNull || fromNullPointer);
        EXPECT_TRUE(none == nullptr && none == fromNull && none.get() == nullptr);
        Ref assigned = fromNull;
        assigned = none;
        assigned.reset();
        EXPECT_FALSE(assigned);
    });
}

TYPED_TEST(AnyReference, CopiesShareAndMovesHandOver)
{
    using Ref = typename TypeParam::template Of<Node>;
    ZTStrongRef<Node> owner(new Node);
    Ref first(owner.get()), copy(first), moved(std::move(first));
    moved->value = 9;
    EXPECT_EQ((*copy).value, 9);
    EXPECT_TRUE(!first && moved == copy);
    first = copy;
    copy = std::move(first);
    EXPECT_TRUE(copy == moved && !first);
    Ref& itself = copy;
    copy = itself;
    copy = std::move(itself);
    EXPECT_EQ(copy, owner);
    std::swap(copy, first);
    EXPECT_TRUE(first && !copy);
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
    EXPECT_TRUE(constant == base && taken == base && !leaf);
    const Ref a(one.get());
    EXPECT_TRUE(a == one && a == one.get() && one.get() == a && a != other && a != nullptr);
    EXPECT_TRUE(a != other.get() && a == ZTRef<ZTBase>(one.get()));
    std::unordered_set<Ref> set{a, Ref(one.get()), Ref(other.get()), Ref()};
    EXPECT_EQ(set.size(), 3U);
    EXPECT_EQ(set.count(a), 1U);
}

TYPED_TEST(AnyReference, FollowsAMovedObjectAndLosesTheOneItReplaced)
{
    using Ref = typename TypeParam::template Of<Node>;
    const bool strong = std::is_same_v<Ref, ZTStrongRef<Node>>;
    auto* source = new Node;
    auto* target = new Node;
    Ref ref(source), replaced(target);
    auto* moved = new Node(std::move(*source));
    EXPECT_EQ(ref.get(), moved);
    EXPECT_EQ(Ref(moved), ref);
    EXPECT_FALSE(Ref(source)); // a moved-from object has nothing to refer to
    EXPECT_LOGS_NOTHING([&] { delete source; });
    EXPECT_LOGS(strong ? heldLine : "", [&] { *target = std::move(*moved); });
    EXPECT_FALSE(replaced);
    EXPECT_EQ(ref.get(), target);
    delete moved;
    if (!strong)
        delete target;
    ref.reset();
    EXPECT_EQ(Node::alive, 0);
}

TYPED_TEST(AnyReference, ReadsNullOnceTheObjectIsGone)
{
    using Ref = typename TypeParam::template Of<Node>;
    const bool strong = std::is_same_v<Ref, ZTStrongRef<Node>>;
    for (bool byParent : {true, false}) {
        auto* parent = new Node;
        Ref child(new Node(parent));
        const Ref copy = child;
        const ZTRef<Node> sibling(new Node(parent));
        Node* dying = byParent ? parent : child.get();
        {
            support::CapturedLog log;
            delete dying;
            EXPECT_EQ(log.err(), strong ? heldLine : "");
            EXPECT_EQ(log.out(), "");
        }
        EXPECT_FALSE(child || copy);
        EXPECT_EQ(sibling.get() == nullptr, byParent);
        EXPECT_EQ(child, copy);
        EXPECT_EQ(std::hash<Ref>()(child), std::hash<Ref>()(nullptr));
        child = Ref(new Node);
        EXPECT_TRUE(child && !copy);
        if (!strong)
            delete child.get();
        child.reset();
        if (!byParent)
            delete parent;
        EXPECT_EQ(Node::alive, 0);
    }
}

TEST(WeakReference, KeepsNoObjectAndYieldsItWhileItDies)
{
    auto* parent = new Node;
    auto* node = new Node(parent);
    new Node(node);
    { // the last one of a first block goes, and another block takes its place
        ZTRef<Node> first = node;
    }
    const ZTRef<Node> ref = node;
    std::vector<const void*> seen;
    auto note = [&](ZTBase*) { seen.push_back(ref.get()); };
    auto destroyed = ZTBase::subscribe(node, &ZTBase::destroyed, note);
    auto left = ZTBase::subscribe(parent, &ZTBase::childRemoved, note);
    auto childDied = ZTBase::subscribe(node->children().front(), &ZTBase::destroyed, note);
    const void* address = node;
    EXPECT_LOGS_NOTHING([&] { delete node; });
    EXPECT_EQ(seen, (std::vector<const void*>{address, address, address}));
    EXPECT_FALSE(ref);
    delete parent;
}

TEST(StrongReference, EndsItsObjectWithTheLastOne)
{
    Node parent;
    ZTStrongRef<Node> first(new Node(&parent));
    ZTStrongRef<ZTBase> second = first;
    const ZTRef<Node> weak(first.get()), below(new Node(first.get()));
    int died = 0, removed = 0;
    auto dies = ZTBase::subscribe(first.get(), &ZTBase::destroyed, [&](ZTBase*) { ++died; });
    auto leaves = ZTBase::subscribe(&parent, &ZTBase::childRemoved, [&](ZTBase*) { ++removed; });
    EXPECT_LOGS_NOTHING([&] {
        first.reset();
        EXPECT_TRUE(weak && died == 0);
        second = nullptr;
    });
    EXPECT_TRUE(died == 1 && removed == 1 && parent.children().empty());
    EXPECT_FALSE(weak || below);
}

TEST(StrongReference, AssignedAnotherObjectLetsTheOldOneGo)
{
    ZTStrongRef<Node> ref(new Node);
    const ZTRef<Node> old(ref.get());
    ref.reset(new Node);
    EXPECT_FALSE(old);
    Node* kept = ref.get();
    ref.reset(kept);
    EXPECT_EQ(ref.get(), kept);
    ref = ZTStrongRef<Node>(new Leaf);
    EXPECT_EQ(Node::alive, 1);
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

TEST(StrongReference, CanBeDroppedByTheObjectItself)
{
    struct Owner : Node {
        ZTStrongRef<Node> self{this};
    };
    auto* owner = new Owner;
    EXPECT_LOGS_NOTHING([&] { owner->self.reset(); });
    EXPECT_EQ(Node::alive, 0);
}
} // namespace
