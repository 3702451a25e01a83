// Whatever an operation allocates may fail. Then it has completed, or everything is as it was and
// it succeeds when it is tried again. What ends something allocates nothing.

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
#include <typeindex>
#include <typeinfo>
#include <unordered_map>
#include <utility>
#include <vector>

namespace
{
using sample::Heater;
using support::longText, support::otherText;
using FailingMemory = support::FailingMemoryTest;
using FailingMemoryDeathTest = support::FailingMemoryTest;

// Values.

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

struct Values {
    ZTVariant text{longText}, number{7}, texts{Texts{longText, otherText}};
    ZTVariant nested{ztMetaType<ZTVariant>(), &text}, result, invalid;
    const ZTVariant constNumber{8};
    std::string plain;
    Page page;
    std::ostream out{&page};

    std::string describe() const
    {
        std::string all;
        for (const auto* variant : {&text, &number, &texts, &nested, &result, &invalid})
            all += textOf(*variant) + "; ";
        return all + plain + "; " + page.text();
    }
};

const bool hasConverters = [] {
    ztRegisterConverter([](int number) { return longText + std::to_string(number); });
    ztRegisterConverter([](const Texts& texts) -> std::optional<std::string> {
        return texts.empty() ? std::nullopt : std::optional(texts.front());
    });
    return true;
}();

// clang-format off
TEST_F(FailingMemory, Values)
{
    using State = Values;
    expectAllOrNothing<State>({
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
    });
    expectNoAllocation<State>({
        DO(ZTVariant moved(std::move(s.texts))),
        DO(s.text = std::move(s.texts)),
        DO(s.nested.reset()),
        DO((void)(s.text == s.texts || s.text < s.text)),
        DO((void)s.text.canConvert(s.texts.type())),
        DO(s.number = s.constNumber),
    });
}
// clang-format on

// Streams.

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

struct Streams {
    ZTVariant variant{otherText}, nested{ztMetaType<ZTVariant>(), &variant}, cents{Cents()};
    /// With room for a few more bytes.
    ZTDataStream full;
    ZTDataStream text = support::streamOf(support::streamed(longText));
    ZTDataStream texts = support::streamOf(support::streamed(ZTVariant(longText)));
    ZTDataStream variants = support::streamOf(support::streamed(nested));
    ZTDataStream unreadable = support::streamOf(support::streamed(ztMetaType<char>(), 'c'));
    Tape tape;
    std::string bytes = support::streamed(longText), read = otherText;
    const ZTMetaType* type = nullptr;

    Streams() { full << std::string(54, 'x') << 1; }
    static std::string shown(const ZTDataStream& stream)
    {
        std::string bytes = stream.data();
        std::replace_if(
            bytes.begin(), bytes.end(), [](char c) { return c < ' '; }, '.');
        return bytes + "; ";
    }
    std::string describe() const
    {
        return shown(full) + shown(text) + read + "; " + textOf(variant) + "; " +
               (type ? type->name() : "none");
    }
};

// clang-format off
TEST_F(FailingMemory, Streams)
{
    using State = Streams;
    expectAllOrNothing<State>({
        DO(ZTDataStream()),
        DO(s.full << 1LL),
        DO(s.full << longText),
        DO(s.full << ztMetaType<Texts>()),
        DO(s.full << s.variant),
        DO(s.full << s.nested),
        DO(s.full << s.cents),
        DO(s.full << ZTBase::typeMetaClass()),
        DO(s.read = s.full.data()),
        DO(s.full.setData(s.bytes)),
        DO(s.full.setData(std::string(longText))),
        DO(s.text << longText + otherText),
        DO(s.text >> s.read),
        DO(s.tape.position = 0; s.tape >> s.read),
        DO(s.texts >> s.variant),
        DO(s.variants >> s.variant),
        DO(s.unreadable >> s.variant),
        DO(s.text >> s.type),
    });
    expectNoAllocation<State>({
        DO(ZTDataStream moved(std::move(s.full))),
        DO(int number; s.text >> number),
    });
}
// clang-format on

// Classes made at run time.

/// A class under construction.
struct Plan {
    ZTMetaClassBuilder builder{&Heater::typeMetaClass()};
    ZTMetaClassInfoBuilder info = builder.addClassInfo();
    ZTMetaEnumBuilder list = builder.addEnum();
    ZTMetaInvokableBuilder method = builder.invokable(0);
    ZTMetaPropertyBuilder property = builder.property(1);
    std::unique_ptr<ZTMetaClass> sample;
    ZTDataStream record, stored, cut;

    Plan()
    {
        info.setKey(longText);
        info.setValue(longText);
        list.setName(longText);
        list.add(longText, 0);
        property.addPropInfo(longText, longText);
        sample.reset(builder.toMetaClass());
        stored << *sample;
        const std::string bytes = stored.data();
        cut.setData(bytes.substr(0, bytes.size() - 20));
    }
    std::string describe()
    {
        const std::unique_ptr<ZTMetaClass> made(builder.toMetaClass());
        ZTVariant called =
            method.function() ? method.function()(ZTVariant(), ZTArgumentArray()) : ZTVariant(0);
        return support::describe(*made) + textOf(called) + support::bytesOf(record);
    }
};

using Known = std::unordered_map<std::string, const ZTMetaClass*>;

// clang-format off
TEST_F(FailingMemory, Builders)
{
    using State = Plan;
    expectAllOrNothing<State>({
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
    });
    expectNoAllocation<State>({
        DO(s.builder.removeClassInfo(0)),
        DO(s.builder.removeEnum(0)),
        DO(s.builder.removeInvokable(0)),
        DO(s.builder.removeProperty(0)),
        DO(s.list.remove(0)),
        DO(s.property.removePropInfo(0)),
        DO(s.property.clearChangeEvent()),
        DO(s.sample.reset()),
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
