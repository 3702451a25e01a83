#include "support/hostclasses.h"
#include "support/sampleclasses.h"

#include <optional>
#include <stdexcept>

// What becomes of an operation when code of the host runs in the midst of it: where a value or a
// callable is copied, compared or destroyed. Each of these ends what the operation goes on with.

namespace
{
using namespace host;

/// Runs an action when its last copy goes.
std::shared_ptr<void> atTheEnd(std::function<void()> action)
{
    return {nullptr, [action = std::move(action)](void*) { action(); }};
}

/// A value that runs an action where it is copied, and one where it is compared.
struct Restless {
    Restless() = default;
    Restless(std::function<void()>* whenCopied, std::function<void()>* whenCompared)
        : copied(whenCopied), compared(whenCompared)
    {}
    Restless(const Restless& other) : copied(other.copied), compared(other.compared)
    {
        run(copied);
    }
    Restless& operator=(const Restless&) = default;
    bool operator==(const Restless& other) const
    {
        run(compared);
        run(other.compared);
        return false;
    }
    static void run(std::function<void()>* action)
    {
        // Once, and not for the copies that the library makes of a variant later on.
        if (auto once = action ? std::exchange(*action, nullptr) : nullptr)
            once();
    }

    std::function<void()>* copied = nullptr;
    std::function<void()>* compared = nullptr;
};

class HostCode : public TreeTest
{
protected:
    std::function<void()> copied, compared;
};

TEST_F(HostCode, OverwrittenPropertyHeldTheObjectItself)
{
    auto* object = watched("o");
    object->setProperty("self", ZTStrongRef<ZTBase>(object), true);
    EXPECT_TRUE(object->setProperty("self", ZTVariant(), true));
    EXPECT_EQ(diary.take(), "~o");
}

TEST_F(HostCode, ComparisonAndCopyOfAPropertyEndTheObject)
{
    for (bool atComparison : {true, false}) {
        auto* object = watched("o");
        object->setProperty("value", ZTVariant(Restless(nullptr, &compared)), true);
        const ZTVariant next(Restless(&copied, nullptr));
        (atComparison ? compared : copied) = [&] { delete object; };
        EXPECT_TRUE(object->setProperty(atComparison ? "value" : "new", next, true));
        EXPECT_EQ(diary.take(), "~o");
    }
}

TEST_F(HostCode, PropertyIsSetWhileItIsReadAndComparedAndAdded)
{
    Named object("o");
    const ZTVariant value(Restless(&copied, &compared));
    copied = [&] { object.setProperty("added", 1, true); };
    object.setProperty("added", value, true);
    EXPECT_EQ(object.dynamicProperties().size(), 2U);
    EXPECT_EQ(&object.property("added").type(), &value.type());

    copied = [&] { object.setProperty("added", 2, true); };
    EXPECT_EQ(&object.property("added").type(), &value.type());
    EXPECT_EQ(object.property<int>("added"), 2);

    object.setProperty("added", value, true);
    copied = [&] { object.setProperty("added", 3, true); };
    (void)object.property<Restless>("added");
    EXPECT_EQ(object.property<int>("added"), 3);

    object.setProperty("added", value, true);
    compared = [&] { object.setProperty("added", 4, true); };
    object.setProperty("added", ZTVariant(Restless()), true);
    EXPECT_EQ(&object.property("added").type(), &value.type());
}

TEST_F(HostCode, CallableEndsWithTheReplacedObjectAndDeletesItsParent)
{
    auto* parent = watched("p");
    auto* object = new Named("a", parent);
    ZTBase::subscribe(&observer, &ZTBase::childAdded, object,
                      [end = atTheEnd([&] { delete parent; })] { (void)end; });
    *object = Named("b");
    EXPECT_EQ(diary.take(), "p+a p-b ~p");
    EXPECT_EQ(nameOf(object), "b");
    delete object;
}

TEST_F(HostCode, DyingObjectIsAssignedTo)
{
    auto* parent = watched("p");
    auto* other = new Named("other", parent);
    std::optional<ZTBase> heir;
    for (bool emptied : {false, true}) {
        ZTBase* dying = watched("d");
        on(dying, &ZTBase::destroyed, [&, emptied](ZTBase* object) {
            if (object != dying)
                return;
            if (emptied)
                heir.emplace(std::move(*object));
            *object = std::move(static_cast<ZTBase&>(*other));
            if (emptied)
                delete parent;
        });
        delete dying;
        EXPECT_EQ(diary.take(), emptied ? "~d ~p" : "~d");
        heir.reset();
    }
}

TEST_F(HostCode, ObjectIsAssignedToWhereWhatItOwnedGoes)
{
    auto* dying = watched("d");
    ZTBase other(&observer);
    dying->setProperty("end", atTheEnd([&] { *static_cast<ZTBase*>(dying) = std::move(other); }),
                       true);
    delete dying;
    EXPECT_EQ(observer.children(), std::vector{&other});
}

TEST_F(HostCode, ScopedSubscriptionOwnsItsOwner)
{
    struct Holder {
        ZTScopedSubscription subscription;
    };
    auto holder = std::make_shared<Holder>();
    Holder* raw = holder.get();
    std::weak_ptr<Holder> watcher(holder);
    raw->subscription = ZTBase::subscribe(&observer, &ZTBase::childAdded,
                                          [held = std::move(holder)] { (void)held; });
    raw->subscription = ZTScopedSubscription();
    EXPECT_TRUE(watcher.expired());

    auto inner = std::make_shared<Holder>();
    raw = inner.get();
    raw->subscription = ZTBase::subscribe(&observer, &ZTBase::childAdded,
                                          [owner = &diary] { owner->add("inner"); });
    ZTScopedSubscription head = ZTBase::subscribe(&observer, &ZTBase::childAdded,
                                                  [held = std::move(inner)] { (void)held; });
    head = std::move(raw->subscription);
    observer.childAdded(nullptr);
    EXPECT_EQ(diary.take(), "inner");
    auto& same = head;
    head = std::move(same);
    EXPECT_TRUE(head);
}

TEST_F(HostCode, HandleIsTestedWhereWhatWasCapturedEnds)
{
    ZTSubscription handle;
    auto subscribe = [&] {
        handle = ZTBase::subscribe(&observer, &ZTBase::childAdded, &observer,
                                   [end = atTheEnd([&] {
                                        diary.add(handle ? "alive" : "dead");
                                        diary.add(handle == ZTSubscription() ? "empty" : "odd");
                                    })] { (void)end; });
    };
    subscribe();
    observer.unsubscribe(nullptr);
    subscribe();
    ZTBase::unsubscribe(handle);
    EXPECT_EQ(diary.take(), "dead empty dead empty");
}

class Courier : public Named
{
    ZT_OBJECT(Courier, ZTBase)
public:
    Courier() : Named("courier") {}
    void brought(const Restless& value) { sendEvent<&Self::brought>(value); }
    void keep(const Restless&) { ++kept; }
    void setLoad(const Restless&) { ++kept; }
    Restless load() const { return {}; }
    int kept = 0;

private:
    static constexpr auto members()
    {
        return zt::members(zt::event<&Self::brought>(), zt::method<&Self::keep>(),
                           zt::property<&Self::load, &Self::setLoad>());
    }
};
ZT_CLASS(Courier)

TEST_F(HostCode, ObjectEndsWhereAValueForItIsCopied)
{
    auto* sender = new Courier;
    ZTBase::subscribe(sender, &Courier::brought, &observer, [&] { diary.add("heard"); });
    const Restless value(&copied, nullptr);
    const ZTVariant packed(value);
    copied = [&] { delete sender; };
    sender->brought(value);

    auto* receiver = new Courier;
    copied = [&] { delete receiver; };
    receiver->setProperty("load", packed);

    receiver = new Courier;
    const ZTMetaInvokable* keep = receiver->metaClass()->invokable<void(const Restless&)>("keep");
    ASSERT_TRUE(keep);
    const ZTArgumentArray arguments{packed};
    copied = [&] { delete receiver; };
    keep->invoke(ZTVariant(receiver), arguments);

    Courier alive;
    EXPECT_TRUE(alive.setProperty("load", packed));
    keep->invoke(ZTVariant(&alive), arguments);
    EXPECT_EQ(alive.kept, 2);
    EXPECT_EQ(diary.take(), "");
}

TEST_F(HostCode, HandlerChangesTheArrayThatWasRaised)
{
    Speaker speaker;
    ZTArgumentArray array{ZTVariant(std::string("first")), ZTVariant(1)};
    auto take = [&](std::string text, int) { diary.add(text); };
    ZTBase::subscribe(&speaker, &Speaker::told, &observer, [&](std::string text) {
        diary.add(text);
        array[0] = ZTVariant(std::string("second"));
        array[1] = ZTVariant();
    });
    ZTBase::subscribe(&speaker, &Speaker::told, &observer, take);
    speaker.sendEvent(speaker.metaClass()->indexOfInvokable<void(const std::string&, int)>("told"),
                      array);
    EXPECT_EQ(diary.take(), "first second");
}

TEST_F(HostCode, RaisedValueThatDoesNotFitIsTold)
{
    Speaker speaker;
    int index = speaker.metaClass()->indexOfInvokable<void(const std::string&, int)>("told");
    auto raise = [&] { speaker.sendEvent(index, {ZTVariant(1)}); };
    EXPECT_LOGS_NOTHING(raise);
    ZTBase::subscribe(&speaker, &Speaker::told, &observer, [&](const std::string& text, int times) {
        diary.add(text + std::to_string(times));
    });
    EXPECT_LOGS(
        "Zintar Warning: Event told of struct host::Speaker was sent with no \"class "
        "std::basic_string<char,struct std::char_traits<char>,class "
        "std::allocator<char> >\" at position 0 but a \"int\"; no \"int\" at position 1 but "
        "nothing. Handlers get a default value.\n",
        raise);
    EXPECT_EQ(diary.take(), "0");
}

/// A class that a host lays out by itself, with one event more than the root has.
struct HandMade : ZTMetaClass {
    struct Event : ZTMetaInvokable {
        Event(const ZTMetaInvokable& root, const ZTMetaType& value)
            : ZTMetaInvokable(root), type(value)
        {}
        std::string_view name() const override { return "changed"; }
        bool isEvent() const override { return true; }
        unsigned int parameterCount() const override { return 1; }
        const ZTMetaType& parameterMetaType(unsigned int) const override { return type; }
        int index() const override { return 4; }
        const ZTMetaType& type;
    };

    explicit HandMade(const ZTMetaType& value)
        : ZTMetaClass(ZTBase::typeMetaClass()), event(*ZTBase::typeMetaClass().invokable(0U), value)
    {}
    const ZTMetaClass* superClass() const override { return &ZTBase::typeMetaClass(); }
    std::string_view typeName() const override { return "HandMade"; }
    unsigned int invokableCount() const override { return 5; }
    const ZTMetaInvokable* invokable(unsigned int index) const override
    {
        return index == 4 ? &event : superClass()->invokable(index);
    }
    Event event;
};

TEST_F(HostCode, AnotherClassStandsWhereTheOldOneWas)
{
    struct Changeling : ZTBase {
        const ZTMetaClass* metaClass() const override { return &*own; }
        using ZTBase::sendEvent;
        std::optional<HandMade> own{ztMetaType<long long>()};
    } object;
    ZTBase::subscribe(&object, &object.own->event, &observer,
                      [&](long long number) { diary.add(std::to_string(number)); });
    object.sendEvent(4, {ZTVariant(5LL)});
    object.own.emplace(ztMetaType<std::string>());
    object.sendEvent(4, {ZTVariant(std::string("text"))});
    EXPECT_EQ(diary.take(), "5");
    object.own.emplace(ztMetaType<long long>());
    object.sendEvent(4, {ZTVariant(6LL)});
    EXPECT_EQ(diary.take(), "6");
}

TEST_F(HostCode, MemberFunctionIsNotCalledOnWhatItsClassIsGoneOf)
{
    struct Middle : Speaker {
        ~Middle() override { said(2); }
    };
    struct Whole : Middle {
        void heard(int number) { book->add("heard" + std::to_string(number)); }
        Diary* book = nullptr;
    };
    auto* object = new Whole;
    object->book = &diary;
    ZTBase::subscribe(object, &Speaker::said, object, &Whole::heard);
    object->said(1);
    delete object;
    EXPECT_EQ(diary.take(), "heard1");
}

TEST_F(HostCode, ListenerRecordsWhatComesBack)
{
    Courier courier;
    std::optional<ZTEventListener> listener(std::in_place, &courier, &Courier::brought);
    const Restless value(&copied, nullptr);
    copied = [&] { copied = [&] { courier.brought(Restless()); }; };
    courier.brought(value);
    EXPECT_EQ(listener->count(), 2);
    EXPECT_EQ(listener->at(0).size(), 1U);
    Restless last(&copied, nullptr);
    copied = [&] { copied = [&] { listener.reset(); }; };
    courier.brought(last);
    EXPECT_FALSE(listener);

    listener.emplace(&courier, &ZTBase::dynamicPropertyChanged);
    courier.setProperty("end", atTheEnd([&] { courier.setProperty("again", 1, true); }), true);
    courier.setProperty("end", 0, true);
    listener.reset();
    EXPECT_EQ(courier.property<int>("again"), 1);
}

TEST_F(HostCode, RoomAmongTheChildrenIsKeptForTheOneThatJoins)
{
    Named oldParent("old"), newParent("new");
    auto* moved = new Named("moved", &oldParent);
    on(&oldParent, &ZTBase::childRemoved, [&] {
        for (int i = 0; i < 20; ++i)
            new Named(std::to_string(i), &newParent);
    });
    moved->setParent(&newParent);
    EXPECT_EQ(newParent.children().size(), 21U);
    EXPECT_EQ(newParent.children().back(), moved);
}
} // namespace
