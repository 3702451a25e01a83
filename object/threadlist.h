#pragma once

/// What runs on one thread and has to hear of the ends of objects: a stack of nodes, which stand on
/// the stack of the thread. They mostly leave in the opposite order, but need not: a host may run
/// handlers on stacks of its own and switch between them.
template <class Node>
class ZTThreadList
{
public:
    constexpr ZTThreadList() = default;
    ZTThreadList(const ZTThreadList&) = delete;
    ZTThreadList& operator=(const ZTThreadList&) = delete;

    void enter(Node& node) noexcept
    {
        node.m_below = m_top;
        m_top = &node;
    }
    void leave(Node& node) noexcept
    {
        if (m_top == &node) [[likely]]
            m_top = node.m_below;
        else
            leaveFromBelow(node);
    }
    /// The first one from the top that fits, or null.
    template <class Fits>
    [[nodiscard]] Node* find(const Fits& fits) const
    {
        Node* node = m_top;
        while (node && !fits(*node))
            node = node->m_below;
        return node;
    }
    template <class Action>
    void forEach(const Action& action) const
    {
        for (Node* node = m_top; node; node = node->m_below)
            action(*node);
    }

private:
    [[gnu::noinline]] void leaveFromBelow(Node& node) noexcept
    {
        Node* above = find([&](const Node& one) { return one.m_below == &node; });
        above->m_below = node.m_below;
    }

    Node* m_top = nullptr;
};
