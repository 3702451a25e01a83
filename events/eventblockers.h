#pragma once

#include <zintar/eventblocker.h>

/// What blocks the events of an object: a ring of its blockers, in which those on receiving stand
/// in front of those on sending. So both ends tell all, and there is one word to keep.
class ZTEventBlockers
{
public:
    ZTEventBlockers() = default;
    explicit ZTEventBlockers(ZTEventBlocker* first) : m_first(first) {}

    [[nodiscard]] ZTEventBlocker* first() const { return m_first; }
    [[nodiscard]] bool areNone() const { return !m_first; }
    // One of the blockers of a kind, or null.
    [[nodiscard]] const ZTEventBlocker* receivedEventBlockers() const
    {
        return m_first && !m_first->blockSent ? m_first : nullptr;
    }
    [[nodiscard]] const ZTEventBlocker* sentEventBlockers() const
    {
        return m_first && m_first->previous->blockSent ? m_first->previous : nullptr;
    }

    void add(ZTEventBlocker& blocker);
    void remove(ZTEventBlocker& blocker);
    /// They block nothing any more.
    void clear();

private:
    ZTEventBlocker* m_first = nullptr;
};
