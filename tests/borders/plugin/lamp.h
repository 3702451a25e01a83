#pragma once

#include <zintar/zintar.h>

// A class that the program shares with its plugins is exported, like any other name they share.
class [[gnu::visibility("default")]] Lamp : public ZTBase
{
    ZT_OBJECT(Lamp, ZTBase)
public:
    explicit Lamp(ZTBase* parent = nullptr) : ZTBase(parent) {}

    struct Colour {
        int red = 0;
    };
    int level() const { return m_level; }
    void setLevel(int level)
    {
        m_level = level;
        levelChanged(level);
    }
    void levelChanged(int level) { sendEvent<&Self::levelChanged>(level); }

private:
    static constexpr auto members()
    {
        return zt::members(
            zt::event<&Self::levelChanged>(),
            zt::property<&Self::level, &Self::setLevel>().notify<&Self::levelChanged>());
    }
    int m_level = 0;
};
