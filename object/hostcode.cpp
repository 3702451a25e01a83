#include "hostcode.h"

#include "baseprivate.h"
#include "threadlist.h"

#include <zintar/detail/handlers.h>

#include <utility>

ZTLetGo::~ZTLetGo()
{
    while (zt::detail::KeptHandler* handler = m_first) {
        m_first = handler->m_nextEnded;
        handler->end();
    }
}

void ZTLetGo::add(zt::detail::KeptHandler* handler) noexcept
{
    if (!handler)
        return;
    *m_end = handler;
    m_end = &handler->m_nextEnded;
}

void ZTLetGo::take(ZTLetGo& other) noexcept
{
    if (!other.m_first)
        return;
    *m_end = std::exchange(other.m_first, nullptr);
    m_end = std::exchange(other.m_end, &other.m_first);
}

namespace
{
[[gnu::tls_model("initial-exec")]] thread_local constinit ZTThreadList<ZTLifeWatch> watches;
} // namespace

ZTLifeWatch::ZTLifeWatch(const ZTBase* object) noexcept : ZTLifeWatch(ZTBasePrivate::of(object)) {}

ZTLifeWatch::ZTLifeWatch(ZTBasePrivate* record) noexcept : m_record(record)
{
    watches.enter(*this);
}

ZTLifeWatch::~ZTLifeWatch() { watches.leave(*this); }

void ZTBasePrivate::tellWatches() noexcept
{
    watches.forEach([this](ZTLifeWatch& watch) {
        if (watch.m_record == this)
            watch.m_record = nullptr;
    });
}

bool ZTLifeWatch::isStill(const ZTBase* object) const noexcept
{
    return m_record && m_record->object == object;
}
