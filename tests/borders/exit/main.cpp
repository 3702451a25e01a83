#include "lamp.h"

#include <cstdlib>
#include <iostream>
#include <string>
#include <utility>

// Static objects use their classes in their destructors. The order in which those run hangs on the
// order in which the files are linked, so both are tried.

namespace
{
int ends = 0;
bool failed = false;

void check(bool holds, const char* what)
{
    std::cout << (holds ? "ok      " : "FAILED  ") << what << "\n";
    failed = failed || !holds;
}

/// Constructed first, and so the last to end.
struct Verdict {
    ~Verdict()
    {
        check(ends == 3, "all objects have ended");
        if (failed)
            std::_Exit(1);
    }
};
[[gnu::init_priority(200)]] Verdict verdict;

/// A value that only handlers use, whose default is made when they first miss one.
struct Label {
    std::string text = "a label that is longer than what a string keeps in itself";
};

/// An object of a class declared in this file.
class Room : public ZTBase
{
    ZT_OBJECT(Room, ZTBase)
public:
    explicit Room(const char* name) : m_name(name) {}
    ~Room() override
    {
        ++ends;
        int heard = 0;
        const auto hears = ZTBase::subscribe(this, &Room::closed, [&](int n) { heard += n; });
        // What gave no value is heard as a default one.
        std::string label;
        const auto reads = ZTBase::subscribe(this, &Room::renamed,
                                             [&](const Label& given) { label = given.text; });
        ZTEventListener listener(this, &Room::closed);
        sendEvent(metaClass()->invokable<void(int)>("closed")->index(), {ZTVariant(3)});
        sendEvent<&Self::closed>(4);
        sendEvent(metaClass()->invokable<void(Label)>("renamed")->index(), {});
        check(heard == 7 && listener.count() == 2, "events are heard");
        check(label == Label().text, "a default value is handed on");
        check(property<std::string>("name") == m_name, "a property is read");
        Lamp lamp(5);
        check(lamp.property<int>("level") == 5, "a class of another file is used");
        check(ztMetaType(std::string(ztTypeName<Room*>())) == ztMetaType<Room*>(),
              "a type is found by its name");
    }
    void closed(int n) { sendEvent<&Self::closed>(n); }
    void renamed(Label label) { sendEvent<&Self::renamed>(label); }

private:
    static constexpr auto members()
    {
        return zt::members(zt::event<&Self::closed>(), zt::event<&Self::renamed>(),
                           zt::property<&Self::m_name>().as("name"));
    }
    std::string m_name;
};

Room inFront("in front of its class");
} // namespace

ZT_CLASS(Room)

namespace
{
Room behind("behind its class");

/// Made before the class of the listeners is.
struct Early {
    ~Early()
    {
        ++ends;
        Lamp lamp(2);
        ZTEventListener listener(&lamp, &Lamp::switched);
        lamp.switched(9);
        check(listener.argument<int>(0, 0) == 9, "a listener hears at the end");
        ZTBase source;
        const ZTBase target(std::move(source));
        check(source.children().empty(), "an object that was moved from has no children");
    }
};
[[gnu::init_priority(300)]] Early early;
} // namespace

int main()
{
    ZTEventListener first(&inFront, &Room::closed);
    inFront.closed(1);
    return first.count() == 1 ? 0 : 1;
}
