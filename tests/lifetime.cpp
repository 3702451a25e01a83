#include "support/hostclasses.h"

#include <memory>
#include <stdexcept>

namespace
{
using namespace host;

/// A tree of which everybody is watched: g(a(a1(a2) d) b(b1)).
class Lifetime : public TreeTest
{
protected:
    /// Moves the one into the other, and gives what was told.
    std::string become(Named* to, Named* from)
    {
        *to = std::move(*from);
        delete from;
        return diary.take();
    }

    std::unique_ptr<Named> g{watched("g")};
    Named *a = watched("a", g.get()), *a1 = watched("a1", a), *a2 = watched("a2", a1);
    Named *d = watched("d", a), *b = watched("b", g.get()), *b1 = watched("b1", b);
};
using Move = Lifetime;

/// Something that an object owns, and that tells when it goes.
std::shared_ptr<void> farewell(std::function<void()> action)
{
    return {nullptr, [action](void*) { action(); }};
}

TEST_F(Lifetime, ParentDeletesItsChildrenFromFirstToLast)
{
    delete a;
    EXPECT_EQ(diary.take(), "~a g-a ~a1 ~a2 ~d");
    g.reset();
    EXPECT_EQ(diary.take(), "~g ~b ~b1");
}

TEST_F(Lifetime, EverythingButTheDerivedPartIsThereUntilTheChildrenAreGone)
{
    ZTRef<ZTBase> reference(a);
    auto tell = [&](const std::string& when) { diary.add(when + (reference ? "+" : "-")); };
    on(a, &ZTBase::destroyed, [&](ZTBase* object) {
        EXPECT_EQ(object->metaClass(), &ZTBase::typeMetaClass());
        EXPECT_EQ(treeOf(g.get()), "g(a(a1(a2) d) b(b1))");
        EXPECT_EQ(reference, object);
        EXPECT_TRUE(ZTBase::unsubscribe(object, &ZTBase::destroyed, &observer, nullptr));
        a1->setParent(g.get());
    });
    on(g.get(), &ZTBase::childRemoved, [&] { tell("left"); });
    ZTBase::subscribe(g.get(), &ZTBase::childRemoved, a, [&] { tell("itself"); }); // deaf by then
    on(d, &ZTBase::destroyed, [&] { tell("child"); });
    // What the object owns goes last: its dynamic properties, then what its handlers captured.
    a->setProperty("owned", farewell([&] { tell("property"); }), true);
    ZTBase::subscribe(a, &ZTBase::childAdded, &observer,
                      [owned = farewell([&] { tell("handler"); })] { (void)owned; });
    delete a;
    EXPECT_EQ(diary.take(), "~a a-a1 g+a1 g-a left+ ~d child+ property- handler-");
    EXPECT_EQ(treeOf(g.get()), "g(b(b1) a1(a2))");
}

TEST_F(Lifetime, WhatDiesLastMayUseTheObjectOnceMore)
{
    auto* o = watched("o");
    auto comeBack = [this, o] {
        EXPECT_FALSE(ZTBase::subscribe(o, &ZTBase::childAdded, &observer, [] {}));
        EXPECT_FALSE(ZTBase::subscribe(&observer, &ZTBase::childAdded, o, [] {}));
        o->childAdded(nullptr);
        o->setProperty("late", 1, true);
        Named child("child", o);
        EXPECT_TRUE(o->children().empty());
        ZTEventBlocker blocker(o, true);
        diary.add("back");
    };
    ZTBase::subscribe(o, &ZTBase::childAdded, &observer,
                      [owned = farewell(comeBack)] { (void)owned; });
    delete o;
    EXPECT_EQ(diary.take(), "~o back");
}

TEST_F(Lifetime, HandlersChangeTheChildrenOfADyingParent)
{
    auto* p = watched("p");
    auto* x = watched("x", p);
    auto* y = watched("y", p);
    auto* z = watched("z", p);
    std::unique_ptr<Named> kept(watched("kept", p));
    auto* w = watched("w");
    diary.take();
    on(x, &ZTBase::destroyed, [&] {
        delete y;
        kept->setParent(nullptr);
        z->setParent(p);
        w->setParent(p);
        EXPECT_EQ(p->children(), (std::vector<ZTBase*>{nullptr, z, w}));
    });
    on(w, &ZTBase::destroyed, [&] { w->setParent(p); });
    delete p;
    EXPECT_EQ(diary.take(), "~p ~x ~y p-y p-kept p-z p+z p+w ~z ~w p+w p-w");
    EXPECT_EQ(nameOf(kept.get()), "kept");
}

TEST_F(Lifetime, HandlerDeletesTheParentOfWhatIsDying)
{
    on(a1, &ZTBase::destroyed, [&] { delete std::exchange(a, nullptr); });
    delete a1;
    EXPECT_EQ(diary.take(), "~a1 ~a g-a ~d ~a2");
}

TEST_F(Lifetime, WhatIsTornDownGetsNoParent)
{
    on(a2, &ZTBase::destroyed, [&] { a1->setParent(g.get()); });
    delete a1;
    EXPECT_EQ(treeOf(g.get()), "g(a(d) b(b1))");
}

TEST_F(Lifetime, HandlerMeetsAnObjectThatIsBeingMade)
{
    auto parent = std::make_unique<ZTBase>();
    std::function<void(ZTBase*)> action = [](ZTBase*) { throw std::runtime_error("no"); };
    on(parent.get(), &ZTBase::childAdded, [&](ZTBase* child) { action(child); });
    EXPECT_THROW(std::make_unique<ZTBase>(parent.get()), std::runtime_error);
    EXPECT_TRUE(parent->children().empty());

    std::unique_ptr<ZTBase> stolen;
    action = [&](ZTBase* child) { stolen = std::make_unique<ZTBase>(std::move(*child)); };
    ZTBase emptied(parent.get());
    EXPECT_EQ(parent->children(), std::vector{stolen.get()});

    action = [&](ZTBase*) { parent.reset(); };
    stolen.release(); // it is the parent's
    ZTBase orphan(parent.get());
    EXPECT_FALSE(parent);
}

TEST_F(Lifetime, ExceptionOutOfADestructorEndsTheProcess)
{
    on(watched("o", &observer), &ZTBase::destroyed, [] { throw std::runtime_error("no"); });
    EXPECT_DEATH(delete observer.children().front(), "");
}

TEST_F(Move, ObjectKeepsItsPlaceInTheTree)
{
    auto* moved = new Named(std::move(*a));
    delete a;
    EXPECT_EQ(treeOf(g.get()) + diary.take(), "g(a(a1(a2) d) b(b1))");
    EXPECT_EQ(g->children()[0], moved);
    a1->setParent(g.get());
    moved->setParent(nullptr);
    EXPECT_EQ(diary.take(), "a-a1 g+a1 g-a");
    delete moved;
    EXPECT_EQ(diary.take(), "~a ~d");
}

TEST_F(Move, EverythingThatNamesTheObjectFollows)
{
    Speaker first;
    Hearer hearer("h", diary);
    ZTBase::subscribe(&first, &Speaker::said, &hearer, &Hearer::hear);
    ZTRef<Speaker> reference(&first);
    ZTEventBlocker sent(&first, true), received(&hearer, false);
    Speaker second(std::move(first));
    Hearer mover(std::move(hearer));

    EXPECT_EQ(reference.get(), &second);
    EXPECT_TRUE(second.isBlockingSentEvents());
    EXPECT_TRUE(mover.isBlockingReceivedEvents());
    sent = received = ZTEventBlocker(nullptr, true);
    mover.then = [&] { diary.add(mover.active()); };
    second.said(1);
    EXPECT_EQ(diary.take(), "h:1 said 4 of speaker");
}

TEST_F(Move, MovedFromObjectIsNobody)
{
    Named source("o");
    watch(source);
    auto target = std::make_unique<Named>(std::move(source));
    EXPECT_LOGS_NOTHING([&] {
        source.childAdded(nullptr);
        source.setParent(&observer);
        EXPECT_FALSE(source.setProperty("name", 1, true));
        EXPECT_FALSE(source.property("name").isValid());
        EXPECT_FALSE(ZTBase::subscribe(&source, &ZTBase::childAdded, &observer, [] {}));
        EXPECT_FALSE(ZTBase::subscribe(&observer, &ZTBase::childAdded, &source, [] {}));
        EXPECT_FALSE(source.unsubscribe(nullptr));
        EXPECT_FALSE(target->unsubscribe(&source));
        ZTEventBlocker blocker(&source, true);
        EXPECT_FALSE(source.isBlockingSentEvents());
    });
    EXPECT_TRUE(source.children().empty());
    EXPECT_TRUE(observer.children().empty());
    source = std::move(*target);
    target.reset();
    EXPECT_EQ(nameOf(&source), "o");
    EXPECT_EQ(diary.take(), "");
}

TEST_F(Move, AssignmentReplacesWithoutDestroyed)
{
    ZTRef<ZTBase> old(b);
    ZTEventBlocker blocker(b, true);
    auto& itself = *b;
    *b = std::move(itself);
    EXPECT_EQ(treeOf(g.get()) + diary.take(), "g(a(a1(a2) d) b(b1))");
    auto* o = new Named("o");
    EXPECT_EQ(become(b, o), "g-o ~b1");
    EXPECT_EQ(treeOf(g.get()) + treeOf(b), "g(a(a1(a2) d))o");
    EXPECT_FALSE(old);
    EXPECT_FALSE(b->isBlockingSentEvents());
    delete b;
}

TEST_F(Move, RelativesBecomeEachOther)
{
    EXPECT_EQ(become(a1, a), "a-a ~a2"); // a child its parent
    EXPECT_EQ(treeOf(g.get()), "g(a(d) b(b1))");
    EXPECT_EQ(become(b, a1), "g-a ~b1"); // one its sibling
    EXPECT_EQ(treeOf(g.get()), "g(a(d))");
    EXPECT_EQ(g->children()[0], b);
    EXPECT_EQ(become(b, d), "g-d"); // a parent its child
    EXPECT_EQ(treeOf(g.get()) + treeOf(b), "gd");
    delete b;
}

TEST_F(Move, ObjectsInACircleBecomeAnother)
{
    a->setParent(b);
    b->setParent(a);
    become(g.get(), d);
    EXPECT_EQ(g.release(), a->children().at(1));
    diary.take();
    delete a;
    EXPECT_EQ(diary.take(), "~a b-a ~a1 ~a2 ~d ~b ~b1");
}

TEST_F(Move, WhatHeldTheReplacedObjectLeavesTheNewOneAlone)
{
    ZTRef<ZTBase> weak(a);
    auto strong = std::make_unique<ZTStrongRef<ZTBase>>(a);
    auto blocker = std::make_unique<ZTEventBlocker>(a, true);
    ZTRef<ZTBase> other(b);
    on(g.get(), &ZTBase::childRemoved, [&] {
        weak.reset();
        strong.reset();
        blocker.reset();
        new Named("fresh", a);
    });
    become(a, b);
    EXPECT_EQ(treeOf(g.get()), "g(b(b1 fresh))");
    EXPECT_EQ(other, a);
}

TEST_F(Move, ParentOfTheNewOneDiesMeanwhile)
{
    auto q = std::make_unique<Named>("q");
    b->setParent(q.get());
    on(g.get(), &ZTBase::childRemoved, [&] { q.reset(); });
    become(a, b);
    EXPECT_EQ(treeOf(a), "b(b1)");
    EXPECT_EQ(treeOf(g.get()), "g");
    delete a;
}

TEST_F(Move, DyingObjectHandsNothingOver)
{
    auto* p = watched("p");
    auto* c = watched("c", p);
    on(p, &ZTBase::childRemoved, [&](ZTBase* child) {
        ZTBase heir(std::move(*child));
        heir.setParent(p);
        Named other("other");
        *child = std::move(other);
        EXPECT_EQ(treeOf(p) + nameOf(&other) + nameOf(child), "potherc");
    });
    delete c;
    delete p;
    EXPECT_EQ(diary.take(), "~c p-c ~p");
}

TEST_F(Move, DyingObjectIsAliveAgainInAnother)
{
    ZTBase* heir = nullptr;
    on(b, &ZTBase::destroyed, [&](ZTBase* dying) {
        if (!heir)
            heir = new ZTBase(std::move(*dying));
    });
    delete b;
    EXPECT_EQ(diary.take() + treeOf(g.get()), "~bg(a(a1(a2) d) b(b1))");
    ZTStrongRef<ZTBase>(heir).reset();
    EXPECT_EQ(diary.take(), "~b g-b ~b1");
}

TEST_F(Move, MemberHandlersAreNotCalledOnWhatIsCutDownToTheBase)
{
    Speaker speaker;
    Hearer hearer("h", diary);
    ZTBase::subscribe(&speaker, &Speaker::said, &hearer, &Hearer::hear);
    on(&speaker, &Speaker::said, [&] { diary.add("observer"); });
    ZTBase part(static_cast<ZTBase&&>(hearer));
    speaker.said(1);
    EXPECT_EQ(diary.take(), "observer");
    hearer = Hearer("again", diary);
    ZTBase::subscribe(&speaker, &Speaker::said, &hearer, &Hearer::hear);
    speaker.said(2);
    EXPECT_EQ(diary.take(), "observer again:2");
}
} // namespace
