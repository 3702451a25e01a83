#include "jsonfile.h"

#include "files.h"
#include "members.h"
#include "mistake.h"

#include <algorithm>
#include <limits>
#include <set>
#include <sstream>

namespace scene
{
namespace
{
/// "line 3, column 14" for the byte with that number, from 1 on.
std::string lineAndColumn(const std::string& contents, std::size_t byte)
{
    auto here = contents.begin() + static_cast<std::ptrdiff_t>(
                                       std::clamp<std::size_t>(byte, 1, contents.size() + 1) - 1);
    auto lines = std::count(contents.begin(), here, '\n');
    auto lineStart = std::find(std::make_reverse_iterator(here), contents.rend(), '\n').base();
    return "line " + std::to_string(lines + 1) + ", column " + std::to_string(here - lineStart + 1);
}

/// The reason alone out of "[json.exception...] parse error at line 3, column 4: reason", or out of
/// "[json.exception...] reason".
std::string reasonOf(const nlohmann::json::exception& error)
{
    std::string_view text = error.what();
    for (std::string_view end : {"] ", ": "})
        if (std::size_t position = text.find(end); position != std::string_view::npos)
            text.remove_prefix(position + end.size());
    return std::string(text);
}

std::string kindOf(const Json& value)
{
    if (value.is_object())
        return "an object";
    if (value.is_array())
        return "a list";
    if (value.is_null())
        return "null";
    return value.dump();
}
} // namespace

Json readJson(const std::string& file) { return parseJson(readFile(file)); }

Json parseJson(const std::string& contents)
{
    std::istringstream stream(contents);
    auto here = [&] { return lineAndColumn(contents, static_cast<std::size_t>(stream.tellg())); };
    // JSON allows an object to say a thing twice, and the parser would lose one of the two.
    std::vector<std::set<std::string>> open;
    auto refuseTwice = [&](int, Json::parse_event_t event, const Json& parsed) {
        if (event == Json::parse_event_t::object_start)
            open.emplace_back();
        else if (event == Json::parse_event_t::object_end)
            open.pop_back();
        else if (event == Json::parse_event_t::key && !open.back().insert(parsed).second)
            throw Mistake(here(), parsed.dump() + " is said twice");
        return true;
    };
    try {
        return Json::parse(stream, refuseTwice);
    } catch (const Json::parse_error& error) {
        throw Mistake(lineAndColumn(contents, error.byte), reasonOf(error));
    } catch (const Json::exception& error) {
        throw Mistake(here(), reasonOf(error)); // a number that no type holds
    }
}

std::string Node::place() const
{
    std::string pointer = m_place.to_string();
    return pointer.empty() ? "/" : pointer;
}

void Node::fail(const std::string& what) const { throw Mistake(place(), what); }

void Node::refuse(const std::string& expected) const
{
    fail("expected " + expected + ", found " + kindOf(*m_value));
}

bool Node::isObject() const { return m_value->is_object(); }

void Node::needObject() const
{
    if (!isObject())
        refuse("an object");
}

bool Node::has(const char* key) const
{
    needObject();
    return m_value->contains(key);
}

Node Node::operator[](const char* key) const
{
    if (!has(key))
        fail("\"" + std::string(key) + "\" is missing");
    return Node(m_value->at(key), m_place / key);
}

std::vector<std::pair<std::string, Node>> Node::members(const char* key) const
{
    std::vector<std::pair<std::string, Node>> members;
    if (!has(key))
        return members;
    Node object = (*this)[key];
    object.needObject();
    for (const auto& [name, value] : object.m_value->items())
        members.emplace_back(name, Node(value, object.m_place / name));
    return members;
}

std::vector<Node> Node::elements(const char* key) const
{
    std::vector<Node> elements;
    if (!has(key))
        return elements;
    Node list = (*this)[key];
    if (!list.m_value->is_array())
        list.refuse("a list");
    for (std::size_t i = 0; i < list.m_value->size(); ++i)
        elements.push_back(Node((*list.m_value)[i], list.m_place / i));
    return elements;
}

void Node::allowOnly(std::initializer_list<std::string_view> keys) const
{
    needObject();
    for (const auto& [name, value] : m_value->items())
        if (std::find(keys.begin(), keys.end(), name) == keys.end())
            fail("unknown field " + Json(name).dump() + "; known are " +
                 listed({keys.begin(), keys.end()}));
}

std::string Node::name() const
{
    if (!m_value->is_string())
        refuse("a name");
    std::string text = m_value->get<std::string>();
    if (!isName(text))
        refuse("a name of printable characters");
    return text;
}

bool Node::truth() const
{
    if (!m_value->is_boolean())
        refuse("true or false");
    return m_value->get<bool>();
}

ZTVariant Node::value() const
{
    using Int = std::numeric_limits<int>;
    switch (m_value->type()) {
    case Json::value_t::boolean:
        return ZTVariant(m_value->get<bool>());
    case Json::value_t::string:
        return ZTVariant(m_value->get<std::string>());
    case Json::value_t::number_unsigned:
        if (m_value->get<unsigned long long>() > std::numeric_limits<long long>::max())
            return ZTVariant(m_value->get<double>());
        [[fallthrough]];
    case Json::value_t::number_integer:
        if (auto whole = m_value->get<long long>(); whole < Int::min() || whole > Int::max())
            return ZTVariant(whole);
        return ZTVariant(m_value->get<int>());
    case Json::value_t::number_float:
        return ZTVariant(m_value->get<double>());
    default:
        refuse("text, a number, true or false");
    }
}

std::string Node::written() const { return m_value->dump(); }

bool isName(std::string_view text)
{
    auto isControl = [](char c) { return static_cast<unsigned char>(c) < ' ' || c == 127; };
    return !text.empty() && std::none_of(text.begin(), text.end(), isControl);
}

bool isIdentifier(const std::string& text)
{
    const std::string digits = "0123456789";
    const std::string all = digits + "_abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ";
    return text.find_first_not_of(digits) == 0 && text.find_first_not_of(all) == text.npos;
}
} // namespace scene
