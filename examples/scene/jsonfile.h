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

/// The same of a text alone.
Json parseJson(const std::string& text);

/// Whether a line of output can hold the text as a name: it is not empty and has no control
/// characters.
bool isName(std::string_view text);
/// Whether it is a name that a class or a member of one can have: letters, digits and "_", not
/// with a digit in front.
bool isIdentifier(const std::string& text);

/// A value in a JSON document that knows its place. Whatever is not as it was asked for is a
/// `Mistake` at that place. Good as long as the document.
class Node
{
public:
    using Place = nlohmann::json_pointer<Json>;

    /// @param place  of the document, where it is a part of another one
    explicit Node(const Json& document, Place place = Place())
        : m_value(&document), m_place(std::move(place))
    {}

    /// The place as a JSON pointer: "/tree/children/0/name".
    std::string place() const;
    const Place& pointer() const { return m_place; }

    /// Whether it is no plain value: one with members.
    bool isObject() const;
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
    /// A `Mistake` at this place.
    [[noreturn]] void fail(const std::string& what) const;
    /// The value as it stands in the file, on one line.
    std::string written() const;

private:
    void needObject() const;
    [[noreturn]] void refuse(const std::string& expected) const;

    const Json* m_value;
    Place m_place;
};
} // namespace scene
