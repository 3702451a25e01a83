#pragma once

#include <zintar/eventblocker.h>

/// What blocks the events of an object: a ring of its blockers, in which those on receiving stand
/// in front, those on sending at the end, and those on single events between them. So both ends
/// tell whether there are any of a kind, and there is one word to keep.
class ZTEventBlockers
{
public:
    ZTEventBlockers() = default;
    explicit ZTEventBlockers(ZTEventBlocker* first) : m_first(first) {}

    [[nodiscard]] ZTEventBlocker* first() const { return m_first; }
    [[nodiscard]] bool areNone() const { return !m_first; }
    [[nodiscard]] bool blockReceived() const
    {
        return m_first && m_first->kind == ZTEventBlocker::Kind::Received;
    }
    /// Whether all that the object sends is blocked.
    [[nodiscard]] bool blockSent() const
    {
        return m_first && m_first->previous->kind == ZTEventBlocker::Kind::Sent;
    }
    /// Whether that event of the object is. No call: a send asks it, and would have to keep what
    /// it knows elsewhere meanwhile.
    [[nodiscard]] bool blockSent(int eventIndex) const
    {
        if (!m_first) [[likely]]
            return false;
        const ZTEventBlocker* one = m_first->previous;
        while (one->kind == ZTEventBlocker::Kind::Event && one->eventIndex != eventIndex &&
               one != m_first)
            one = one->previous;
        return one->kind == ZTEventBlocker::Kind::Sent ||
               (one->kind == ZTEventBlocker::Kind::Event && one->eventIndex == eventIndex);
    }

    void add(ZTEventBlocker& blocker);
    void remove(ZTEventBlocker& blocker);
    /// They block nothing any more.
    void clear();

private:
    ZTEventBlocker* m_first = nullptr;
};
