#include "lamp.h"

/// A class of the plugin's own, on top of one of the program's.
class Dimmer : public Lamp
{
    ZT_OBJECT(Dimmer, Lamp)
public:
    using Lamp::Lamp;
    void listen(Lamp* other)
    {
        ZTBase::subscribe(other, &Lamp::levelChanged, this, &Dimmer::follow);
    }
    void follow(int level) { setLevel(level); }

private:
    static constexpr auto members() { return zt::members(zt::method<&Self::follow>()); }
};
ZT_CLASS(Dimmer)

extern "C" [[gnu::visibility("default")]] ZTBase* makeDimmer(ZTBase* parent, Lamp* master)
{
    auto* dimmer = new Dimmer;
    dimmer->setParent(parent);
    dimmer->listen(master);
    return dimmer;
}

extern "C" [[gnu::visibility("default")]] const ZTMetaType* typeInPlugin(int which)
{
    switch (which) {
    case 0:
        return &ztMetaType<Lamp*>();
    case 1:
        return &ztMetaType<Lamp::Colour>();
    default:
        return &ztMetaType<std::string>();
    }
}
