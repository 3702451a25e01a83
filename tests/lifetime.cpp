#include "support/hostclasses.h"

#include <memory>
#include <stdexcept>

namespace
{
using namespace host;

class Lifetime : public TreeTest
{};

/// Something that an object owns, and that tells when it goes.
std::shared_ptr<void> farewell(std::function<void()> action)
{
    return {nullptr, [action](void*) { action(); }};
}

TEST_F(Lifetime, ParentDeletesItsChildrenFromFirstToLast)
{
    auto* p = watched("p");
    auto* x = watched("x", p);
    watched("y", p);
    auto* z = watched("z", p);
    watched("x1", x);
    watched("x2", x);
    diary.take();
    delete x;
    EXPECT_EQ(diary.take(), "~x p-x ~x1 ~x2");
    watched("z1", z);
    diary.take();
    delete p;
    EXPECT_EQ(diary.take(), "~p ~y ~z ~z1");
}

TEST_F(Lifetime, DestroyedIsSentWhileEverythingButTheDerivedPartIsThere)
{
    Named p("p");
    auto* speaker = new Speaker("s");
    speaker->setParent(&p);
    auto* child = new Named("c", speaker);
    ZTRef<ZTBase> reference(speaker);
    on(speaker, &ZTBase::destroyed, [&](ZTBase* object) {
        EXPECT_EQ(object->metaClass(), &ZTBase::typeMetaClass());
        EXPECT_EQ(treeOf(&p), "p(s(c))");
        EXPECT_EQ(reference, object);
        EXPECT_TRUE(ZTBase::unsubscribe(object, &ZTBase::destroyed, &observer, nullptr));
        child->setParent(&p);
        diary.add("~s");
    });
    delete speaker;
    EXPECT_EQ(diary.take(), "~s");
    EXPECT_EQ(treeOf(&p), "p(c)");
}

TEST_F(Lifetime, ReferencesReadTheObjectUntilItsChildrenAreGone)
{
    Named p("p");
    auto* o = new Named("o", &p);
    auto* child = new Named("c", o);
    ZTRef<ZTBase> reference(o);
    auto tell = [&](const std::string& when) { diary.add(when + (reference ? "+" : "-")); };
    on(o, &ZTBase::destroyed, [&] { tell("destroyed"); });
    on(&p, &ZTBase::childRemoved, [&] { tell("childRemoved"); });
    on(child, &ZTBase::destroyed, [&] { tell("child"); });
    // What the object owns goes last: its dynamic properties, then what its handlers captured.
    o->setProperty("owned", farewell([&] { tell("property"); }), true);
    ZTBase::subscribe(o, &ZTBase::childAdded, &observer,
                      [owned = farewell([&] { tell("handler"); })] { (void)owned; });
    delete o;
    EXPECT_EQ(diary.take(), "destroyed+ childRemoved+ child+ property- handler-");
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

TEST_F(Lifetime, ExceptionOutOfADestructorEndsTheProcess)
{
    on(watched("o", &observer), &ZTBase::destroyed, [] { throw std::runtime_error("no"); });
    EXPECT_DEATH(delete observer.children().front(), "");
}

class Move : public TreeTest
{};

TEST_F(Move, ObjectKeepsItsPlaceInTheTree)
{
    auto* p = watched("p");
    watched("a", p);
    auto* b = watched("b", p);
    watched("c", p);
    auto* child = watched("b1", b);
    diary.take();

    auto* moved = new Named(std::move(*b));
    delete b;
    EXPECT_EQ(diary.take(), "");
    EXPECT_EQ(treeOf(p), "p(a b(b1) c)");
    EXPECT_EQ(p->children()[1], moved);
    child->setParent(p);
    EXPECT_EQ(treeOf(p), "p(a b c b1)");
    moved->setParent(nullptr);
    EXPECT_EQ(diary.take(), "b-b1 p+b1 p-b");
    delete moved;
    EXPECT_EQ(diary.take(), "~b");
    delete p;
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
    EXPECT_TRUE(second.isBlockingSentEvents() && mover.isBlockingReceivedEvents());
    sent = received = ZTEventBlocker(nullptr, true);
    EXPECT_FALSE(second.isBlockingSentEvents() || mover.isBlockingReceivedEvents());
    mover.then = [&] { diary.add(mover.active()); };
    second.said(1);
    EXPECT_EQ(diary.take(), "h:1 said 4 of speaker");
    EXPECT_TRUE(second.unsubscribe(&mover));
}

TEST_F(Move, MovedFromObjectIsNobody)
{
    Named source("o");
    watch(source);
    auto target = std::make_unique<Named>(std::move(source));
    EXPECT_LOGS_NOTHING([&] {
        source.childAdded(nullptr);
        source.setParent(&observer);
        EXPECT_FALSE(source.setProperty("name", 1, true) || source.property("name").isValid());
        EXPECT_FALSE(ZTBase::subscribe(&source, &ZTBase::childAdded, &observer, [] {}));
        EXPECT_FALSE(ZTBase::subscribe(&observer, &ZTBase::childAdded, &source, [] {}));
        EXPECT_FALSE(source.unsubscribe(nullptr) || target->unsubscribe(&source));
        ZTEventBlocker blocker(&source, true);
        EXPECT_FALSE(source.isBlockingSentEvents());
    });
    EXPECT_TRUE(source.children().empty() && observer.children().empty());
    source = std::move(*target);
    target.reset();
    EXPECT_EQ(nameOf(&source), "o");
    EXPECT_EQ(diary.take(), "");
}

TEST_F(Move, AssignmentReplacesWithoutDestroyed)
{
    Named g("g");
    auto *t = watched("t", &g), *o = watched("o");
    watch(g);
    watched("t1", t);
    watched("o1", o);
    diary.take();
    ZTRef<ZTBase> old(t);
    ZTEventBlocker blocker(t, true);
    auto& itself = *t;
    *t = std::move(itself);
    EXPECT_EQ(treeOf(&g) + diary.take(), "g(t(t1))");
    *t = std::move(*o);
    delete o;
    EXPECT_EQ(diary.take(), "g-o ~t1");
    EXPECT_EQ(treeOf(&g) + treeOf(t), "go(o1)");
    EXPECT_FALSE(old || t->isBlockingSentEvents());
    delete t;
    EXPECT_EQ(diary.take(), "~o ~o1");
}

TEST_F(Move, ParentBecomesItsOwnDescendant)
{
    Named g("g");
    auto* p = watched("p", &g);
    auto* c = watched("c", watched("between", p));
    watched("d", p);
    watched("c1", c);
    watch(g);
    diary.take();
    *p = std::move(*c);
    delete c;
    EXPECT_EQ(diary.take(), "g-c ~between ~d");
    EXPECT_EQ(treeOf(&g) + treeOf(p), "gc(c1)");
    delete p;
}

TEST_F(Move, ChildBecomesItsOwnParent)
{
    Named g("g");
    auto* p = watched("p", &g);
    auto* c = watched("c", p);
    watched("d", p);
    watched("c1", c);
    diary.take();
    *c = std::move(*p);
    delete p;
    EXPECT_EQ(diary.take(), "p-p ~c1");
    EXPECT_EQ(treeOf(&g), "g(p(d))");
    EXPECT_EQ(g.children(), std::vector<ZTBase*>{c});
}

TEST_F(Move, ChildBecomesItsSibling)
{
    Named p("p");
    auto *a = watched("a", &p), *b = watched("b", &p);
    watched("c", &p);
    watched("b1", b);
    watch(p);
    diary.take();
    *b = std::move(*a);
    delete a;
    EXPECT_EQ(diary.take(), "p-a ~b1");
    EXPECT_EQ(treeOf(&p), "p(a c)");
    EXPECT_EQ(p.children()[0], b);
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
