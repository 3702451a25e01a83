#include <zintar/shortname.h>

#include <zintar/metatype.h>

#include <algorithm>
#include <array>
#include <vector>

namespace
{
bool isDigit(char c) { return c >= '0' && c <= '9'; }
bool isWordChar(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || isDigit(c) || c == '_';
}

template <std::size_t Count>
bool isOneOf(std::string_view word, const std::array<std::string_view, Count>& words)
{
    return std::find(words.begin(), words.end(), word) != words.end();
}

void dropFront(std::string& text, std::string_view front)
{
    if (text.starts_with(front))
        text.erase(0, front.size());
}

bool isInteger(std::string_view name)
{
    return name.ends_with("long") || name.ends_with("int") || name.ends_with("short");
}

/// Whether a class template of the standard library has that argument without being told.
bool isDefaultArgument(const std::string& argument, const std::string& first)
{
    static constexpr std::array<std::string_view, 5> templates{
        "std::less", "std::hash", "std::equal_to", "std::char_traits", "std::default_delete"};
    if (argument.starts_with("std::allocator<"))
        return true;
    const std::size_t open = argument.find('<');
    return open != std::string::npos &&
           isOneOf(std::string_view(argument).substr(0, open), templates) &&
           std::string_view(argument).substr(open) == "<" + first + ">";
}

/// Reads a spelled name from the left to the right, and writes the short one.
class Shortener
{
public:
    explicit Shortener(std::string_view spelled) : m_in(spelled) {}

    /// Everything up to a comma or a closing bracket that belongs to somebody else.
    std::string item()
    {
        std::string out;
        while (!m_in.empty() && m_in.front() != ',' && m_in.front() != '>' && m_in.front() != ')') {
            if (isWordChar(m_in.front()) || m_in.front() == ':')
                addName(out);
            else if (m_in.front() == '<')
                addArguments(out);
            else if (m_in.front() == '(')
                addParameters(out);
            else
                out += m_in.starts_with("{\"") ? quoted() : take(1);
        }
        return out;
    }
    [[nodiscard]] bool hasReadAll() const { return m_in.empty() && !m_isBroken; }

private:
    std::string take(std::size_t count)
    {
        std::string taken(m_in.substr(0, count));
        m_in.remove_prefix(taken.size());
        return taken;
    }
    std::string quoted()
    {
        const std::size_t end = m_in.find("\"}", 2);
        return take(end == std::string_view::npos ? end : end + 2);
    }

    void addName(std::string& out)
    {
        static constexpr std::array<std::string_view, 4> keys{"struct", "union", "enum", "class"};
        std::size_t size = 0;
        while (size < m_in.size() && (isWordChar(m_in[size]) || m_in[size] == ':'))
            ++size;
        std::string name = take(size);
        if (isOneOf(name, keys) && m_in.starts_with(' ')) {
            take(1);
        } else if (name == "operator" || name.ends_with("::operator")) {
            out += name;
            // Brackets that are part of the name; one that closes a list has a blank before it
            // then.
            std::size_t symbol = m_in.starts_with("()") ? 2 : m_in.starts_with("<=>") ? 3 : 0;
            if (symbol == 0 && (m_in.starts_with('<') || m_in.starts_with('>')))
                symbol = std::min(m_in.find_first_not_of(m_in.front()), m_in.size());
            out += take(symbol);
        } else if (name == "__int64") {
            // One of 8 bytes that is a plain `long` to the compiler has that word in front.
            const bool isLong = out.ends_with("long ");
            if (isLong)
                out.pop_back();
            else
                out += "long long";
        } else {
            dropFront(name, "::");
            if (const auto at = name.find("std::__cxx11::"); at != std::string::npos)
                name.erase(at + 5, 9);
            out += name;
        }
    }

    void addArguments(std::string& out)
    {
        take(1);
        std::vector<std::string> arguments = list('>');
        const bool isStandard = out.rfind("std::") != std::string::npos;
        while (isStandard && arguments.size() > 1 &&
               isDefaultArgument(arguments.back(), arguments.front()))
            arguments.pop_back();
        if (arguments.size() == 1 && arguments[0] == "char" &&
            (out.ends_with("std::basic_string") || out.ends_with("std::basic_string_view"))) {
            out.erase(out.rfind("basic_"), 6);
            return;
        }
        out += "<" + joined(arguments) + ">";
    }

    void addParameters(std::string& out)
    {
        if (m_in.starts_with("(anonymous)::")) {
            take(13);
            return;
        }
        take(1);
        const std::string parameters = joined(list(')'));
        // The type of a number among template arguments says nothing to people.
        const bool isNumber = !m_in.empty() && (isDigit(m_in.front()) || m_in.front() == '-');
        if (isNumber && isInteger(parameters))
            return;
        out += "(" + parameters + ")";
    }

    std::vector<std::string> list(char closing)
    {
        // A name from outside may be made to exhaust the stack.
        constexpr int depthLimit = 100;
        std::vector<std::string> items;
        if (m_depth == depthLimit) {
            m_isBroken = true;
            m_in = {};
            return items;
        }
        ++m_depth;
        while (!m_in.empty() && m_in.front() != closing) {
            std::string next = item();
            while (next.ends_with(' '))
                next.pop_back();
            items.push_back(std::move(next));
            if (m_in.starts_with(','))
                take(1);
            else
                break;
        }
        --m_depth;
        if (m_in.starts_with(closing))
            take(1);
        else
            m_isBroken = true;
        return items;
    }
    static std::string joined(const std::vector<std::string>& items)
    {
        std::string all;
        for (const std::string& one : items)
            all.append(all.empty() ? "" : ", ").append(one);
        return all;
    }

    std::string_view m_in;
    int m_depth = 0;
    bool m_isBroken = false; ///< nested too deep, or without an end
};
} // namespace

std::string ztShortName(std::string_view spelled)
{
    Shortener shortener(spelled);
    std::string name = shortener.item();
    return shortener.hasReadAll() ? name : std::string(spelled);
}

std::string ztShortName(const ZTMetaType& type)
{
    return type ? ztShortName(std::string_view(type.name())) : "invalid";
}
