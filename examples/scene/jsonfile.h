#pragma once

#include <zintar/variant.h>

#include <nlohmann/json.hpp>

#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace scene
{
/// Keeps the members of an object in the order of the file.
using Json = nlohmann::ordered_json;

/// Reads a JSON file; throws `Mistake` when it cannot be read, is no JSON, or says a thing twice.
Json readJson(const std::string& file);

/// Whether a line of output can hold the text as a name: it is not empty and has no control
/// characters.
bool isName(std::string_view text);

/// A value in a JSON document that knows its place. Whatever is not as it was asked for is a
/// `Mistake` at that place. Good as long as the document.
class Node
{
public:
    explicit Node(const Json& document) : m_value(&document) {}

    /// The place as a JSON pointer: "/tree/children/0/name".
    std::string place() const;

    /// Whether the object has a member of that name.
    bool has(const char* key) const;
    Node operator[](const char* key) const;
    /// The members of an object, or none when the outer object has no member `key`.
    std::vector<std::pair<std::string, Node>> members(const char* key) const;
    /// The elements of the array `key`, or none when the object has no such member.
    std::vector<Node> elements(const char* key) const;
    /// Refuses members with other names than these.
    void allowOnly(std::initializer_list<std::string_view> keys) const;

    /// A text that passes as a name.
    std::string name() const;
    bool truth() const;
    /// Text, a number or a truth value, as the type that JSON makes of it.
    ZTVariant value() const;
    /// The value as it stands in the file, on one line.
    std::string written() const;

private:
    Node(const Json& value, nlohmann::json_pointer<Json> place)
        : m_value(&value), m_place(std::move(place))
    {}
    [[noreturn]] void refuse(const std::string& expected) const;

    const Json* m_value;
    nlohmann::json_pointer<Json> m_place;
};
} // namespace scene
