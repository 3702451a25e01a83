#include "hostcode.h"

#include "baseprivate.h"

#include <zintar/detail/handlers.h>

ZTLetGo::~ZTLetGo()
{
    while (zt::detail::ZTHandlerBase* handler = m_first) {
        m_first = handler->m_nextEnded;
        if (handler->description)
            static_cast<zt::detail::DescribedHandler*>(handler)->end();
        else
            delete handler;
    }
}

void ZTLetGo::add(zt::detail::ZTHandlerBase* handler) noexcept
{
    if (!handler)
        return;
    *m_end = handler;
    m_end = &handler->m_nextEnded;
}

ZTLifeWatch::ZTLifeWatch(const ZTBase* object) noexcept : ZTLifeWatch(ZTBasePrivate::of(object)) {}

ZTLifeWatch::ZTLifeWatch(ZTBasePrivate* record) noexcept : m_record(record)
{
    if (record) {
        m_below = record->watches;
        record->watches = this;
    }
}

ZTLifeWatch::~ZTLifeWatch()
{
    if (m_record)
        m_record->watches = m_below;
}

bool ZTLifeWatch::isStill(const ZTBase* object) const noexcept
{
    return m_record && m_record->object == object;
}
