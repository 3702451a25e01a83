#include "support/hostclasses.h"

#include <functional>
#include <vector>

namespace host
{
/// A handler as a host may write one itself: all that the library asks of it is virtual, and it is
/// gone as soon as its subscription ends.
struct RawHandler : zt::detail::ZTHandlerBase {
    RawHandler(Diary& book, std::vector<const ZTMetaType*> taken)
        : types(std::move(taken)), diary(book)
    {}
    ~RawHandler() override { diary.add("deleted"); }
    std::string_view typeName() const override { return "raw"; }
    unsigned int parameterCount() const override { return unsigned(types.size()); }
    const ZTMetaType& parameterMetaType(unsigned int index) const override
    {
        return *types.at(index);
    }
    bool isMemberFunction() const override { return isMember; }
    void invoke(const ZTBase* target, void* result, void** arguments) override
    {
        EXPECT_EQ(result, nullptr);
        if (auto action = call)
            action(target, arguments);
    }
    bool isComparable() const override { return comparable; }
    bool equals(void*) const override { return true; }

    std::vector<const ZTMetaType*> types;
    std::function<void(const ZTBase*, void**)> call;
    bool isMember = false;
    bool comparable = true;
    Diary& diary;
};
} // namespace host

/// Lets the subscribe templates take a raw handler as it is.
template <>
inline constexpr bool zt::detail::isCallable<host::RawHandler*> = true;
template <>
struct zt::detail::HandlerParameters<host::RawHandler*, zt::detail::UnknownParameters> {
    using type = zt::detail::Parameters<>;
};
template <>
zt::detail::Handler
zt::detail::makeHandler<ZTBase, zt::detail::UnknownParameters, host::RawHandler*>(
    host::RawHandler* handler)
{
    return handler;
}

namespace
{
using namespace host;

const ZTMetaInvokable* const said = Speaker::typeMetaClass().invokable(4U);
const ZTMetaInvokable* const told = Speaker::typeMetaClass().invokable(5U);
const ZTMetaInvokable* const carried = Speaker::typeMetaClass().invokable(6U);

class RawHandlers : public SpeechTest
{
protected:
    RawHandler* raw(std::vector<const ZTMetaType*> types = {})
    {
        return new RawHandler(diary, std::move(types));
    }
    ZTSubscription subscribe(const ZTMetaInvokable* event, RawHandler* handler,
                             ZTBase* subscriber = nullptr)
    {
        return subscriber || handler->isMember
                   ? ZTBase::subscribe(speaker.get(), event, subscriber, handler)
                   : ZTBase::subscribe(speaker.get(), event, handler);
    }

    const ZTMetaType* text = &ztMetaType<std::string>();
    Hearer a{"a", diary};
};

TEST_F(RawHandlers, AreDeletedWhenRefused)
{
    auto refusal = [&](RawHandler* handler, ZTBase* subscriber, const ZTMetaInvokable* event) {
        std::string line =
            support::logOf([&] { EXPECT_FALSE(subscribe(event, handler, subscriber)); });
        EXPECT_EQ(diary.take(), "deleted");
        return line;
    };
    RawHandler* member = raw();
    member->isMember = true;
    const std::string head = "Zintar: Subscription failed with event said and handler";
    EXPECT_EQ(refusal(member, nullptr, said),
              head + ". The handler is a member function, but the subscriber was null\n");
    EXPECT_EQ(refusal(raw({text, text}), &a, said),
              head + " type raw. Handler requires more parameters than event supplies\n");
    EXPECT_EQ(refusal(raw({&ZTMetaType::ZTBadMetaType}), &a, said),
              head + " type raw. Parameter type not registered at position 0. Event parameter "
                     "type \"int\".\n");
    EXPECT_EQ(refusal(raw(), &a, nullptr), "");
}

TEST_F(RawHandlers, GetTheAddressesThatTheyTakeAndAsMemberFunctionsTheSubscriber)
{
    const ZTArgumentArray values{ZTVariant(3), ZTVariant(1.5), ZTVariant(2)};
    for (std::size_t taken : {0U, 1U, 2U}) {
        std::vector types{&ztMetaType<ZTVariant>(), &ztMetaType<double>()};
        types.resize(taken);
        RawHandler* handler = raw(types);
        handler->isMember = taken == 2;
        handler->call = [&, taken](const ZTBase* target, void** arguments) {
            EXPECT_EQ(arguments[0], taken > 0 ? &values[0] : nullptr);
            EXPECT_EQ(arguments[1], taken > 1 ? values[1].data() : nullptr);
            for (int i = 2; i < 10; ++i)
                EXPECT_EQ(arguments[i], nullptr);
            diary.add(nameOf(target));
        };
        ASSERT_TRUE(subscribe(carried, handler, &a));
    }
    speaker->sendEvent(6, values);
    EXPECT_EQ(diary.take(), "null null a");
}

TEST_F(RawHandlers, AreDeletedAtOnceAlsoWhileTheyRun)
{
    ZTSubscription own;
    RawHandler* handler = raw();
    handler->call = [&](const ZTBase*, void**) {
        ZTBase::unsubscribe(own);
        diary.add("on");
    };
    own = subscribe(said, handler, &a);
    listen(a);
    EXPECT_EQ(say(1), "deleted on a:1");
    for (bool comparable : {true, false}) { // found by their own comparison
        RawHandler* found = raw();
        found->comparable = comparable;
        subscribe(said, found, &a);
        EXPECT_EQ(ZTBase::unsubscribe(speaker.get(), &Speaker::said, &a, found), comparable);
    }
    EXPECT_EQ(diary.take(), "deleted");
    speaker.reset();
    EXPECT_EQ(diary.take(), "deleted");
}

/// The shapes in which a host may write a handler.
class Shapes : public SpeechTest
{
protected:
    template <class Handler>
    std::string heardBy(Handler handler)
    {
        ZTSubscription one = ZTBase::subscribe(speaker.get(), &Speaker::told, &a, handler);
        speaker->told("x", 2);
        EXPECT_TRUE(ZTBase::unsubscribe(one));
        return diary.take();
    }

    Hearer a{"a", diary};
};

Diary* page = nullptr;
void noteText(const std::string& text) { page->add("function " + text); }

struct Functor {
    void operator()(std::string text, int times) const
    {
        page->add("functor " + text + std::to_string(times));
    }
};
TEST_F(Shapes, OfCallables)
{
    page = &diary;
    EXPECT_EQ(heardBy(&noteText), "function x");
    ZTBase::subscribe(speaker.get(), told, &a, &noteText);
    EXPECT_TRUE(ZTBase::unsubscribe(speaker.get(), told, &a, &noteText));
    EXPECT_EQ(heardBy(Functor()), "functor x2");
    EXPECT_EQ(heardBy([](const auto& text) { page->add("auto " + text); }), "auto x");
    EXPECT_EQ(heardBy(std::function<void(const std::string&)>(&noteText)), "function x");
    EXPECT_EQ(heardBy([n = 0](const std::string&) mutable { page->add(std::to_string(++n)); }),
              "1");
    EXPECT_EQ(heardBy([](const ZTArgumentArray& all) {
                  page->add(all[1].type().name() + (all[2] ? " more" : ""));
              }),
              "int");
    ZTBase::subscribe(speaker.get(), &Speaker::said, &a, [this, own = std::make_unique<int>(5)] {
        diary.add("moved " + std::to_string(*own));
    });
    EXPECT_EQ(say(1), "moved 5");
    EXPECT_FALSE(ZTBase::subscribe(speaker.get(), &Speaker::told, &a, std::function<void()>()));
}

struct Overloaded {
    void operator()(int number) const { page->add("int " + std::to_string(number)); }
    void operator()(const std::string& text) const { page->add("text " + text); }
};
/// Stands for what `std::bind_front` and its like give: it takes whatever its function takes.
struct Forwarding {
    template <class... T>
    auto operator()(T&&... values) & -> decltype(noteText(std::forward<T>(values)...))
    {
        noteText(std::forward<T>(values)...);
    }
    template <class... T>
    auto operator()(T&&... values) const& -> decltype(noteText(std::forward<T>(values)...))
    {
        noteText(std::forward<T>(values)...);
    }
};

/// Whether a handler fits an event of those parameters.
template <class Handler, class... P>
inline constexpr bool
    fits = zt::detail::faultOfHandler<ZTBase, void (ZTBase::*)(P...), Handler>() ==
           zt::detail::SubscribeFault::None;

TEST_F(Shapes, OfCallablesThatForwardOrAreOverloadedTakeWhatFitsExactly)
{
    page = &diary;
    EXPECT_EQ(heardBy(Overloaded()), "text x");
    EXPECT_EQ(heardBy(std::ref(noteText)), "function x");
    EXPECT_EQ(heardBy(std::bind_front(&Hearer::hearText, &a)), "a:x");
    EXPECT_EQ(heardBy(Forwarding()), "function x");
    EXPECT_EQ(heardBy([](auto text, auto&& times) { page->add(text += std::to_string(times)); }),
              "x2");

    using Front = decltype(std::bind_front(&Hearer::hear, &a));
    EXPECT_TRUE((fits<Front, int, double>));
    EXPECT_TRUE((fits<std::reference_wrapper<void(int)>, int>));
    EXPECT_TRUE((fits<Overloaded, int>));
    EXPECT_FALSE((fits<Front, double>));
    EXPECT_FALSE((fits<std::reference_wrapper<void(int)>, double>));
    EXPECT_FALSE((fits<Overloaded, double>));
}

TEST_F(Shapes, OfCallablesWithAReceiverThatIsNullAreRefused)
{
    page = &diary;
    Hearer* nobody = nullptr;
    const std::string line = "Zintar: Subscription failed with event told and handler. The handler "
                             "was given with a subscriber, but the subscriber was null\n";
    auto refuse = [&](auto handler) {
        EXPECT_LOGS(line, [&] {
            EXPECT_FALSE(ZTBase::subscribe(speaker.get(), &Speaker::told, nobody, handler));
        });
    };
    refuse([&] { diary.add("heard"); });
    refuse(&noteText);
    EXPECT_LOGS_NOTHING([&] { // nothing that could be refused
        EXPECT_FALSE(
            ZTBase::subscribe(speaker.get(), &Speaker::told, nobody, std::function<void()>()));
    });
    speaker->told("x", 1);
    EXPECT_EQ(diary.take(), "");
}

TEST_F(Shapes, OfAFunctionWithoutAReceiverEndsThroughItsHandleAlone)
{
    page = &diary;
    ZTSubscription free = ZTBase::subscribe(speaker.get(), &Speaker::told, &noteText);
    const ZTBase* anybody = nullptr;
    EXPECT_FALSE(ZTBase::unsubscribe(speaker.get(), &Speaker::told, anybody, &noteText));
    EXPECT_TRUE(free);
    EXPECT_TRUE(ZTBase::unsubscribe(free));
}

struct Quiet : Speaker {
    void unlisted() {}
};
TEST_F(Shapes, OfNoEventEndNothingAndAreNotTold)
{
    Quiet quiet;
    EXPECT_LOGS_NOTHING(
        [&] { EXPECT_FALSE(ZTBase::unsubscribe(&quiet, &Quiet::unlisted, &a, &Hearer::hear)); });
}

struct Loud : Hearer {
    using Hearer::Hearer;
    virtual void shout(const std::string& text) { diary->add("Loud " + text); }
    int count(const std::string&, int times) const noexcept
    {
        diary->add("count " + std::to_string(times));
        return times;
    }
};
struct Louder : Loud {
    using Loud::Loud;
    void shout(const std::string& text) override { diary->add("Louder " + text); }
};

TEST_F(Shapes, OfMemberFunctions)
{
    Louder louder("l", diary);
    const Louder& constant = louder;
    ZTBase::subscribe(speaker.get(), &Speaker::told, &louder, &Loud::shout);
    ZTBase::subscribe(speaker.get(), &Speaker::told, &louder, &Hearer::hearText);
    ZTBase::subscribe(speaker.get(), &Speaker::told, &constant, &Loud::count);
    speaker->told("x", 3);
    EXPECT_EQ(diary.take(), "Louder x l:x count 3");
    EXPECT_TRUE(ZTBase::unsubscribe(speaker.get(), &Speaker::told, &louder, &Loud::shout));
    speaker->told("y", 4);
    EXPECT_EQ(diary.take(), "l:y count 4");
}

struct Device : ZTBase {
    ZT_OBJECT(Device, ZTBase)
public:
    static constexpr auto members() { return zt::members(); }
};
struct Lamp : Device {
    ZT_OBJECT(Lamp, Device)
public:
    void found(Lamp* lamp, int place) { sendEvent<&Self::found>(lamp, place); }
    void seen(const Lamp* lamp) { sendEvent<&Self::seen>(lamp); }
    static constexpr auto members()
    {
        return zt::members(zt::event<&Self::found>(), zt::event<&Self::seen>());
    }
};

/// Hears of lamps as of what else they are.
struct Keeper : ZTBase {
    ZT_OBJECT(Keeper, ZTBase)
public:
    void keepDevice(Device* device, int place) { add(device, place); }
    void keepConst(const Device* device) { add(device, 0); }
    void keepObject(ZTBase* object) const { add(object, 0); }
    virtual void keepVirtually(Device* device) { add(device, 0); }
    void add(const void* object, int place) const { kept.emplace_back(object, place); }
    static constexpr auto members() { return zt::members(); }

    mutable std::vector<std::pair<const void*, int>> kept;
};

void takeDevice(Device* device) { device->setProperty("taken", true, true); }
ZT_CLASS(Device)
ZT_CLASS(Lamp)
ZT_CLASS(Keeper)

TEST(Upward, AHandlerTakesAPointerToABaseClass)
{
    Lamp lamp;
    Keeper keeper;
    const auto heard = [&] {
        keeper.kept.clear();
        lamp.found(&lamp, 3);
        lamp.seen(&lamp);
        for (const auto& [object, place] : keeper.kept)
            EXPECT_EQ(object, static_cast<const void*>(&lamp));
        return keeper.kept.size();
    };
    ZTBase::subscribe(&lamp, &Lamp::found, &keeper, &Keeper::keepDevice);
    ZTBase::subscribe(&lamp, &Lamp::found, &keeper, &Keeper::keepConst);
    ZTBase::subscribe(&lamp, &Lamp::seen, &keeper, &Keeper::keepConst);
    ZTBase::subscribe(&lamp, &Lamp::found, &keeper, &Keeper::keepObject);
    ZTBase::subscribe(&lamp, &Lamp::found, &keeper, &Keeper::keepVirtually);
    EXPECT_EQ(heard(), 5U);
    EXPECT_EQ(keeper.kept[0].second, 3);
    ZTBase::subscribe(&lamp, &Lamp::found, &keeper, [&](Device* d, int n) { keeper.add(d, n); });
    ZTBase::subscribe(
        &lamp, &Lamp::found, &keeper,
        std::function<void(const ZTBase*)>([&](const ZTBase* object) { keeper.add(object, 0); }));
    ZTBase::subscribe(&lamp, &Lamp::found, &keeper, std::bind_front(&Keeper::keepDevice, &keeper));
    ZTBase::subscribe(&lamp, &Lamp::found, &takeDevice);
    EXPECT_EQ(heard(), 8U);
    EXPECT_TRUE(lamp.property<bool>("taken"));

    // They are found again, and nothing but them.
    EXPECT_FALSE(ZTBase::unsubscribe(&lamp, &Lamp::seen, &keeper, &Keeper::keepDevice));
    EXPECT_TRUE(ZTBase::unsubscribe(&lamp, &Lamp::found, &keeper, &Keeper::keepDevice));
    EXPECT_FALSE(ZTBase::unsubscribe(&lamp, &Lamp::found, &keeper, &Keeper::keepDevice));
    EXPECT_TRUE(ZTBase::unsubscribe(&lamp, &Lamp::found, &keeper, &Keeper::keepConst));
    EXPECT_TRUE(ZTBase::unsubscribe(&lamp, &Lamp::found, &keeper, &Keeper::keepVirtually));
    EXPECT_EQ(heard(), 5U);
}

TEST(Upward, ByDescriptorsTheTypesAreExact)
{
    Lamp lamp;
    Keeper keeper;
    const ZTMetaInvokable* found = lamp.metaClass()->invokable<void(Lamp*, int)>("found");
    ZTLogCapture log;
    EXPECT_FALSE(ZTBase::subscribe(&lamp, found, &keeper, &Keeper::keepDevice));
    EXPECT_TRUE(log.err().ends_with("Parameter type mismatch at position 0. Event parameter type "
                                    "\"struct (anonymous)::Lamp*\", handler type "
                                    "\"struct (anonymous)::Device*\".\n"))
        << log.err();
}
} // namespace
