#pragma once

#include <optional>
#include <string>
#include <type_traits>
#include <utility>

/// What came of an operation that may be refused: its value, or one line that tells a person what
/// went wrong.
///
///     ZTOutcome<double> celsius = ztTryGet<double>(&thermostat, "target");
///     if (!celsius)
///         return showMessage(celsius.error());
///     draw(*celsius);
template <class T = void>
class [[nodiscard]] ZTOutcome
{
public:
    ZTOutcome(T value) : m_value(std::move(value)) {}
    /// @param why  one line without a line end, not empty
    static ZTOutcome failure(std::string why) { return ZTOutcome(std::nullopt, std::move(why)); }

    [[nodiscard]] explicit operator bool() const noexcept { return m_value.has_value(); }
    // Not to be used where nothing came of it.
    [[nodiscard]] T& operator*() & { return *m_value; }
    [[nodiscard]] const T& operator*() const& { return *m_value; }
    [[nodiscard]] T operator*() && { return *std::move(m_value); }
    [[nodiscard]] T* operator->() { return &*m_value; }
    [[nodiscard]] const T* operator->() const { return &*m_value; }
    [[nodiscard]] T valueOr(T otherwise) const { return m_value.value_or(std::move(otherwise)); }

    /// What went wrong; empty if nothing did.
    [[nodiscard]] const std::string& error() const noexcept { return m_error; }

private:
    ZTOutcome(std::nullopt_t, std::string why) : m_error(std::move(why)) {}

    std::optional<T> m_value;
    std::string m_error;
};

/// Of an operation that gives nothing.
template <>
class [[nodiscard]] ZTOutcome<void>
{
public:
    ZTOutcome() noexcept = default;
    static ZTOutcome failure(std::string why)
    {
        ZTOutcome outcome;
        outcome.m_error = std::move(why);
        return outcome;
    }

    [[nodiscard]] explicit operator bool() const noexcept { return m_error.empty(); }
    [[nodiscard]] const std::string& error() const noexcept { return m_error; }

private:
    std::string m_error;
};
