#pragma once

#include <zintar/zintar.h>

#include <cstdlib>

class Lamp : public ZTBase
{
    ZT_OBJECT(Lamp, ZTBase)
public:
    explicit Lamp(int level) : m_level(level) {}
    ~Lamp() override
    {
        if (property<int>("level") != m_level)
            std::_Exit(2);
    }
    void switched(int level) { sendEvent<&Self::switched>(level); }

private:
    static constexpr auto members()
    {
        return zt::members(zt::event<&Self::switched>(),
                           zt::property<&Self::m_level>().as("level"));
    }
    int m_level;
};
