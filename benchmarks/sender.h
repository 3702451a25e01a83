#pragma once

#include <zintar/zintar.h>

/// @file
/// The two ends of an event, for the benchmarks of events.

class Sender : public ZTBase
{
    ZT_OBJECT(Sender, ZTBase)
public:
    void changed(int value) { sendEvent<&Self::changed>(value); }

private:
    static constexpr auto members() { return zt::members(zt::event<&Self::changed>()); }
};

class Receiver : public ZTBase
{
    ZT_OBJECT(Receiver, ZTBase)
public:
    void take(int value) { m_sum += value; }

private:
    static constexpr auto members() { return zt::members(zt::method<&Self::take>()); }
    long m_sum = 0;
};
ZT_CLASS(Sender)
ZT_CLASS(Receiver)
