// What objects and events do when memory fails: see `support/allornothing.h`. What ends something
// allocates nothing.

#include "support/allornothing.h"

#include <zintar/zintar.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

namespace
{
using support::longText, support::otherText;
using FailingMemory = support::FailingMemoryTest;

std::string textOf(const ZTVariant& variant)
{
    const auto* text = ztVariantPointer<std::string>(variant);
    const auto* number = ztVariantPointer<int>(variant);
    return text ? text->substr(0, 5) : number ? std::to_string(*number) : "none";
}

/// What the objects of a test heard, in order.
class Diary
{
public:
    void add(std::string_view entry)
    {
        for (std::string_view part : {entry.substr(0, 5), std::string_view(" ")})
            m_size += part.copy(m_text + m_size, sizeof m_text - m_size);
    }
    void clear() { m_size = 0; }
    std::string text() const { return {m_text, m_size}; }

private:
    char m_text[1000];
    std::size_t m_size = 0;
};
Diary diary;

class Lamp : public ZTBase
{
    ZT_OBJECT(Lamp, ZTBase)
public:
    using ZTBase::sendEvent, ZTBase::ZTBase;
    std::string label = longText;

    void lit(const std::string& reason, int level) { sendEvent<&Self::lit>(reason, level); }
    void spent(const std::string& reason) { sendEvent<&Self::spent>(reason); }
    void hear(const std::string& reason) { diary.add(reason); }
    void notListed() {}
    void hearAll(const std::string&, int level) { diary.add(level ? "all" : "none"); }
    std::string joined(const std::string& head, int) const { return head + label; }

private:
    static constexpr auto members()
    {
        return zt::members(zt::event<&Self::lit>(), zt::event<&Self::spent>(),
                           zt::method<&Self::hear>(), zt::method<&Self::hearAll>(),
                           zt::method<&Self::joined>(), zt::property<&Self::label>());
    }
};
ZT_CLASS(Lamp)

void hearFreely(const std::string&) { diary.add("free"); }

template <class Function>
const ZTMetaInvokable* member(Function function)
{
    return Lamp::typeMetaClass().invokable(&function);
}

/// Two trees. What happens in them is noted; who hears `room` shows when it is lit.
struct House {
    ZTBase watcher;
    std::unique_ptr<Lamp> room{new Lamp}, attic{new Lamp};
    Lamp* lamp = new Lamp(room.get());
    std::unique_ptr<ZTBase> made;
    ZTRef<Lamp> weak;
    ZTStrongRef<Lamp> strong;
    ZTSubscription handle;
    ZTScopedSubscription scoped;
    std::unique_ptr<ZTEventListener> listener{new ZTEventListener(room.get(), &Lamp::spent)};
    ZTVariant result;
    const ZTMetaInvokable *lit = member(&Lamp::lit), *spent = member(&Lamp::spent);
    const ZTMetaInvokable *hear = member(&Lamp::hear), *hearAll = member(&Lamp::hearAll);

    House()
    {
        new ZTBase(attic.get());
        lamp->setProperty("size", longText, true);
        room->spent(longText);
        for (Lamp* object : {room.get(), attic.get()}) {
            auto note = [](auto event) { return [=] { diary.add(event); }; };
            ZTBase::subscribe(object, &ZTBase::childAdded, &watcher, note("added"));
            ZTBase::subscribe(object, &ZTBase::childRemoved, &watcher, note("lost"));
            ZTBase::subscribe(object, &ZTBase::dynamicPropertyChanged, &watcher, note("set"));
        }
        diary.clear();
    }
    std::string describe() const
    {
        std::string text;
        for (const ZTBase* object : {room.get(), attic.get(), lamp}) {
            auto names = object->dynamicProperties();
            std::sort(names.begin(), names.end());
            text += std::to_string(object->children().size()) + textOf(object->property("label"));
            for (std::string_view name : names)
                text += ", " + std::string(name) + " " + textOf(object->property(name));
            text += "; ";
        }
        text += std::string(weak ? "weak " : "") + (strong ? "strong " : "") +
                (handle ? "handle " : "") + (scoped ? "scoped " : "") + (made ? "made " : "") +
                (listener->valid() ? "hears" : "");
        for (const auto& record : *listener)
            text += " " + (record.empty() ? "nothing" : textOf(record[0]));
        return text + "; " + textOf(result) + "; " + diary.text() + "; probed: " + probe();
    }
    std::string probe() const
    {
        const Diary before = std::exchange(diary, {});
        room->lit("probe", 1);
        return std::exchange(diary, before).text();
    }
};

/// One in which subscriptions of all kinds are heard.
struct LoudHouse : House {
    LoudHouse()
    {
        handle = ZTBase::subscribe(room.get(), lit, lamp, hear);
        ZTBase::subscribe(room.get(), &Lamp::lit, lamp, &Lamp::hearAll);
        ZTBase::subscribe(room.get(), &Lamp::lit, &hearFreely);
        scoped = ZTBase::subscribe(room.get(), &Lamp::lit, [text = longText] { diary.add(text); });
    }
};

/// One with an object that nothing but a strong reference keeps.
struct HeldHouse : House {
    HeldHouse() : held(new Lamp), other(new Lamp) { weak = ZTRef<Lamp>(held.get()); }
    ZTStrongRef<Lamp> held;
    Lamp* other;
    ~HeldHouse() { delete other; }
};

// clang-format off
TEST_F(FailingMemory, Trees)
{
    using State = House;
    expectAllOrNothing<State>({
        DO(s.made.reset(new ZTBase)),
        DO(new ZTBase(s.room.get())),
        DO(s.made.reset(new ZTDynamicBase)),
        DO(new ZTDynamicBase(s.room.get())),
        DO(s.lamp->setParent(s.attic.get())),
        DO(s.lamp->setParent(s.lamp)),
    });
}

TEST_F(FailingMemory, TreesEnd)
{
    using State = LoudHouse;
    expectNoAllocation<State>({
        DO(s.lamp->setParent(nullptr); s.made.reset(s.lamp)),
        DO(delete s.lamp),
        DO(s.room.reset()),
        DO(ZTBase moved(std::move(*s.room))),
        DO(ZTBase moved(std::move(*s.lamp)); delete s.lamp),
        DO(*s.room = std::move(*s.attic)),
        DO(*s.attic = std::move(*s.room)),
        DO(*s.room = std::move(*s.lamp); delete s.lamp),
    });
}

TEST_F(FailingMemory, Properties)
{
    using State = House;
    expectAllOrNothing<State>({
        DO(s.room->setProperty("label", otherText)),
        DO(s.room->setProperty("label", s.listener->records()[0][0])),
        DO(s.room->setProperty("label", 1)),
        DO(s.lamp->setProperty("size", otherText, true)),
        DO(s.lamp->setProperty(longText, longText, true)),
        DO(s.room->setProperty("size", longText, true)),
        DO(s.attic->setProperty(longText, 1, true)),
        DO(s.result = s.room->property("label")),
        DO(s.result = s.lamp->property("size")),
        DO(s.room->label = s.lamp->property<std::string>("size")),
        DO(s.room->label = s.lamp->property<std::string>("label")),
        DO(s.result = ZTVariant(int(s.lamp->dynamicProperties().size()))),
        DO(s.result = s.room->metaClass()->property("label")->get(ZTVariant(s.room.get()))),
        DO(s.room->metaClass()->property("label")->set(s.room.get(), otherText)),
    });
}

TEST_F(FailingMemory, References)
{
    using State = House;
    expectAllOrNothing<State>({
        DO(s.weak = ZTRef<Lamp>(s.lamp)),
        DO(s.weak.reset(s.lamp)),
        DO(s.strong.reset(s.lamp)),
    });
}

TEST_F(FailingMemory, ReferencesEnd)
{
    using State = HeldHouse;
    expectNoAllocation<State>({
        DO(ZTRef<Lamp> weak(s.weak); ZTStrongRef<Lamp> strong(s.held)),
        DO(s.weak.reset()),
        DO(s.held.reset()),
        DO(delete s.held.get()),
        DO(auto* held = s.held.get(); *held = std::move(*s.other); delete held), // nobody's now
    });
}

TEST_F(FailingMemory, Subscribing)
{
    using State = House;
    expectAllOrNothing<State>({
        DO(s.handle = ZTBase::subscribe(s.room.get(), s.lit, s.lamp, s.hear)),
        DO(s.handle = ZTBase::subscribe(s.room.get(), &Lamp::lit, s.lamp, &Lamp::hear)),
        DO(s.handle = ZTBase::subscribe(s.room.get(), &Lamp::lit, s.lamp, [t = longText] { diary.add(t); })),
        DO(s.handle = ZTBase::subscribe(s.room.get(), s.lit, s.lamp, [](const ZTArgumentArray&) { diary.add("array"); })),
        DO(s.handle = ZTBase::subscribe(s.room.get(), &Lamp::lit, s.lamp, std::function<void()>([t = longText] { diary.add(t); }))),
        DO(s.handle = ZTBase::subscribe(s.room.get(), &Lamp::lit, &hearFreely)),
        DO(s.scoped = ZTBase::subscribe(s.room.get(), &Lamp::lit, [t = longText] { diary.add(t); })),
        DO(s.handle = ZTBase::subscribe(s.room.get(), s.spent, s.lamp, s.hear)),
        DO(s.handle = ZTBase::subscribe(s.room.get(), s.spent, s.lamp, s.hearAll)),
        DO(s.handle = ZTBase::subscribe(s.room.get(), &Lamp::hear, s.lamp, &Lamp::hear)),
        DO(s.handle = ZTBase::subscribe(s.room.get(), &Lamp::notListed, s.lamp, [t = longText] { diary.add(t); })),
    });
}

TEST_F(FailingMemory, Unsubscribing)
{
    using State = LoudHouse;
    expectAllOrNothing<State>({
        DO(s.room->unsubscribe(s.lamp)),
        DO(s.room->unsubscribe(nullptr)),
        DO(ZTBase::unsubscribe(s.handle)),
        DO(ZTBase::unsubscribe(s.room.get(), s.lit, nullptr, nullptr)),
        DO(ZTBase::unsubscribe(s.room.get(), s.lit, s.lamp, s.hear)),
        DO(ZTBase::unsubscribe(s.room.get(), &Lamp::lit, s.lamp, &Lamp::hearAll)),
        DO(ZTBase::unsubscribe(s.room.get(), &Lamp::lit, s.lamp, nullptr)),
    });
    expectNoAllocation<State>({
        DO(s.scoped.reset()),
        DO(s.scoped = ZTScopedSubscription()),
        DO(ZTScopedSubscription last(s.handle)),
        DO(s.scoped = ZTScopedSubscription(s.handle); s.scoped = ZTScopedSubscription()),
        DO((void)(s.handle == ZTSubscription(s.handle) && s.scoped)),
        DO(ZTEventBlocker sent(s.room.get(), true); ZTEventBlocker received(s.lamp, false); sent = received),
    });
}

TEST_F(FailingMemory, Calls)
{
    using State = LoudHouse;
    expectAllOrNothing<State>({
        DO(s.room->spent(otherText)),
        DO(s.attic->lit(longText, 1)),
        DO(s.room->lit(otherText, 1)),
        DO(s.room->sendEvent(s.spent->index(), ZTArgumentArray{ZTVariant(otherText)})),
        DO(s.room->sendEvent(1000, ZTArgumentArray())),
        DO(s.spent->invoke(s.room.get(), otherText)),
        DO(s.spent->invoke(ZTVariant(s.room.get()), ZTArgumentArray{ZTVariant(otherText)})),
        DO(s.hear->invoke(s.lamp, longText)),
        DO(s.hear->invoke(s.lamp)),
        DO(s.result = s.room->metaClass()->invokable<void(const std::string&, int)>("joined", true)->invoke(s.room.get(), longText, 1)),
        DO(s.lamp->metaClass()->invokable("hear", false, {&ztMetaType<std::string>()})->invoke(s.lamp, longText)),
    });
}

TEST_F(FailingMemory, Listeners)
{
    using State = House;
    expectAllOrNothing<State>({
        DO(s.listener.reset(new ZTEventListener(s.room.get(), &Lamp::lit))),
        DO(s.listener.reset(new ZTEventListener(s.room.get(), s.lit))),
        DO(s.result = s.listener->at(0).at(0)),
        DO(s.result = s.listener->last().at(0)),
        DO(s.lamp->label = s.listener->argument<std::string>(0, 0)),
        DO(s.lamp->label = s.listener->argument<std::string>(1, 0)),
    });
    expectNoAllocation<State>({
        DO(s.listener->remove(0)),
        DO(s.listener->clear()),
        DO(s.listener.reset()),
    });
}
// clang-format on

struct Machine : ZTDynamicBase {
    using ZTDynamicBase::initializeMetaClass, ZTBase::sendEvent;
    std::string label = longText;
};

const ZTMetaClass& machineClass()
{
    static const std::unique_ptr<ZTMetaClass> made = [] {
        ZTMetaClassBuilder builder;
        builder.setSuperClass(&ZTDynamicBase::typeMetaClass());
        builder.addInvokable().setEvent<std::string>();
        builder.addInvokable().setFunction(
            [](Machine& self, std::string text) { return text += self.label; });
        auto label = builder.addProperty();
        label.setName("label");
        label.setGetter([](const Machine& self) { return self.label; });
        label.setSetter([](Machine& self, const std::string& value) { self.label = value; });
        return std::unique_ptr<ZTMetaClass>(builder.toMetaClass());
    }();
    return *made;
}

/// A machine with a class made at run time, and one that has not got it yet.
struct Workshop {
    ZTBase watcher;
    Machine ready, empty;
    const ZTMetaInvokable* event = machineClass().invokable(machineClass().invokableOffset());
    const ZTMetaInvokable* method = machineClass().invokable(machineClass().invokableCount() - 1);
    ZTVariant result;

    Workshop()
    {
        ready.initializeMetaClass(&machineClass());
        ZTBase::subscribe(&ready, event, &watcher,
                          [](const std::string& text) { diary.add(text); });
        ZTBase::subscribe(&empty, &ZTDynamicBase::metaClassInitialized, &watcher,
                          [] { diary.add("ready"); });
        diary.clear();
    }
    std::string describe() const
    {
        return ready.label.substr(0, 5) +
               (empty.metaClass() == &machineClass() ? "; ready; " : "; empty; ") + textOf(result) +
               "; " + diary.text();
    }
};

// clang-format off
TEST_F(FailingMemory, RunTimeClasses)
{
    using State = Workshop;
    expectAllOrNothing<State>({
        DO(s.empty.initializeMetaClass(&machineClass())),
        DO(s.empty.initializeMetaClass(&ZTBase::typeMetaClass())),
        DO(s.ready.initializeMetaClass(&machineClass())),
        DO(s.ready.setProperty("label", otherText)),
        DO(s.ready.setProperty("label", 1)),
        DO(s.result = s.ready.property("label")),
        DO(s.result = s.method->invoke(&s.ready, longText)),
        DO(s.result = s.method->invoke(&s.ready)),
        DO(s.event->invoke(&s.ready, longText)),
        DO(s.ready.sendEvent(s.event->index(), ZTArgumentArray{ZTVariant(longText)})),
    });
    expectNoAllocation<State>({
        DO(ZTDynamicBase moved(std::move(s.ready))),
        DO(s.empty = std::move(s.ready)),
        DO(s.ready = std::move(s.empty)),
        DO(s.empty.initializeMetaClass(&machineClass())),
    });
}
// clang-format on
} // namespace
