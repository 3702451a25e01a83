// Whatever an operation allocates may fail: see `support/allornothing.h`. What ends something
// allocates nothing.

#include "support/allornothing.h"
#include "support/bytes.h"
#include "support/describe.h"
#include "support/sampleclasses.h"

#include <zintar/declare.h>
#include <zintar/zintar.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <typeindex>
#include <typeinfo>
#include <unordered_map>
#include <utility>
#include <vector>

namespace
{
using sample::Heater;
using FailingMemory = support::FailingMemoryTest;
using FailingMemoryDeathTest = support::FailingMemoryTest;

// Too long to be held without an allocation.
const std::string longText = "a text that is too long for any string to hold in place";
const std::string otherText = "the other text that is too long for any string";

using Texts = std::vector<std::string>;

/// Can neither be printed nor streamed.
struct Cents {
    int count = 0;
};

std::string textOf(const ZTVariant& variant)
{
    if (const auto* text = ztVariantPointer<std::string>(variant))
        return text->substr(0, 5);
    if (const auto* number = ztVariantPointer<int>(variant))
        return std::to_string(*number);
    if (const auto* inner = ztVariantPointer<ZTVariant>(variant))
        return "<" + textOf(*inner) + ">";
    if (const auto* texts = ztVariantPointer<Texts>(variant))
        return std::to_string(texts->size()) + " texts";
    return variant.isValid() ? "other" : "invalid";
}

/// Takes what is printed without an allocation.
struct Page : std::streambuf {
    Page() { setp(memory, memory + sizeof memory); }
    std::string text() const { return {pbase(), pptr()}; }
    char memory[1000];
};

const bool hasConverters = [] {
    ztRegisterConverter([](int number) { return longText + std::to_string(number); });
    ztRegisterConverter([](const Texts& texts) -> std::optional<std::string> {
        return texts.empty() ? std::nullopt : std::optional(texts.front());
    });
    return true;
}();

/// Another medium than the library's own.
struct Tape : ZTDataStream {
    ZTDataStream& read(char* bytes, unsigned int count) override
    {
        isGood = isGood && count <= content.size() - position;
        std::copy_n(content.data() + position, isGood ? count : 0, bytes);
        position += isGood ? count : 0;
        return *this;
    }
    bool good() const override { return isGood; }

    std::string content = support::streamed(longText);
    std::size_t position = 0;
    bool isGood = true;
};

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

using Known = std::unordered_map<std::string, const ZTMetaClass*>;

/// Something of everything that a host may have. Its parts tell about themselves.
struct Host {
    // Values.
    ZTVariant text{longText}, number{7}, texts{Texts{longText, otherText}};
    ZTVariant nested{ztMetaType<ZTVariant>(), &text}, cents{Cents()}, result, invalid;
    const ZTVariant constNumber{8};
    std::string plain;
    Page page;
    std::ostream out{&page};

    // Streams. The first one has room for a few more bytes.
    ZTDataStream full;
    ZTDataStream textStream = support::streamOf(support::streamed(longText));
    ZTDataStream variantStream = support::streamOf(support::streamed(ZTVariant(longText)));
    ZTDataStream nestedStream = support::streamOf(support::streamed(nested));
    ZTDataStream unreadable = support::streamOf(support::streamed(ztMetaType<char>(), 'c'));
    Tape tape;
    std::string bytes = support::streamed(longText);
    const ZTMetaType* type = nullptr;

    // A class under construction.
    ZTMetaClassBuilder builder{&Heater::typeMetaClass()};
    ZTMetaClassInfoBuilder info = builder.addClassInfo();
    ZTMetaEnumBuilder list = builder.addEnum();
    ZTMetaInvokableBuilder method = builder.invokable(0);
    ZTMetaPropertyBuilder property = builder.property(1);
    std::unique_ptr<ZTMetaClass> sample;
    ZTDataStream record, stored, cut;

    // Two trees, and objects that nothing but a strong reference keeps.
    ZTBase watcher;
    std::unique_ptr<Lamp> room{new Lamp}, attic{new Lamp}, other{new Lamp};
    Lamp* lamp = new Lamp(room.get());
    std::unique_ptr<ZTBase> made;
    ZTRef<Lamp> weak, heldWeak;
    ZTStrongRef<Lamp> strong, held{new Lamp};

    // Subscriptions of all kinds.
    ZTSubscription handle, freshHandle;
    ZTScopedSubscription scoped, freshScoped;
    std::unique_ptr<ZTEventListener> listener{new ZTEventListener(room.get(), &Lamp::spent)};
    const ZTMetaInvokable *lit = member(&Lamp::lit), *spent = member(&Lamp::spent);
    const ZTMetaInvokable *hear = member(&Lamp::hear), *hearAll = member(&Lamp::hearAll);

    // An object of a class made at run time, and one that has not got it yet.
    Machine ready, empty;
    const ZTMetaInvokable* machineEvent =
        machineClass().invokable(machineClass().invokableOffset());
    const ZTMetaInvokable* machineMethod =
        machineClass().invokable(machineClass().invokableCount() - 1);

    Host()
    {
        full << std::string(54, 'x') << 1;
        fillClass();
        fillTrees();
        ready.initializeMetaClass(&machineClass());
        ZTBase::subscribe(&ready, machineEvent, &watcher,
                          [](const std::string& t) { diary.add(t); });
        ZTBase::subscribe(&empty, &ZTDynamicBase::metaClassInitialized, &watcher,
                          [] { diary.add("ready"); });
        diary.clear();
    }
    void fillClass()
    {
        info.setKey(longText);
        info.setValue(longText);
        list.setName(longText);
        list.add(longText, 0);
        property.addPropInfo(longText, longText);
        sample.reset(builder.toMetaClass());
        stored << *sample;
        const std::string all = stored.data();
        cut.setData(all.substr(0, all.size() - 20));
    }
    void fillTrees()
    {
        new ZTBase(attic.get());
        heldWeak = ZTRef<Lamp>(held.get());
        lamp->setProperty("size", longText, true);
        room->spent(longText);
        for (Lamp* object : {room.get(), attic.get()}) {
            auto note = [](auto event) { return [=] { diary.add(event); }; };
            ZTBase::subscribe(object, &ZTBase::childAdded, &watcher, note("added"));
            ZTBase::subscribe(object, &ZTBase::childRemoved, &watcher, note("lost"));
            ZTBase::subscribe(object, &ZTBase::dynamicPropertyChanged, &watcher, note("set"));
        }
        handle = ZTBase::subscribe(room.get(), lit, lamp, hear);
        ZTBase::subscribe(room.get(), &Lamp::lit, lamp, &Lamp::hearAll);
        ZTBase::subscribe(room.get(), &Lamp::lit, &hearFreely);
        scoped = ZTBase::subscribe(room.get(), &Lamp::lit, [t = longText] { diary.add(t); });
    }

    std::string describe()
    {
        return values() + streams() + aClass() + trees() + subscriptions() + machines() +
               diary.text();
    }
    std::string values() const
    {
        std::string all;
        for (const auto* variant : {&text, &number, &texts, &nested, &result, &invalid})
            all += textOf(*variant) + "; ";
        return all + plain + "; " + page.text();
    }
    std::string streams() const
    {
        std::string all = full.data() + "; " + textStream.data() + (type ? type->name() : "none");
        std::replace_if(
            all.begin(), all.end(), [](char c) { return c < ' '; }, '.');
        return all + "; ";
    }
    std::string aClass()
    {
        const std::unique_ptr<ZTMetaClass> finished(builder.toMetaClass());
        auto function = method.function();
        return support::describe(*finished) + support::bytesOf(record) +
               textOf(function ? function(ZTVariant(), ZTArgumentArray()) : ZTVariant(0));
    }
    std::string trees() const
    {
        std::string all;
        for (const ZTBase* object : {room.get(), attic.get(), lamp}) {
            auto names = object->dynamicProperties();
            std::sort(names.begin(), names.end());
            all += std::to_string(object->children().size()) + textOf(object->property("label"));
            for (std::string_view name : names)
                all += ", " + std::string(name) + " " + textOf(object->property(name));
            all += "; ";
        }
        return all + (weak ? "weak " : "") + (strong ? "strong " : "") + (made ? "made " : "");
    }
    std::string subscriptions() const
    {
        std::string all;
        for (bool isAlive :
             {bool(handle), bool(freshHandle), bool(scoped), bool(freshScoped), listener->valid()})
            all += isAlive ? "+" : "-";
        for (const auto& arguments : *listener)
            all += " " + (arguments.empty() ? "nothing" : textOf(arguments[0]));
        const Diary before = std::exchange(diary, {});
        room->lit("probe", 1);
        return all + "; probed: " + std::exchange(diary, before).text();
    }
    std::string machines() const
    {
        return ready.label.substr(0, 5) +
               (empty.metaClass() == &machineClass() ? "; ready; " : "; empty; ");
    }
};

using State = Host;

// clang-format off
TEST_F(FailingMemory, Values)
{
    tryAll<Host>({
        DO(s.result = ZTVariant(longText.c_str())),
        DO(s.result = ZTVariant(std::string_view(longText))),
        DO(s.result = ZTVariant(1)),
        DO(s.result = ZTVariant(Texts{longText, otherText})),
        DO(s.result = ZTVariant(ztMetaType<ZTVariant>(), &s.text)),
        DO(s.result = ZTVariant(ztMetaType<Texts>(), nullptr)),
        DO(s.result = ZTVariant(s.texts)),
        DO(s.result = s.nested),
        DO(s.number = s.text),
        DO(s.text = ZTVariant(otherText)),
        DO(const ZTVariant other(otherText); s.text = other),
        DO(s.nested = *ztVariantPointer<ZTVariant>(s.nested)),
        DO(s.plain = ztVariantValue<std::string>(s.text)),
        DO(s.plain = ztVariantValue<std::string>(s.number)),
        DO(s.plain = ztVariantValue<std::string>(s.texts)),
        DO(s.result = ZTVariant(ztVariantValue<Texts>(s.text))),
        DO(s.plain = ztVariantValue<std::string>(s.invalid)),
        DO(s.number.type().convert(s.number.data(), s.text.type(), &s.plain)),
        DO(s.texts.type().destroy(s.texts.type().create(s.texts.data()))),
        DO(s.plain = s.texts.type().name()),
        DO(s.plain = *s.text.type().aliases().begin()),
        DO(s.plain = ztMetaType("std::string").name()),
        DO(s.out << s.text),
        DO(s.out << s.invalid),
        DO(s.out << s.texts),
        DO(ztLog(longText, ZTLogType::Warning)),
        ENDS(ZTVariant moved(std::move(s.texts))),
        ENDS(s.text = std::move(s.texts)),
        ENDS(s.nested.reset()),
        ENDS((void)(s.text == s.texts || s.text < s.text)),
        ENDS((void)s.text.canConvert(s.texts.type())),
        ENDS(s.number = s.constNumber),
    });
}

TEST_F(FailingMemory, Streams)
{
    tryAll<Host>({
        DO(ZTDataStream()),
        DO(s.full << 1LL),
        DO(s.full << longText),
        DO(s.full << ztMetaType<Texts>()),
        DO(s.full << s.text),
        DO(s.full << s.nested),
        DO(s.full << s.cents),
        DO(s.full << ZTBase::typeMetaClass()),
        DO(s.plain = s.full.data()),
        DO(s.full.setData(s.bytes)),
        DO(s.full.setData(std::string(longText))),
        DO(s.textStream << longText + otherText),
        DO(s.textStream >> s.plain),
        DO(s.tape.position = 0; s.tape >> s.plain),
        DO(s.variantStream >> s.result),
        DO(s.nestedStream >> s.result),
        DO(s.unreadable >> s.result),
        DO(s.textStream >> s.type),
        ENDS(ZTDataStream moved(std::move(s.full))),
        ENDS(int number; s.textStream >> number),
    });
}

TEST_F(FailingMemory, Builders)
{
    tryAll<Host>({
        DO(ZTMetaClassBuilder copy(s.sample.get())),
        DO(s.builder.setTypeName(longText)),
        DO(s.builder.addClassInfo()),
        DO(s.builder.addClassInfo(s.sample->classInfo(longText))),
        DO(s.builder.addEnum()),
        DO(s.builder.addEnum(s.sample->metaEnum(s.sample->enumCount() - 1))),
        DO(s.builder.addInvokable()),
        DO(s.builder.addInvokable(s.sample->invokable(s.sample->invokableOffset()))),
        DO(s.builder.addProperty()),
        DO(s.builder.addProperty(Heater::typeMetaClass().property("level"))),
        DO(s.builder.addProperty(s.sample->property("level"))),
        DO(delete s.builder.toMetaClass()),
        DO((void)s.sample->isDerivedFrom(s.sample.get())),
        DO(ZTStaticMetaClass copy(static_cast<const ZTStaticMetaClass&>(Heater::typeMetaClass()))),
        DO(s.info.setKey(longText)),
        DO(s.info.setValue(longText)),
        DO(s.list.setName(longText)),
        DO(s.list.add(otherText, 3)),
        DO(s.method.setName(longText)),
        DO(s.method.setParameterMetaTypes({&ztMetaType<int>(), &ztMetaType<int>()})),
        DO(s.method.setFunction([t = longText](Heater&, int, const std::string&) { return t; })),
        DO(s.method.setFunction([t = longText](const ZTVariant&, const ZTArgumentArray&) { return ZTVariant(t); })),
        DO(s.method.setEvent<int, double>()),
        DO(s.method.setEvent({&ztMetaType<int>()})),
        DO((void)s.method.function()),
        DO((void)s.method.parameterMetaTypes()),
        DO(s.property.setName(longText)),
        DO(s.property.setGetter([t = longText](const Heater&) { return int(t.size()); })),
        DO(s.property.setSetter([t = longText](Heater&, int) {})),
        DO(s.property.addPropInfo(longText, longText)),
        DO(s.property.setChangeEvent(s.builder.invokable(0))),
        DO((void)s.builder.classInfo(0)),
        DO((void)s.builder.metaEnum(9)),
        DO((void)s.builder.property(9)),
        DO(s.record << *s.sample),
        DO(s.builder.deserialize(s.stored, {})),
        DO(s.builder.deserialize(s.stored, Known{{"struct sample::Device", &ZTDynamicBase::typeMetaClass()}})),
        DO(s.builder.deserialize(s.cut, {})),
        ENDS(s.builder.removeClassInfo(0)),
        ENDS(s.builder.removeEnum(0)),
        ENDS(s.builder.removeInvokable(0)),
        ENDS(s.builder.removeProperty(0)),
        ENDS(s.list.remove(0)),
        ENDS(s.property.removePropInfo(0)),
        ENDS(s.property.clearChangeEvent()),
        ENDS(s.sample.reset()),
    });
}

TEST_F(FailingMemory, Trees)
{
    tryAll<Host>({
        DO(s.made.reset(new ZTBase)),
        DO(new ZTBase(s.room.get())),
        DO(s.made.reset(new ZTDynamicBase)),
        DO(new ZTDynamicBase(s.room.get())),
        DO(s.lamp->setParent(s.attic.get())),
        DO(s.lamp->setParent(s.lamp)),
        ENDS(s.lamp->setParent(nullptr); s.made.reset(s.lamp)),
        ENDS(delete s.lamp),
        ENDS(s.room.reset()),
        ENDS(ZTBase moved(std::move(*s.room))),
        ENDS(ZTBase moved(std::move(*s.lamp)); delete s.lamp),
        ENDS(*s.room = std::move(*s.attic)),
        ENDS(*s.attic = std::move(*s.room)),
        ENDS(*s.room = std::move(*s.lamp); delete s.lamp),
    });
}

TEST_F(FailingMemory, Properties)
{
    tryAll<Host>({
        DO(s.room->setProperty("label", otherText)),
        DO(s.room->setProperty("label", s.listener->records()[0][0])),
        DO(s.room->setProperty("label", 1)),
        DO(s.lamp->setProperty("size", otherText, true)),
        DO(s.lamp->setProperty(longText, longText, true)),
        DO(s.lamp->removeDynamicProperty("size")),
        DO((void)ztTrySet(s.room.get(), "label", otherText)),
        DO(s.result = ZTVariant(ztTrySet(s.room.get(), "labels", otherText).error())),
        DO(s.result = *ztTryGet(s.lamp, "size")),
        DO(s.result = ZTVariant(ztTryCall(s.lamp, longText, otherText).error())),
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
    tryAll<Host>({
        DO(s.weak = ZTRef<Lamp>(s.lamp)),
        DO(s.weak.reset(s.lamp)),
        DO(s.strong.reset(s.lamp)),
        ENDS(ZTRef<Lamp> weak(s.heldWeak); ZTStrongRef<Lamp> strong(s.held)),
        ENDS(s.heldWeak.reset()),
        ENDS(s.held.reset()),
        ENDS(delete s.held.get()),
        ENDS(auto* held = s.held.get(); *held = std::move(*s.other); delete held),
    });
}

TEST_F(FailingMemory, Subscribing)
{
    tryAll<Host>({
        DO(s.freshHandle = ZTBase::subscribe(s.room.get(), s.lit, s.lamp, s.hear)),
        DO(s.freshHandle = ZTBase::subscribe(s.room.get(), &Lamp::lit, s.lamp, &Lamp::hear)),
        DO(s.freshHandle = ZTBase::subscribe(s.room.get(), &Lamp::lit, s.lamp, [t = longText] { diary.add(t); })),
        DO(s.freshHandle = ZTBase::subscribe(s.room.get(), s.lit, s.lamp, [](const ZTArgumentArray&) { diary.add("array"); })),
        DO(s.freshHandle = ZTBase::subscribe(s.room.get(), &Lamp::lit, s.lamp, std::function<void()>([t = longText] { diary.add(t); }))),
        DO(s.freshHandle = ZTBase::subscribe(s.room.get(), &Lamp::lit, &hearFreely)),
        DO(s.freshScoped = ZTBase::subscribe(s.room.get(), &Lamp::lit, [t = longText] { diary.add(t); })),
        DO(s.freshHandle = ZTBase::subscribe(s.room.get(), s.spent, s.lamp, s.hear)),
        DO(s.freshHandle = ZTBase::subscribe(s.room.get(), s.spent, s.lamp, s.hearAll)),
        DO(s.freshHandle = ZTBase::subscribe(s.room.get(), &Lamp::hear, s.lamp, &Lamp::hear)),
        DO(s.freshHandle = ZTBase::subscribe(s.room.get(), &Lamp::notListed, s.lamp, [t = longText] { diary.add(t); })),
    });
}

TEST_F(FailingMemory, Unsubscribing)
{
    tryAll<Host>({
        DO(s.room->unsubscribe(s.lamp)),
        DO(s.room->unsubscribe(nullptr)),
        DO(ZTBase::unsubscribe(s.handle)),
        DO(ZTBase::unsubscribe(s.room.get(), s.lit, nullptr, nullptr)),
        DO(ZTBase::unsubscribe(s.room.get(), s.lit, s.lamp, s.hear)),
        DO(ZTBase::unsubscribe(s.room.get(), &Lamp::lit, s.lamp, &Lamp::hearAll)),
        DO(ZTBase::unsubscribe(s.room.get(), &Lamp::lit, s.lamp, nullptr)),
        ENDS(s.scoped.reset()),
        ENDS(s.scoped = ZTScopedSubscription()),
        ENDS(ZTScopedSubscription last(s.handle)),
        ENDS(s.scoped = ZTScopedSubscription(s.handle); s.scoped = ZTScopedSubscription()),
        ENDS((void)(s.handle == ZTSubscription(s.handle) && s.scoped)),
        ENDS(ZTEventBlocker sent(s.room.get(), true); ZTEventBlocker received(s.lamp, false); sent = received),
    });
}

TEST_F(FailingMemory, Calls)
{
    tryAll<Host>({
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
    tryAll<Host>({
        DO(s.listener.reset(new ZTEventListener(s.room.get(), &Lamp::lit))),
        DO(s.listener.reset(new ZTEventListener(s.room.get(), s.lit))),
        DO(s.result = s.listener->at(0).at(0)),
        DO(s.result = s.listener->last().at(0)),
        DO(s.lamp->label = s.listener->argument<std::string>(0, 0)),
        DO(s.lamp->label = s.listener->argument<std::string>(1, 0)),
        ENDS(s.listener->remove(0)),
        ENDS(s.listener->clear()),
        ENDS(s.listener.reset()),
    });
}

TEST_F(FailingMemory, RunTimeClasses)
{
    tryAll<Host>({
        DO(s.empty.initializeMetaClass(&machineClass())),
        DO(s.empty.initializeMetaClass(&ZTBase::typeMetaClass())),
        DO(s.ready.initializeMetaClass(&machineClass())),
        DO(s.ready.setProperty("label", otherText)),
        DO(s.ready.setProperty("label", 1)),
        DO(s.result = s.ready.property("label")),
        DO(s.result = s.machineMethod->invoke(&s.ready, longText)),
        DO(s.result = s.machineMethod->invoke(&s.ready)),
        DO(s.machineEvent->invoke(&s.ready, longText)),
        DO(s.ready.sendEvent(s.machineEvent->index(), ZTArgumentArray{ZTVariant(longText)})),
        ENDS(ZTDynamicBase moved(std::move(s.ready))),
        ENDS(s.empty = std::move(s.ready)),
        ENDS(s.ready = std::move(s.empty)),
        ENDS(s.empty.initializeMetaClass(&machineClass())),
    });
}
// clang-format on

// Classes by name, and objects of them.

class Sheet : public ZTDynamicBase
{
    ZT_OBJECT(Sheet, ZTDynamicBase)
public:
    Sheet() = default;
    explicit Sheet(const std::string& title) { setProperty("title", title, true); }

private:
    static constexpr auto members() { return zt::members(zt::constructor<std::string>()); }
};
ZT_CLASS(Sheet)

/// A store with a class and an object of it, and a stream with two more.
struct Office {
    Office()
    {
        build("Form", &Sheet::typeMetaClass());
        store.add(builder);
        form = ztCreate(*store.find("Form"));
        {
            ZTClassStore other;
            build("Letter", &Sheet::typeMetaClass());
            const ZTMetaClass* letter = other.add(builder);
            build("Card", letter);
            other.add(builder);
            other.write(stream);
        }
        build("Bill", store.find("Form"));
    }
    void build(const char* name, const ZTMetaClass* super)
    {
        builder.setTypeName(name);
        builder.setSuperClass(super);
        while (builder.propertyCount() > 0)
            builder.removeProperty(0);
        while (builder.invokableCount() > 0)
            builder.removeInvokable(0);
        builder.addStoredProperty("sender", longText);
    }
    std::string describe() const
    {
        std::string text = textOf(form->property("sender")) + " " +
                           std::to_string(room.children().size()) + " " +
                           std::to_string(written.data().size()) + " " +
                           std::to_string(builder.propertyCount() + builder.invokableCount());
        for (const ZTMetaClass* one : store.classes())
            text.append(" ").append(one->typeName()).append(ztClass(one->typeName()) ? "" : "!");
        return text;
    }

    ZTMetaClassBuilder builder;
    ZTClassStore store;
    ZTDataStream stream, written;
    ZTBase room;
    std::unique_ptr<ZTBase> form;
};

// clang-format off
TEST_F(FailingMemory, ClassesAndObjectsByName)
{
    tryAll<Office>({
        {"create", [](Office& s) { ztCreate(Sheet::typeMetaClass(), &s.room); }},
        {"create from a text", [](Office& s) { ztCreate(Sheet::typeMetaClass(), &s.room, longText); }},
        {"create of a class made at run time", [](Office& s) { ztCreate(*s.store.find("Form"), &s.room); }},
        {"make", [](Office& s) { ztMake<Sheet>(&s.room, longText); }},
        {"add", [](Office& s) { s.store.add(s.builder); }},
        {"read", [](Office& s) { s.store.read(s.stream); }},
        {"write", [](Office& s) { s.store.write(s.written); }},
        {"add a stored property", [](Office& s) { s.builder.addStoredProperty("copy", longText); }},
        {"set a stored property", [](Office& s) { s.form->setProperty("sender", otherText); }},
    });
}
// clang-format on

// What is registered.

template <std::size_t>
struct Numbered {};
template <std::size_t... N>
std::vector<const std::type_info*> numberedTypes(std::index_sequence<N...>)
{
    return {&typeid(Numbered<N>)...};
}

/// A type that is not registered, with a name and an alias. There are so many that the tables grow.
struct Candidate {
    const std::type_info& type;
    std::string name = "a type of its own with the number " + std::to_string(count++);
    std::string alias = name + ", by its alias";
    inline static int count = 0;

    void add() const
    {
        zt::detail::ztRegisterMetaType(type, name, alias, nullptr, nullptr, nullptr, nullptr,
                                       nullptr, nullptr, nullptr, nullptr);
    }
    void addConverter() const
    {
        zt::detail::ztRegisterConverter(ztMetaType(name), ztMetaType<int>(),
                                        [](const void*, void*) { return true; });
    }
    std::string describe() const
    {
        const ZTMetaType* found = zt::detail::ztMetaType(std::type_index(type));
        const ZTMetaType& bad = ZTMetaType::ZTBadMetaType;
        return std::string(found ? "known, " : "") + (ztMetaType(name) != bad ? "named, " : "") +
               (ztMetaType(alias) != bad ? "by alias, " : "") +
               (found && found->aliases().count(alias) ? "listed, " : "") +
               (found && found->canConvert(ztMetaType<int>()) ? "converts" : "");
    }
};

TEST_F(FailingMemory, Registration)
{
    const std::string registered = "known, named, by alias, listed, ";
    for (const std::type_info* type : numberedTypes(std::make_index_sequence<200>())) {
        const Candidate one{*type};
        expectDone([&] { one.add(); }, [&] { return one.describe(); }, registered);
        expectDone([&] { one.addConverter(); }, [&] { return one.describe(); },
                   registered + "converts");
    }
}

// What is done once. Each try has a process of its own, in which nothing of it was done before.
} // namespace

namespace late
{
struct Fresh {
    int number = 5;
    bool operator==(const Fresh&) const = default;
};

/// Not registered when the program is loaded, as `ZT_CLASS` does it.
#define LATE_CLASS(Class)                                                                          \
    zt::detail::ClassTable& Class::ztTable() { return zt::detail::declaredTable<Class>(); }        \
    const ZTMetaClass& Class::typeMetaClass() { return zt::detail::declaredClass<Class>(); }       \
    const ZTMetaClass* Class::metaClass() const { return zt::detail::classOfObject(*this); }       \
    const ZTMetaClass* Class::baseMetaClass() const { return &typeMetaClass(); }

class Late : public ZTBase
{
    ZT_OBJECT(Late, ZTBase)
public:
    Fresh value;
    void changed(const Fresh& fresh, Late* late) { sendEvent<&Self::changed>(fresh, late); }

private:
    static constexpr auto members()
    {
        return zt::members(zt::info("a", "b"), zt::event<&Self::changed>(),
                           zt::property<&Self::value>().notify<&Self::changed>().info("c", "d"));
    }
};
LATE_CLASS(Late)

class Later : public Late
{
    ZT_OBJECT(Later, Late)
public:
    void wait(Fresh*, const Late*) {}

private:
    static constexpr auto members() { return zt::members(zt::method<&Self::wait>()); }
};
LATE_CLASS(Later)

} // namespace late

namespace
{
using late::Fresh, late::Late, late::Later;

std::string fresh()
{
    const ZTMetaType& type = ztMetaType<Fresh>();
    const ZTVariant value = ZTVariant(Fresh());
    return std::string(&type == &ztMetaType("struct late::Fresh") ? "found, " : "lost, ") +
           (value == ZTVariant(value) ? "equal, " : "unequal, ") +
           ztVariantValue<std::string>(value);
}

TEST_F(FailingMemoryDeathTest, Types)
{
    const std::string found = "found, equal, ";
    expectDoneOnce([] { (void)ztMetaType<Fresh>(); }, fresh, found);
    expectDoneOnce([] { ZTVariant value{Fresh()}; }, fresh, found);
    expectDoneOnce([] { ztRegisterConverter([](const Fresh&) { return longText; }); }, fresh,
                   found + longText);
}

TEST_F(FailingMemoryDeathTest, Classes)
{
    auto describe = [] {
        const ZTMetaClass& later = Later::typeMetaClass();
        return support::describe(later) + support::describe(Late::typeMetaClass()) +
               std::string(later.property("value")->name()) +
               std::to_string(later.indexOfInvokable<void(Fresh*, const Late*)>("wait")) +
               std::to_string(later.indexOfInvokable<void(const Fresh&, Late*)>("changed")) +
               ztMetaType("struct late::Later*").metaClass()->typeName().data();
    };
    expectDoneOnce([] { (void)Later::typeMetaClass(); }, describe,
                   "struct late::Later: struct late::Late\n"
                   "method 5 void wait(struct late::Fresh*, const struct late::Late*), 2\n"
                   "struct late::Late: struct ZTBase\n"
                   "info 0 a=b\n"
                   "property 0 struct late::Fresh value get set c=d, 4 changed\n"
                   "event 4 void changed(struct late::Fresh, struct late::Late*), 2\n"
                   "value54struct late::Later");
    auto listen = [] {
        auto sender = std::make_unique<ZTBase>();
        ZTEventListener listener(sender.get(), &ZTBase::destroyed);
        sender.reset();
        return std::to_string(listener.count());
    };
    expectDoneOnce(
        [] {
            ZTBase sender;
            ZTEventListener(&sender, &ZTBase::destroyed);
        },
        listen, "1");
}
} // namespace
