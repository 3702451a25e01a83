// Mistakes in subscribing and unsubscribing. Each is one statement.
#include <zintar/zintar.h>

#include <functional>

class Lamp : public ZTBase
{
    ZT_OBJECT(Lamp, ZTBase)
public:
    void levelChanged(double level) { sendEvent<&Self::levelChanged>(level); }
    void follow(double) {}
    void followSteps(int) {}
    void readLevel(double&) {}
    void followHere(double) & {}
    void qualified() & {}

private:
    static constexpr auto members() { return zt::members(zt::event<&Self::levelChanged>()); }
};
ZT_CLASS(Lamp)

struct Stranger {
    void follow(double) {}
    void changed(double) {}
};
struct Overloaded {
    void operator()(int) const {}
    void operator()(const std::string&) const {}
};
void take(double);
void takeStep(int);
void takeAny(...);

void subscribe(Lamp& lamp, Lamp& other, const Lamp& constant, Stranger& stranger, int number)
{
    [[maybe_unused]] const ZTMetaInvokable* event = Lamp::typeMetaClass().invokable(4U);
    ZTBase::subscribe(&lamp, &Lamp::levelChanged, &other, &Lamp::follow);
    (void)constant, (void)stranger, (void)number;

#ifdef OTHER_TYPE // expect: A handler takes the leading parameters of the event, of the same types.
    ZTBase::subscribe(&lamp, &Lamp::levelChanged, &other, &Lamp::followSteps);
#endif
#ifdef OTHER_TYPE_OF_A_CALLABLE // expect: A handler takes the leading parameters of the event, of
    ZTBase::subscribe(&lamp, &Lamp::levelChanged, &other, [](int) {});
#endif
#ifdef OTHER_TYPE_WITHOUT_RECEIVER // expect: A handler takes the leading parameters of the event,
                                   // of
    ZTBase::subscribe(&lamp, &Lamp::levelChanged, &takeStep);
#endif
#ifdef OTHER_TYPE_BOUND // expect: A handler takes the leading parameters of the event, of the same
    ZTBase::subscribe(&lamp, &Lamp::levelChanged, &other,
                      std::bind_front(&Lamp::followSteps, &other));
#endif
#ifdef OTHER_TYPE_REFERRED // expect: A handler takes the leading parameters of the event, of the
    ZTBase::subscribe(&lamp, &Lamp::levelChanged, &other, std::ref(takeStep));
#endif
#ifdef OTHER_TYPE_OVERLOADED // expect: A handler takes the leading parameters of the event, of the
    ZTBase::subscribe(&lamp, &Lamp::levelChanged, &other, Overloaded());
#endif
#ifdef TOO_MANY // expect: A handler takes the leading parameters of the event, of the same types.
    ZTBase::subscribe(&lamp, &Lamp::levelChanged, &other, [](double, int) {});
#endif
#ifdef TOO_MANY_GENERIC // expect: A handler takes the leading parameters of the event, of the same
    ZTBase::subscribe(&lamp, &Lamp::levelChanged, &other, [](auto, auto) {});
#endif
#ifdef REFERENCE // expect: The parameters of a handler are values or references to const.
    ZTBase::subscribe(&lamp, &Lamp::levelChanged, &other, &Lamp::readLevel);
#endif
#ifdef REFERENCE_OF_A_CALLABLE // expect: The parameters of a handler are values or references to
    ZTBase::subscribe(&lamp, &Lamp::levelChanged, &other, [](double&) {});
#endif
#ifdef QUALIFIED_HANDLER // expect: a member function that is not volatile, variadic or qualified
    ZTBase::subscribe(&lamp, &Lamp::levelChanged, &other, &Lamp::followHere);
#endif
#ifdef QUALIFIED_EVENT // expect: An event is a member function that is not volatile, variadic or
    ZTBase::subscribe(&lamp, &Lamp::qualified, &other, [] {});
#endif
#ifdef VARIADIC_HANDLER // expect: A handler is a function, a callable, or a member function that is
    ZTBase::subscribe(&lamp, &Lamp::levelChanged, &other, &takeAny);
#endif
#ifdef NO_HANDLER // expect: A handler is a function, a callable, or a member function that is
    ZTBase::subscribe(&lamp, &Lamp::levelChanged, &other, number);
#endif
#ifdef NULL_HANDLER // expect: The handler is nullptr: there is nothing to call.
    ZTBase::subscribe(&lamp, &Lamp::levelChanged, &other, nullptr);
#endif
#ifdef NULL_HANDLER_WITHOUT_RECEIVER // expect: The handler is nullptr: there is nothing to call.
    ZTBase::subscribe(&lamp, &Lamp::levelChanged, nullptr);
#endif
#ifdef NO_RECEIVER // expect: A member of a class as the handler needs the object to call it on
    ZTBase::subscribe(&lamp, &Lamp::levelChanged, &Lamp::follow);
#endif
#ifdef NO_RECEIVER_FOR_AN_INVOKABLE // expect: A member of a class as the handler needs the object
    ZTBase::subscribe(&lamp, &Lamp::levelChanged, event);
#endif
#ifdef NULL_RECEIVER // expect: The receiver is nullptr: leave it out for a handler that has none
    ZTBase::subscribe(&lamp, &Lamp::levelChanged, nullptr, [&number] { ++number; });
#endif
#ifdef NULL_RECEIVER_OF_A_MEMBER // expect: The receiver is nullptr: leave it out for a handler
    ZTBase::subscribe(&lamp, &Lamp::levelChanged, nullptr, &Lamp::follow);
#endif
#ifdef RECEIVER_IS_NO_POINTER // expect: The receiver is a pointer to an object.
    ZTBase::subscribe(&lamp, &Lamp::levelChanged, other, &Lamp::follow);
#endif
#ifdef RECEIVER_IS_A_REFERENCE // expect: The receiver is a pointer to an object.
    ZTBase::subscribe(&lamp, &Lamp::levelChanged, ZTRef<Lamp>(&other), &Lamp::follow);
#endif
#ifdef RECEIVER_IS_NO_OBJECT // expect: The receiver is a pointer to an object.
    ZTBase::subscribe(&lamp, &Lamp::levelChanged, &stranger, &Stranger::follow);
#endif
#ifdef RECEIVER_OF_ANOTHER_CLASS // expect: The handler is a member function of another class than
    ZTBase::subscribe(&lamp, &Lamp::levelChanged, &other, &Stranger::follow);
#endif
#ifdef CONST_RECEIVER // expect: The receiver is const, and the handler is a member function that is
    ZTBase::subscribe(&lamp, &Lamp::levelChanged, &constant, &Lamp::follow);
#endif
#ifdef SENDER_IS_NO_POINTER // expect: The sender is a pointer to an object.
    ZTBase::subscribe(lamp, &Lamp::levelChanged, &other, &Lamp::follow);
#endif
#ifdef SENDER_IS_NO_OBJECT // expect: The sender is a pointer to an object.
    ZTBase::subscribe(&stranger, &Stranger::changed, &other, &Lamp::follow);
#endif
#ifdef NULL_SENDER // expect: The sender is a pointer to an object.
    ZTBase::subscribe(nullptr, &Lamp::levelChanged, &other, &Lamp::follow);
#endif
#ifdef EVENT_OF_ANOTHER_CLASS // expect: The event is a member function of another class than the
    ZTBase::subscribe(&lamp, &Stranger::changed, &other, &Lamp::follow);
#endif
#ifdef EVENT_IS_A_NAME // expect: An event is given as a member function or as a descriptor.
    ZTBase::subscribe(&lamp, "levelChanged", &other, &Lamp::follow);
#endif
#ifdef EVENT_IS_NULL // expect: An event is given as a member function or as a descriptor.
    ZTBase::subscribe(&lamp, nullptr, &other, &Lamp::follow);
#endif
#ifdef GENERIC_FOR_A_DESCRIPTOR // expect: The parameters of a generic callable cannot be known for
    ZTBase::subscribe(&lamp, event, &other, [](auto) {});
#endif
#ifdef DROPPED // expect at length: keep it: the subscription ends with it
#    pragma GCC diagnostic error "-Wunused-result"
    ZTBase::subscribe(&lamp, &Lamp::levelChanged, [&number] { ++number; });
#endif

#ifdef UNSUBSCRIBE_A_CALLABLE // expect: A callable cannot be found by its value: keep the
    ZTBase::unsubscribe(&lamp, &Lamp::levelChanged, &other, [] {});
#endif
#ifdef UNSUBSCRIBE_FROM_NOBODY // expect: The receiver is nullptr: leave it out for a handler that
    ZTBase::unsubscribe(&lamp, &Lamp::levelChanged, nullptr, &take);
#endif
#ifdef UNSUBSCRIBE_NO_OBJECT // expect: The receiver is a pointer to an object.
    ZTBase::unsubscribe(&lamp, &Lamp::levelChanged, &stranger, &Stranger::follow);
#endif
#ifdef UNSUBSCRIBE_FROM_ANOTHER_CLASS // expect: The event is a member function of another class
                                      // than
    ZTBase::unsubscribe(&lamp, &Stranger::changed, &other, &Lamp::follow);
#endif
#ifdef UNSUBSCRIBE_BY_A_NAME // expect: An event is given as a member function or as a descriptor.
    ZTBase::unsubscribe(&lamp, "levelChanged", &other, &Lamp::follow);
#endif
}
