#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

struct ZTBasePrivate;
struct ZTSlotEntry;

/// Finds the subscriptions of one subscriber among very many of an event: hash chains that run
/// through the positions of a slot. Those whose handlers can be found by their value have chains of
/// their own, so that a search for one does not meet the others.
class ZTSlotIndex
{
public:
    static constexpr std::size_t none = SIZE_MAX;

    explicit ZTSlotIndex(const std::vector<ZTSlotEntry>& entries);

    /// The entry is the last one. May throw; the index is of no use then.
    void add(const ZTSlotEntry& entry);
    /// Before the entry becomes empty.
    void remove(const ZTSlotEntry& entry);

    /// Whether there are far more entries than it was made for.
    [[nodiscard]] bool isCrowded() const { return m_links.size() > 4 * m_heads.size(); }

    /// A position where the subscriber may be, or `none`. Others share its chain.
    [[nodiscard]] std::size_t first(const ZTBasePrivate* subscriber, bool isComparable) const
    {
        return m_heads[bucketOf(subscriber, isComparable)] - 1;
    }
    [[nodiscard]] std::size_t after(std::size_t position) const
    {
        return m_links[position].next - 1;
    }

private:
    /// Numbers of positions from 1 on; 0 ends a chain.
    struct Link {
        std::size_t next = 0;
        std::size_t previous = 0;
    };

    [[nodiscard]] std::size_t bucketOf(const ZTBasePrivate* subscriber, bool isComparable) const;
    [[nodiscard]] std::size_t bucketOf(const ZTSlotEntry& entry) const;
    void link(const ZTSlotEntry& entry, std::size_t position);

    std::vector<std::size_t> m_heads;
    std::vector<Link> m_links; ///< by position
};
