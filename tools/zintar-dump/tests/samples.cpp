#include "samples.h"

#include <zintar/zintar.h>

#include <cstddef>
#include <memory>
#include <string_view>

namespace
{
struct Celsius {
    double degrees = 0;
    friend ZTDataStream& operator<<(ZTDataStream& stream, const Celsius& celsius)
    {
        return stream << celsius.degrees;
    }
    friend ZTDataStream& operator>>(ZTDataStream& stream, Celsius& celsius)
    {
        return stream >> celsius.degrees;
    }
};
} // namespace

class Device : public ZTBase
{
    ZT_OBJECT(Device, ZTBase)
public:
    enum class Mode { Off, Heat, Cool = 10 };
    bool isOn() const { return m_on; }
    void setOn(bool on)
    {
        m_on = on;
        onChanged(on);
    }
    std::string maker() const { return "Lund"; }
    void onChanged(bool on) { sendEvent<&Self::onChanged>(on); }

private:
    bool program(Mode mode, const std::string& note) { return mode != Mode::Off && !note.empty(); }
    static constexpr auto members()
    {
        return zt::members(
            zt::info("category", "climate"),
            zt::enumeration<Mode>(zt::enumerators<Mode::Off, Mode::Heat, Mode::Cool>),
            zt::event<&Self::onChanged>(),
            zt::property<&Self::isOn, &Self::setOn>().notify<&Self::onChanged>(),
            zt::property<&Self::maker>().info("unit", "\"none\""), zt::method<&Self::program>());
    }
    bool m_on = false;
};
ZT_CLASS(Device)

namespace
{
std::string bytesOf(const ZTMetaClass& metaClass)
{
    ZTDataStream stream;
    stream << metaClass;
    return stream.data();
}

std::string finish(ZTMetaClassBuilder& builder)
{
    std::unique_ptr<ZTMetaClass> metaClass(builder.toMetaClass());
    return bytesOf(*metaClass);
}

/// A class without members, below one that may have no name.
std::string bareBelow(std::string_view super, std::string_view name)
{
    ZTMetaClassBuilder above;
    above.setTypeName(super);
    std::unique_ptr<ZTMetaClass> superClass(above.toMetaClass());
    ZTMetaClassBuilder builder;
    builder.setTypeName(name);
    builder.setSuperClass(superClass.get());
    return finish(builder);
}

std::string bare(std::string_view name, std::string_view super)
{
    if (!super.empty())
        return bareBelow(super, name);
    ZTMetaClassBuilder builder;
    builder.setTypeName(name);
    return finish(builder);
}

template <class... T>
std::string variants(T... values)
{
    ZTDataStream stream;
    (stream << ... << ZTVariant(values));
    return stream.data();
}
} // namespace

namespace samples
{
std::string device() { return bytesOf(Device::typeMetaClass()); }

std::string thermostat()
{
    ZTMetaClassBuilder builder;
    builder.setTypeName("Thermostat");
    builder.setSuperClass(&Device::typeMetaClass());
    builder.addProperty().setName("untyped");
    auto reached = builder.addInvokable();
    reached.setName("targetReached");
    reached.setEvent<Celsius>();
    auto target = builder.addProperty();
    target.setName("target");
    target.setGetter([](const Device&) { return Celsius{}; });
    target.setSetter([](Device&, Celsius) {});
    target.setChangeEvent(reached);
    target.addPropInfo("step", "0.5");
    std::string bytes = finish(builder);

    // A builder links own events only; a declared class may name an inherited one. Four bytes
    // behind the type of the first property stands its event.
    std::string type("ZTBadMetaType");
    std::size_t event = bytes.find(type, bytes.find("untyped")) + type.size();
    bytes.replace(event, 4, "\xfe\xff\xff\xff");
    return bytes;
}

std::string strangers()
{
    return bare("Alone", "") + bare("Plugin", "SomewhereElse") + bare("Egg", "Hen") +
           bare("Hen", "Egg") + bare("Chick", "Hen") + bare("Root", "ZTBase") +
           bare("Own", "struct ZTDynamicBase");
}

std::string namesakes()
{
    return bare("Panel", "Panel") + bareBelow("", "Nobody's") + bareBelow("", "");
}

std::string oddNames()
{
    ZTMetaClassBuilder builder;
    builder.setTypeName("Pair<A & B, {\"x|y\"}>");
    builder.addInvokable().setName("");
    builder.addInvokable().setName(
        "two\nlines\x1b[31m \xc2\x9b \xff back\\slash gr\xc3\xbc\xc3\x9f");
    return finish(builder);
}

std::string values()
{
    ZTVariant inner("inner");
    ZTDataStream stream;
    stream << ZTVariant(ztMetaType<ZTVariant>(), &inner) << ZTVariant();
    return variants(true, static_cast<unsigned char>(200), short{-2}, -5, 7ULL, 21.5F, 1e300,
                    "two\nlines") +
           stream.data();
}

std::string oneWayValues()
{
    Device* nobody = nullptr;
    return variants('a', nullptr, static_cast<ZTBase*>(nobody), 1);
}

std::string hostValues() { return variants(1, 2.0, Celsius{21.5}); }
} // namespace samples
