#pragma once

#include "baseprivate.h"

#include <zintar/detail/lifewatch.h>

/// Keeps an object that somebody is making, or assigns to, from being deleted meanwhile: a parent
/// that dies lets it go.
class ZTBeginning
{
public:
    /// @param record  may be null
    explicit ZTBeginning(ZTBasePrivate* record) noexcept : m_watch(record)
    {
        if (record)
            record->stage = ZTLifeStage::Beginning;
    }
    ZTBeginning(const ZTBeginning&) = delete;
    ZTBeginning& operator=(const ZTBeginning&) = delete;
    ~ZTBeginning()
    {
        if (m_watch.record() && m_watch.record()->stage == ZTLifeStage::Beginning)
            m_watch.record()->stage = ZTLifeStage::Alive;
    }

private:
    ZTLifeWatch m_watch;
};

/// Marks an object as one whose destruction has reached `ZTBase`, to the end of that. Its record
/// tells the same, but may be moved away meanwhile, and is gone when its properties and handlers
/// go.
class ZTFarewell
{
public:
    explicit ZTFarewell(const ZTBase* object) noexcept;
    ZTFarewell(const ZTFarewell&) = delete;
    ZTFarewell& operator=(const ZTFarewell&) = delete;
    ~ZTFarewell();

    static bool isDying(const ZTBase* object) noexcept;

private:
    const ZTBase* m_object;
    ZTFarewell* m_outer;
};
