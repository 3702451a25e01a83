// Mistakes in the declaration of a class.
#include <zintar/zintar.h>

struct Plain {
    virtual ~Plain() = default;
};

class Lamp : public ZTBase
{
    ZT_OBJECT(Lamp, ZTBase)
public:
    void switched() { sendEvent<&Self::switched>(); }

private:
    static constexpr auto members() { return zt::members(zt::event<&Self::switched>()); }
};
ZT_CLASS(Lamp)

#ifdef SUPER_IS_NO_OBJECT_CLASS // expect: the super class of an object class must be ZTBase or
class Bulb : public Plain
{
    ZT_OBJECT(Bulb, Plain)
};
#endif

#ifdef SUPER_IS_NO_OBJECT_CLASS_DEFINED // expect: the super class of an object class must be ZTBase
class Bulb : public Plain
{
    ZT_OBJECT(Bulb, Plain)
    static constexpr auto members() { return zt::members(); }
};
ZT_CLASS(Bulb)
#endif

#ifdef SUPER_IS_NO_BASE // expect: names a class as super class that the class does not derive from.
class Bulb : public ZTBase
{
    ZT_OBJECT(Bulb, Lamp)
    static constexpr auto members() { return zt::members(); }
};
ZT_CLASS(Bulb)
#endif

#ifdef SUPER_IS_ITSELF // expect: the super class of an object class must be ZTBase or derived from
class Bulb : public ZTBase
{
    ZT_OBJECT(Bulb, Bulb)
    static constexpr auto members() { return zt::members(); }
};
#endif

#ifdef SUPER_IS_SKIPPED // expect: the class derives from an object class nearer than the one it
class Bulb : public Lamp
{
    ZT_OBJECT(Bulb, ZTBase)
    static constexpr auto members() { return zt::members(); }
};
ZT_CLASS(Bulb)
#endif

#ifdef TWO_SUPERS_ARE_SKIPPED // expect: the class derives from an object class nearer than the one
class Bulb : public Lamp
{
    ZT_OBJECT(Bulb, Lamp)
    static constexpr auto members() { return zt::members(); }
};
class SmallBulb : public Bulb
{
    ZT_OBJECT(SmallBulb, ZTBase)
    static constexpr auto members() { return zt::members(); }
};
ZT_CLASS(SmallBulb)
#endif

#ifdef DYNAMIC_BASE_IS_SKIPPED // expect: the class derives from an object class nearer than the one
class Bulb : public ZTDynamicBase
{
    ZT_OBJECT(Bulb, ZTBase)
    static constexpr auto members() { return zt::members(); }
};
ZT_CLASS(Bulb)
#endif

#ifdef PRIVATE_BASE // expect: An object class derives from its super class publicly, once and not
class Bulb : Lamp
{
    ZT_OBJECT(Bulb, Lamp)
    static constexpr auto members() { return zt::members(); }
};
ZT_CLASS(Bulb)
#endif

#ifdef VIRTUAL_BASE // expect: An object class derives from its super class publicly, once and not
class Bulb : public virtual ZTBase
{
    ZT_OBJECT(Bulb, ZTBase)
    static constexpr auto members() { return zt::members(); }
};
ZT_CLASS(Bulb)
#endif

#ifdef BASE_BEHIND_ANOTHER // expect: ZTBase must be the first base of an object class that has
class Bulb : public Plain, public ZTBase
{
    ZT_OBJECT(Bulb, ZTBase)
    static constexpr auto members() { return zt::members(); }
};
ZT_CLASS(Bulb)
#endif

#ifdef NO_OBJECT_LINE // expect at length: ZT_CLASS: the class has no ZT_OBJECT of its own.
class Bulb : public Lamp
{};
ZT_CLASS(Bulb)
#endif

#ifdef NO_OBJECT_CLASS // expect at length: ZT_CLASS: the class has no ZT_OBJECT of its own.
class Bulb
{};
ZT_CLASS(Bulb)
#endif

#ifdef NO_MEMBERS // expect: The class lists its members in `static constexpr auto members()`
class Bulb : public ZTBase
{
    ZT_OBJECT(Bulb, ZTBase)
};
ZT_CLASS(Bulb)
#endif

#ifdef INHERITED_MEMBERS // expect: The class has no members() of its own and would list those of
class Bulb : public Lamp
{
    ZT_OBJECT(Bulb, Lamp)
};
ZT_CLASS(Bulb)
#endif

#ifdef MEMBERS_OF_AN_OBJECT // expect: members() must be static and constexpr, and return what
class Bulb : public ZTBase
{
    ZT_OBJECT(Bulb, ZTBase)
    constexpr auto members() { return zt::members(); }
};
ZT_CLASS(Bulb)
#endif

#ifdef MEMBERS_AT_RUN_TIME // expect: members() must be static and constexpr, and return what
class Bulb : public ZTBase
{
    ZT_OBJECT(Bulb, ZTBase)
    static auto members() { return zt::members(); }
};
ZT_CLASS(Bulb)
#endif

#ifdef MEMBERS_RETURN_NOTHING // expect: members() must be static and constexpr, and return what
class Bulb : public ZTBase
{
    ZT_OBJECT(Bulb, ZTBase)
    static constexpr auto members() { zt::members(); }
};
ZT_CLASS(Bulb)
#endif

#ifdef MEMBERS_RETURN_AN_ENTRY // expect: members() must be static and constexpr, and return what
class Bulb : public ZTBase
{
    ZT_OBJECT(Bulb, ZTBase)
    static constexpr auto members() { return zt::info("category", "light"); }
};
ZT_CLASS(Bulb)
#endif

#ifdef MEMBERS_ARE_A_VARIABLE // expect: members() must be static and constexpr, and return what
class Bulb : public ZTBase
{
    ZT_OBJECT(Bulb, ZTBase)
    static constexpr int members = 3;
};
ZT_CLASS(Bulb)
#endif

#ifdef POINTERS_AS_MEMBERS // expect: zt::members takes what zt::info, zt::enumeration, zt::property
class Bulb : public ZTBase
{
    ZT_OBJECT(Bulb, ZTBase)
public:
    void blink() {}

private:
    static constexpr auto members() { return zt::members(&Self::blink); }
};
ZT_CLASS(Bulb)
#endif

#ifdef ENTRIES_NOT_CALLED // expect: zt::members takes what zt::info, zt::enumeration, zt::property
class Bulb : public ZTBase
{
    ZT_OBJECT(Bulb, ZTBase)
public:
    void blink() {}

private:
    static constexpr auto members() { return zt::members(zt::method<&Self::blink>); }
};
ZT_CLASS(Bulb)
#endif
