#include "support/hostclasses.h"

#include <memory>
#include <sstream>
#include <stdexcept>

namespace
{
using namespace host;

class Tree : public TreeTest
{};

TEST_F(Tree, ChildrenStandInTheOrderOfTheirJoining)
{
    Named p("p"), q("q");
    watch(p);
    watch(q);
    auto *a = watched("a"), *b = watched("b");
    a->setParent(&p);
    b->setParent(&p);
    a->setParent(&p);
    EXPECT_EQ(diary.take(), "p+a p+b p-a p+a");
    EXPECT_EQ(treeOf(&p), "p(b a)");
    a->setParent(&q);
    b->setParent(nullptr);
    b->setParent(nullptr);
    EXPECT_EQ(diary.take(), "p-a q+a p-b");
    delete b;
}

TEST_F(Tree, ConstructorMakesAFullChildAndNoneIsItsOwnParent)
{
    Named p("p");
    watch(p);
    ZTBase *plain = new ZTBase(&p), *dynamic = new ZTDynamicBase(&p);
    EXPECT_EQ(diary.take(), "p+? p+?");
    ZTLogCapture log;
    plain->setParent(plain);
    EXPECT_EQ(log.err(), "Zintar Error: Cannot parent an ZTBase object under itself.\n");
    EXPECT_EQ(log.out(), "");
    EXPECT_EQ(p.children(), (std::vector<ZTBase*>{plain, dynamic}));
    EXPECT_EQ(dynamic->metaClass(), &ZTDynamicBase::typeMetaClass());
    std::ostringstream printed, address;
    printed << plain;
    address << static_cast<void*>(plain);
    EXPECT_EQ(printed.str(), address.str());
}

TEST_F(Tree, CircleDiesAsAWhole)
{
    auto *a = watched("a"), *b = watched("b");
    a->setParent(b);
    b->setParent(a);
    EXPECT_EQ(diary.take(), "b+a a+b");
    delete a;
    EXPECT_EQ(diary.take(), "~a b-a ~b");
}

// Handlers that change the tree while `setParent` is at work.
class TreeReentry : public TreeTest
{
protected:
    TreeReentry()
    {
        watch(*p);
        watch(*q);
        watch(*r);
    }
    std::unique_ptr<Named> p{new Named("p")}, q{new Named("q")}, r{new Named("r")};
    Named* c = new Named("c", p.get());
};

TEST_F(TreeReentry, TargetOfTheOuterCallWins)
{
    on(p.get(), &ZTBase::childRemoved, [&] { c->setParent(r.get()); });
    c->setParent(q.get());
    EXPECT_EQ(treeOf(p.get()) + treeOf(q.get()) + treeOf(r.get()), "pq(c)r");
    EXPECT_EQ(diary.take(), "p-c q+c");
    on(r.get(), &ZTBase::childAdded, [&] { c->setParent(q.get()); });
    c->setParent(r.get());
    EXPECT_EQ(diary.take(), "q-c r+c r-c q+c");
}

TEST_F(TreeReentry, AnybodyDiesOnTheWay)
{
    on(p.get(), &ZTBase::childRemoved, [&] { q.reset(); });
    c->setParent(q.get()); // the target
    EXPECT_EQ(diary.take(), "p-c ~q");
    c->setParent(r.get());
    EXPECT_EQ(diary.take(), "r+c");
    on(r.get(), &ZTBase::childRemoved, [&] { r.reset(); });
    c->setParent(p.get()); // the old parent
    EXPECT_EQ(diary.take(), "r-c ~r p+c");
    auto* d = new Named("d", c);
    on(p.get(), &ZTBase::childAdded, [&] { delete d; });
    d->setParent(p.get()); // the child, in its new place
    EXPECT_EQ(diary.take(), "p+d p-d");
    on(p.get(), &ZTBase::childRemoved, [&] { delete c; });
    c->setParent(d = watched("d")); // the child, between the two
    EXPECT_EQ(diary.take(), "p-c");
    EXPECT_EQ(treeOf(p.get()) + treeOf(d), "pd");
    delete d;
}

TEST_F(TreeReentry, EverybodyIsMovedOnTheWay)
{
    Named target("t");
    on(p.get(), &ZTBase::childRemoved, [&] {
        target = std::move(*q);
        Named* former = std::exchange(c, new Named(std::move(*c)));
        delete former;
        *r = std::move(*p);
    });
    c->setParent(q.get());
    EXPECT_EQ(diary.take(), "p-c q+c");
    EXPECT_EQ(target.children(), std::vector<ZTBase*>{c});
    EXPECT_EQ(treeOf(&target) + treeOf(r.get()), "q(c)p");
}

TEST_F(TreeReentry, ThrowingHandlerLeavesAChildThatCanBePlaced)
{
    on(p.get(), &ZTBase::childRemoved, [] { throw std::runtime_error("removed"); });
    EXPECT_THROW(c->setParent(q.get()), std::runtime_error);
    EXPECT_EQ(treeOf(p.get()) + treeOf(q.get()), "pq");

    on(q.get(), &ZTBase::childAdded, [] { throw std::runtime_error("added"); });
    EXPECT_THROW(c->setParent(q.get()), std::runtime_error);
    EXPECT_EQ(treeOf(q.get()), "q(c)");
    EXPECT_THROW(ZTBase(q.get()), std::runtime_error);
    EXPECT_EQ(treeOf(q.get()), "q(c)");
    c->setParent(r.get());
    EXPECT_EQ(diary.take(), "p-c q+c q+? q-? q-c r+c");
}
} // namespace
