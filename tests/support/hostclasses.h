#pragma once

#include "logs.h"

#include <zintar/zintar.h>

#include <memory>
#include <string>
#include <utility>

/// @file
/// Classes as a host has them, for the tests of objects and events. The descriptors are defined
/// here too: a test is a program of one file.

namespace host
{
/// What happened, in order, as words.
class Diary
{
public:
    void add(const std::string& entry) { m_text += (m_text.empty() ? "" : " ") + entry; }
    /// What happened since the last call.
    std::string take() { return std::exchange(m_text, {}); }

private:
    std::string m_text;
};

/// The name that an object was given. It is readable until the very end of the object.
inline std::string nameOf(const ZTBase* object)
{
    if (!object)
        return "null";
    const ZTVariant name = object->property("name");
    const std::string* text = ztVariantPointer<std::string>(name);
    return text ? *text : "?";
}

/// "a(b c(d))"
inline std::string treeOf(const ZTBase* root)
{
    std::string text = nameOf(root);
    if (!root || root->children().empty())
        return text;
    std::string below;
    for (const ZTBase* child : root->children())
        below += (below.empty() ? "" : " ") + treeOf(child);
    return text + "(" + below + ")";
}

struct Named : ZTBase {
    explicit Named(const std::string& name, ZTBase* parent = nullptr)
    {
        setProperty("name", name, true);
        setParent(parent);
    }
};

/// An object that can be given a class at run time.
struct Machine : ZTDynamicBase {
    using ZTDynamicBase::initializeMetaClass;
    using ZTDynamicBase::sendEvent;
};

/// A sender.
class Speaker : public Named
{
    ZT_OBJECT(Speaker, ZTBase)
public:
    explicit Speaker(const std::string& name = "speaker") : Named(name) {}

    void said(int number) { sendEvent<&Self::said>(number); }
    void told(const std::string& text, int times) { sendEvent<&Self::told>(text, times); }
    void carried(const ZTVariant& value, double weight)
    {
        sendEvent<&Self::carried>(value, weight);
    }
    void mute() {}
    using ZTBase::sendEvent;

private:
    static constexpr auto members()
    {
        return zt::members(zt::event<&Self::said>(), zt::event<&Self::told>(),
                           zt::event<&Self::carried>(), zt::method<&Self::mute>());
    }
};
ZT_CLASS(Speaker)

/// A receiver that notes what it hears as "name:what".
class Hearer : public Named
{
    ZT_OBJECT(Hearer, ZTBase)
public:
    Hearer(const std::string& name, Diary& book) : Named(name), diary(&book) {}

    void hear(int number) { note(std::to_string(number)); }
    void hearTold(const std::string& text, int times) { note(text + std::to_string(times)); }
    void hearText(const std::string& text) { note(text); }
    void hearAny() { note("any"); }

    Diary* diary;

private:
    void note(const std::string& what) { diary->add(nameOf(this) + ":" + what); }
    static constexpr auto members()
    {
        return zt::members(zt::method<&Self::hear>(), zt::method<&Self::hearTold>(),
                           zt::method<&Self::hearText>(), zt::method<&Self::hearAny>());
    }
};
ZT_CLASS(Hearer)

/// A test that watches trees.
class TreeTest : public testing::Test
{
protected:
    /// Notes what the object tells: "p+c", "p-c" and "~p".
    void watch(ZTBase& object)
    {
        std::string name = nameOf(&object);
        ZTBase::subscribe(&object, &ZTBase::childAdded, &observer,
                          [=, this](ZTBase* child) { diary.add(name + "+" + nameOf(child)); });
        ZTBase::subscribe(&object, &ZTBase::childRemoved, &observer,
                          [=, this](ZTBase* child) { diary.add(name + "-" + nameOf(child)); });
        ZTBase::subscribe(&object, &ZTBase::destroyed, &observer,
                          [=, this] { diary.add("~" + name); });
    }
    Named* watched(const std::string& name, ZTBase* parent = nullptr)
    {
        auto* object = new Named(name, parent);
        watch(*object);
        diary.take();
        return object;
    }
    /// Runs the action when the object sends the event.
    template <class Object, class Event, class Action>
    void on(Object* object, Event event, Action action)
    {
        ZTBase::subscribe(object, event, &observer, action);
    }

    Diary diary;
    ZTBase observer;
};

/// A test with a speaker and its hearers.
class SpeechTest : public testing::Test
{
protected:
    ZTSubscription listen(Hearer& hearer)
    {
        return ZTBase::subscribe(speaker.get(), &Speaker::said, &hearer, &Hearer::hear);
    }
    std::unique_ptr<Hearer> listening(const std::string& name)
    {
        auto hearer = std::make_unique<Hearer>(name, diary);
        listen(*hearer);
        return hearer;
    }
    /// What is heard when the speaker says the number.
    std::string say(int number)
    {
        speaker->said(number);
        return diary.take();
    }

    Diary diary;
    std::unique_ptr<Speaker> speaker{new Speaker};
};
} // namespace host
