// Mistakes in calls of the library that are no declarations.
#include <zintar/zintar.h>

const ZTMetaInvokable* find(const ZTMetaClass& type)
{
#ifdef SIGNATURE_WITH_A_RESULT // expect at length: A signature names the parameters alone
    return type.invokable<int(int, int)>("sum");
#else
    return type.invokable<void(int, int)>("sum");
#endif
}

#ifdef CONVERTER_WITH_CAPTURES // expect at length: a converter is a lambda without captures. Write
                               // one around
void registerConverter(double factor)
{
    ztRegisterConverter([factor](int number) { return factor * number; });
}
#endif

class Lamp : public ZTBase
{
    ZT_OBJECT(Lamp, ZTBase)
public:
#ifdef SEND_TOO_FEW // expect: sendEvent takes the parameters of the event, no more and no fewer.
    void levelChanged(double) { sendEvent<&Self::levelChanged>(); }
#elif defined(SEND_ANOTHER_TYPE) // expect: sendEvent takes what converts to the parameters of the
    void levelChanged(double) { sendEvent<&Self::levelChanged>("high"); }
#else
    void levelChanged(double level) { sendEvent<&Self::levelChanged>(level); }
#endif

private:
    static constexpr auto members() { return zt::members(zt::event<&Self::levelChanged>()); }
};
ZT_CLASS(Lamp)

#ifdef ARRAY_IN_A_VARIANT // expect at length: A variant cannot hold an array, nor text of other
                          // characters than char: use a std::array,
// a std::vector or a string.

ZTVariant hold(const int (&numbers)[3]) { return ZTVariant(numbers); }
#endif

#ifdef INITIALIZER_LIST_IN_A_VARIANT // expect at length: A variant cannot hold a
                                     // std::initializer_list, which does not own what is in it: use
                                     // a
// std::vector.

ZTVariant hold(std::initializer_list<int> numbers) { return ZTVariant(numbers); }
#endif

#ifdef WIDE_TEXT_IN_A_VARIANT // expect at length: A variant cannot hold an array, nor text of other
                              // characters than char: use a std::array,
// a std::vector or a string.

void setTitle(ZTBase& window) { window.setProperty("title", L"wide"); }
#endif
