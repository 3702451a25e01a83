#include <zintar/zintar.h>

/// @file
/// A class of 500 members: each change of what is computed for a list of members at compile time
/// has to stay within what compilers compute.

#define TEN(entry, n)                                                                              \
    entry(n##0) entry(n##1) entry(n##2) entry(n##3) entry(n##4) entry(n##5) entry(n##6)            \
        entry(n##7) entry(n##8) entry(n##9)
#define HUNDRED(entry)                                                                             \
    TEN(entry, 0)                                                                                  \
    TEN(entry, 1)                                                                                  \
    TEN(entry, 2)                                                                                  \
    TEN(entry, 3)                                                                                  \
    TEN(entry, 4)                                                                                  \
    TEN(entry, 5)                                                                                  \
    TEN(entry, 6)                                                                                  \
    TEN(entry, 7)                                                                                  \
    TEN(entry, 8)                                                                                  \
    TEN(entry, 9)

#define DEFINE(n)                                                                                  \
    int ofTheSensor##n() const { return 0; }                                                       \
    void setOfTheSensor##n(int) {}                                                                 \
    void ofTheSensorChanged##n(int) {}                                                             \
    void resetTheSensor##n() {}                                                                    \
    bool theSensorIsIdle##n() const { return true; }                                               \
    double theLevelOfTheSensor##n = 0;
#define LIST(n)                                                                                    \
    zt::property<&Self::ofTheSensor##n, &Self::setOfTheSensor##n>()                                \
        .notify<&Self::ofTheSensorChanged##n>()                                                    \
        .info("number", #n),                                                                       \
        zt::event<&Self::ofTheSensorChanged##n>(), zt::method<&Self::resetTheSensor##n>(),         \
        zt::property<&Self::theSensorIsIdle##n>(), zt::property<&Self::theLevelOfTheSensor##n>(),

/// A base that is no object class, whose member gets its functions with the list.
struct Part {
    double weight = 0;
};

class Panel : public ZTBase, public Part
{
    ZT_OBJECT(Panel, ZTBase)
public:
    HUNDRED(DEFINE)

private:
    static constexpr auto members()
    {
        return zt::members(HUNDRED(LIST) zt::property<&Self::weight>());
    }
};
ZT_CLASS(Panel)
