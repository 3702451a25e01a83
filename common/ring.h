#pragma once

namespace zt::detail
{
/// What a node of a ring derives from, once for each ring that it can stand in.
/// @tparam Tag  names the ring
template <class Tag>
class RingLink
{
public:
    RingLink() = default;
    RingLink(const RingLink&) = delete;
    RingLink& operator=(const RingLink&) = delete;

    [[nodiscard]] bool isLinked() const { return m_next != this; }
    void unlink() noexcept
    {
        m_previous->m_next = m_next;
        m_next->m_previous = m_previous;
        m_previous = m_next = this;
    }

private:
    template <class Node, class OfRing>
    friend class Ring;

    RingLink* m_previous = this;
    RingLink* m_next = this;
};

/// A list that takes no memory of its own and does not own its nodes.
template <class Node, class Tag>
class Ring
{
public:
    [[nodiscard]] bool isEmpty() const { return !m_head.isLinked(); }
    /// Null where there is none.
    [[nodiscard]] Node* first() { return nodeAt(m_head.m_next); }
    [[nodiscard]] Node* next(Node& node) { return nodeAt(linkOf(node).m_next); }
    /// Adds a node that is in no such ring, as the last one.
    void add(Node& node) noexcept
    {
        RingLink<Tag>& link = node;
        link.m_previous = m_head.m_previous;
        link.m_next = &m_head;
        link.m_previous->m_next = &link;
        m_head.m_previous = &link;
    }
    /// `action` may take the node that it is given out of the ring.
    template <class Action>
    void forEach(const Action& action)
    {
        for (Node* node = first(); node;) {
            Node* following = next(*node);
            action(*node);
            node = following;
        }
    }

private:
    static RingLink<Tag>& linkOf(Node& node) { return node; }
    [[nodiscard]] Node* nodeAt(RingLink<Tag>* link)
    {
        return link == &m_head ? nullptr : static_cast<Node*>(link);
    }

    RingLink<Tag> m_head;
};
} // namespace zt::detail
