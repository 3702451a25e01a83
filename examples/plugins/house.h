#pragma once

#include <zintar/base.h>

#include <string>
#include <vector>

namespace plugins
{
/// What the commands work on: objects of classes that are known by their names alone.
class House
{
public:
    House();

    /// @param command  as `help` shows it
    /// @return one line on what went wrong; empty when nothing did
    std::string carryOut(const std::string& command);

private:
    using Words = std::vector<std::string>;

    std::string create(const Words& words);
    std::string connect(const Words& words);
    std::string set(const Words& words);
    std::string call(const Words& words);
    std::string show() const;

    ZTBase m_root;
};

/// The commands, one in a line.
extern const char* const help;
} // namespace plugins
