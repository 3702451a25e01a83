#pragma once

#include "nameindex.h"

#include <memory>
#include <string>
#include <string_view>
#include <utility>

namespace zt::detail
{
/// A name among things that stay to the end of the process: a view of a text that stays as well,
/// or a copy.
class KeptName
{
public:
    static KeptName copyOf(std::string_view text)
    {
        auto copy = std::make_unique<const std::string>(text);
        const std::string_view copied = *copy;
        return {copied, std::move(copy)};
    }
    static KeptName viewOf(std::string_view text) { return {text, nullptr}; }

    [[nodiscard]] const NameKey& key() const { return m_key; }
    [[nodiscard]] std::string_view text() const { return {m_key.text, m_key.size}; }

private:
    KeptName(std::string_view text, std::unique_ptr<const std::string> copy)
        : m_key(text), m_copy(std::move(copy))
    {}

    NameKey m_key;
    std::unique_ptr<const std::string> m_copy;
};
} // namespace zt::detail
