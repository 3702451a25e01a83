#include "support/hostclasses.h"
#include "support/sampleclasses.h"

#include <functional>

// What becomes of an operation when code of the host runs in the midst of it: what the random
// programs in `stress/` do not try.

namespace
{
using namespace host;

/// A value that runs an action where it is copied, and one where it is compared.
struct Restless {
    Restless() = default;
    Restless(std::function<void()>* whenCopied, std::function<void()>* whenCompared)
        : copied(whenCopied), compared(whenCompared)
    {}
    Restless(const Restless& other) : copied(other.copied), compared(other.compared)
    {
        run(copied);
        EXPECT_EQ(copied, other.copied); // what is copied stays so long
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

TEST_F(HostCode, ClassChangesWhileTypedValuesAreOnTheirWay)
{
    struct Changeling : Speaker {
        const ZTMetaClass* metaClass() const override { return own ? own : Speaker::metaClass(); }
        const ZTMetaClass* own = nullptr;
    } object;
    ZTMetaClassBuilder builder; // where the speaker says a number this one says a text
    builder.setSuperClass(&ZTBase::typeMetaClass());
    builder.addInvokable().setEvent<std::string>();
    const std::unique_ptr<ZTMetaClass> other(builder.toMetaClass());
    ZTBase::subscribe(&object, &Speaker::said, &observer, [&] {
        if (std::exchange(object.own, other.get()) != other.get())
            object.sendEvent(4, {ZTVariant("text")});
    });
    object.own = other.get();
    ZTBase::subscribe(&object, other->invokable(4U), &observer,
                      [&](const std::string& text) { diary.add(text); });
    object.own = nullptr;
    object.said(1);
    EXPECT_EQ(diary.take(), "text");
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

} // namespace
