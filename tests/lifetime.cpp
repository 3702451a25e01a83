#include "support/hostclasses.h"

#include <functional>
#include <memory>
#include <sstream>
#include <stdexcept>

namespace
{
using namespace host;

/// A tree of which everybody is watched: g(a(a1(a2) d) b(b1)).
class Lifetime : public TreeTest
{
protected:
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

TEST_F(Lifetime, ConstructorMakesAFullChildAndNoneIsItsOwnParent)
{
    ZTBase *plain = new ZTBase(b1), *dynamic = new ZTDynamicBase(b1);
    EXPECT_EQ(diary.take(), "b1+? b1+?");
    ZTLogCapture log;
    plain->setParent(plain);
    EXPECT_EQ(log.err(), "Zintar Error: Cannot parent an ZTBase object under itself.\n");
    EXPECT_EQ(log.out(), "");
    EXPECT_EQ(b1->children(), (std::vector<ZTBase*>{plain, dynamic}));
    EXPECT_EQ(dynamic->metaClass(), &ZTDynamicBase::typeMetaClass());
    std::ostringstream printed, address;
    printed << plain;
    address << static_cast<void*>(plain);
    EXPECT_EQ(printed.str(), address.str());
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

TEST_F(Lifetime, HandlerMovesAnObjectThatIsBeingMade)
{
    auto parent = std::make_unique<ZTBase>();
    ZTBase* stolen = nullptr;
    on(parent.get(), &ZTBase::childAdded,
       [&](ZTBase* child) { stolen = new ZTBase(std::move(*child)); });
    ZTBase emptied(parent.get());
    EXPECT_EQ(parent->children(), std::vector{stolen});
}

TEST_F(Lifetime, ExceptionOutOfADestructorEndsTheProcess)
{
    on(watched("o", &observer), &ZTBase::destroyed, [] { throw std::runtime_error("no"); });
    EXPECT_DEATH(delete observer.children().front(), "");
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
    *b = std::move(*o);
    delete o;
    EXPECT_EQ(diary.take(), "g-o ~b1");
    EXPECT_EQ(treeOf(g.get()) + treeOf(b), "g(a(a1(a2) d))o");
    EXPECT_FALSE(old);
    EXPECT_FALSE(b->isBlockingSentEvents());
    delete b;
}
} // namespace
