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
struct KindNames {
    template <class K>
    static std::string GetName(int)
    {
        return std::is_same_v<K, Kind<ZTRef>> ? "Weak" : "Strong";
    }
};
using Kinds = testing::Types<Kind<ZTRef>, Kind<ZTStrongRef>>;
TYPED_TEST_SUITE(AnyReference, Kinds, KindNames);

TYPED_TEST(AnyReference, OfNothingIsNull)
{
    using Ref = typename TypeParam::template Of<Node>;
    EXPECT_LOGS_NOTHING([] {
        const Ref none;
        const Ref fromNull(nullptr);
        const Ref fromNullPointer(static_cast<Node*>(nullptr));
        EXPECT_FALSE(none || fromNull || fromNullPointer);
        EXPECT_TRUE(none == nullptr && none == fromNull && none.get() == nullptr);
        Ref assigned = fromNull;
        assigned = none;
        assigned.reset();
        EXPECT_FALSE(assigned);
    });
}

TYPED_TEST(AnyReference, ReachesItsObject)
{
    using Ref = typename TypeParam::template Of<Leaf>;
    ZTStrongRef<Leaf> owner(new Leaf);
    const Ref ref(owner.get());
    EXPECT_TRUE(ref);
    EXPECT_EQ(ref.get(), owner.get());
    EXPECT_EQ(ref->value, 7);
    (*ref).value = 9;
    EXPECT_EQ(owner->value, 9);
}

TYPED_TEST(AnyReference, CopiesShareAndMovesHandOver)
{
    using Ref = typename TypeParam::template Of<Node>;
    ZTStrongRef<Node> owner(new Node);
    Ref first(owner.get());
    Ref copy(first);
    Ref moved(std::move(first));
    EXPECT_FALSE(first);
    EXPECT_EQ(moved, copy);
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

TYPED_TEST(AnyReference, ConvertsToBaseAndConst)
{
    using Base = typename TypeParam::template Of<ZTBase>;
    using Derived = typename TypeParam::template Of<Leaf>;
    using Constant = typename TypeParam::template Of<const Node>;
    static_assert(std::is_convertible_v<Derived, Base> && !std::is_convertible_v<Base, Derived>);
    static_assert(!std::is_convertible_v<Constant, typename TypeParam::template Of<Node>>);
    static_assert(!std::is_constructible_v<Derived, typename TypeParam::template Of<Node>>);
    Derived leaf(new Leaf);
    const ZTStrongRef<Leaf> owner(leaf.get());
    const Base base = leaf;
    const Constant constant = leaf;
    EXPECT_TRUE(base == leaf && constant == base && base.get() == leaf.get());
    const Base taken = std::move(leaf);
    EXPECT_TRUE(taken == base && !leaf);
}

TYPED_TEST(AnyReference, ComparesAndHashesByObject)
{
    using Ref = typename TypeParam::template Of<Node>;
    const ZTStrongRef<Node> one(new Node);
    const ZTStrongRef<Node> other(new Node);
    const Ref a(one.get());
    EXPECT_TRUE(a == one && a == one.get() && one.get() == a && a != other && a != nullptr);
    EXPECT_TRUE(a != other.get() && a == ZTRef<ZTBase>(one.get()));
    std::unordered_set<Ref> set{a, Ref(one.get()), Ref(other.get()), Ref()};
    EXPECT_EQ(set.size(), 3U);
    EXPECT_EQ(set.count(a), 1U);
}

TYPED_TEST(AnyReference, FollowsAMovedObject)
{
    using Ref = typename TypeParam::template Of<Node>;
    auto* source = new Node;
    auto* sourceOwner = new ZTStrongRef<Node>(source);
    Ref ref(source);
    auto* target = new Node(std::move(*source));
    EXPECT_EQ(ref.get(), target);
    EXPECT_EQ(sourceOwner->get(), target);
    EXPECT_EQ(Ref(target), ref);
    EXPECT_FALSE(Ref(source)); // a moved-from object has nothing to refer to
    EXPECT_LOGS_NOTHING([&] { delete source; });
    delete sourceOwner;
    ref.reset();
    EXPECT_EQ(Node::alive, 0);
}

TYPED_TEST(AnyReference, FollowsAnAssignedObjectAndLosesTheOneItReplaced)
{
    using Ref = typename TypeParam::template Of<Node>;
    auto* target = new Node;
    auto* source = new Node;
    Ref replaced(target);
    Ref ref(source);
    const bool strong = std::is_same_v<Ref, ZTStrongRef<Node>>;
    EXPECT_LOGS(strong ? heldLine : "", [&] { *target = std::move(*source); });
    EXPECT_FALSE(replaced);
    EXPECT_EQ(ref.get(), target);
    delete source;
    if (!strong)
        delete target;
    ref.reset();
    EXPECT_EQ(Node::alive, 0);
}

TYPED_TEST(AnyReference, ReadsNullOnceTheParentHasDeletedTheObject)
{
    using Ref = typename TypeParam::template Of<Node>;
    auto* parent = new Node;
    Ref child(new Node(parent));
    const Ref copy = child;
    auto* sibling = new Node(parent);
    const ZTRef<Node> siblingRef(sibling);
    const bool strong = std::is_same_v<Ref, ZTStrongRef<Node>>;
    EXPECT_LOGS(strong ? heldLine : "", [&] { delete parent; });
    EXPECT_FALSE(child || copy || siblingRef);
    EXPECT_EQ(child, copy);
    EXPECT_EQ(Node::alive, 0);
    EXPECT_LOGS_NOTHING([&] { child.reset(); });
}

TEST(WeakReference, NeverKeepsItsObject)
{
    std::optional<Node> node(std::in_place);
    const ZTRef<Node> ref = &*node;
    { // the last one of a first block goes, and another block takes its place
        ZTRef<Node> more = ref;
    }
    const ZTRef<const ZTBase> late = &*node;
    EXPECT_TRUE(ref == late && late);
    EXPECT_LOGS_NOTHING([&] { node.reset(); });
    EXPECT_FALSE(ref || late);
    EXPECT_EQ(std::hash<ZTRef<Node>>()(ref), std::hash<ZTRef<Node>>()(nullptr));
}

TEST(WeakReference, StillYieldsTheObjectWhileItDies)
{
    auto* parent = new Node;
    auto* node = new Node(parent);
    new Node(node);
    const ZTRef<Node> ref = node;
    std::vector<const void*> seen;
    auto destroyed =
        ZTBase::subscribe(node, &ZTBase::destroyed, [&](ZTBase*) { seen.push_back(ref.get()); });
    auto left = ZTBase::subscribe(parent, &ZTBase::childRemoved,
                                  [&](ZTBase*) { seen.push_back(ref.get()); });
    auto childDied = ZTBase::subscribe(node->children().front(), &ZTBase::destroyed,
                                       [&](ZTBase*) { seen.push_back(ref.get()); });
    const void* address = node;
    delete node;
    EXPECT_EQ(seen, (std::vector<const void*>{address, address, address}));
    EXPECT_FALSE(ref);
    delete parent;
}

TEST(StrongReference, EndsItsObjectWithTheLastOne)
{
    ZTStrongRef<Node> first(new Node);
    ZTStrongRef<ZTBase> second = first;
    const ZTRef<Node> weak(first.get());
    int died = 0;
    auto watch = ZTBase::subscribe(first.get(), &ZTBase::destroyed, [&](ZTBase*) { ++died; });
    EXPECT_LOGS_NOTHING([&] {
        first.reset();
        EXPECT_TRUE(weak && died == 0);
        second = nullptr;
    });
    EXPECT_EQ(died, 1);
    EXPECT_EQ(Node::alive, 0);
    EXPECT_FALSE(weak);
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

TEST(StrongReference, TakesItsObjectOutOfTheTree)
{
    Node parent;
    ZTStrongRef<Node> child(new Node(&parent));
    new Node(child.get());
    int removed = 0;
    auto watch = ZTBase::subscribe(&parent, &ZTBase::childRemoved, [&](ZTBase*) { ++removed; });
    EXPECT_LOGS_NOTHING([&] { child.reset(); });
    EXPECT_EQ(removed, 1);
    EXPECT_TRUE(parent.children().empty());
    EXPECT_EQ(Node::alive, 1);
}

TEST(StrongReference, ReadsNullAfterADeleteByTheHost)
{
    ZTStrongRef<Node> ref(new Node);
    const ZTStrongRef<ZTBase> copy = ref;
    support::CapturedLog log;
    delete ref.get();
    EXPECT_EQ(log.err(), heldLine);
    EXPECT_EQ(log.out(), "");
    EXPECT_FALSE(ref || copy);
    ref.reset(new Node);
    EXPECT_TRUE(ref && !copy);
}

TEST(StrongReference, TakenWhileTheObjectDiesReadsNullAfterwards)
{
    ZTStrongRef<ZTBase> late;
    auto* node = new Node;
    auto watch = ZTBase::subscribe(node, &ZTBase::destroyed,
                                   [&](ZTBase* dying) { late = ZTStrongRef<ZTBase>(dying); });
    EXPECT_LOGS(heldLine, [&] { delete node; });
    EXPECT_FALSE(late);
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

TEST(StrongReference, TakenAndDroppedWhileTheObjectDiesDoesNotEndItTwice)
{
    auto* node = new Node;
    const ZTRef<ZTBase> weak(node);
    int died = 0;
    auto watch = ZTBase::subscribe(node, &ZTBase::destroyed, [&](ZTBase*) {
        ++died;
        ZTStrongRef<ZTBase> held(weak.get());
    });
    delete node;
    EXPECT_EQ(died, 1);
    EXPECT_FALSE(weak);
    EXPECT_EQ(Node::alive, 0);
}
} // namespace
