#pragma once

#include <stdexcept>
#include <string>
#include <utility>

namespace scene
{
/// A mistake in the scene file: the place in the file, which a person can find, and what is wrong.
class Mistake : public std::runtime_error
{
public:
    /// @param where  a JSON pointer, or a line and a column
    Mistake(std::string where, const std::string& what)
        : std::runtime_error(what), m_where(std::move(where))
    {}

    const std::string& where() const { return m_where; }

private:
    std::string m_where;
};
} // namespace scene
