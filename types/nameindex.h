#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <utility>
#include <vector>

namespace zt::detail
{
/// A name, prepared for being compared: its length, its beginning and its end, which for a short
/// name are all of it.
struct NameKey {
    explicit NameKey(std::string_view name) noexcept : text(name.data()), size(name.size())
    {
        if (size >= 8) {
            first = read<std::uint64_t>(text);
            last = read<std::uint64_t>(text + size - 8);
        } else if (size >= 4) {
            first = read<std::uint32_t>(text);
            last = read<std::uint32_t>(text + size - 4);
        } else if (size > 0) {
            // One to three letters, some of them twice.
            first = letter(0) | letter(size / 2) << 8 | letter(size - 1) << 16;
        }
    }
    bool operator==(const NameKey& other) const noexcept
    {
        return first == other.first && last == other.last && size == other.size &&
               (size <= twoWords || hasSameText(other));
    }
    /// Well mixed in its upper half.
    [[nodiscard]] std::uint64_t hash() const noexcept
    {
        std::uint64_t mixed = (first ^ size) * 0x9E3779B97F4A7C15u ^ last * 0xD6E8FEB86659FD93u;
        return size <= twoWords ? mixed : mixedWithMiddle(mixed);
    }
    /// Whether there is more of a name than its beginning and its end.
    static bool isLong(std::string_view name) noexcept { return name.size() > twoWords; }

    const char* text;
    std::size_t size;
    std::uint64_t first = 0;
    std::uint64_t last = 0;

private:
    static constexpr std::size_t twoWords = 16;

    /// Names in groups often differ in the middle alone.
    [[nodiscard, gnu::noinline]] std::uint64_t mixedWithMiddle(std::uint64_t mixed) const noexcept
    {
        for (std::size_t i = 8; i < size - 8; i += 8)
            mixed = ((mixed ^ mixed >> 32) ^ read<std::uint64_t>(text + i)) * 0x9E3779B97F4A7C15u;
        return mixed;
    }
    [[gnu::noinline]] bool hasSameText(const NameKey& other) const noexcept
    {
        return std::memcmp(text, other.text, size) == 0;
    }
    [[nodiscard]] std::uint64_t letter(std::size_t position) const noexcept
    {
        return static_cast<unsigned char>(text[position]);
    }
    template <class Integer>
    static Integer read(const char* bytes) noexcept
    {
        Integer value;
        std::memcpy(&value, bytes, sizeof(value));
        return value;
    }
};

/// Finds things by their names, in a time that does not grow with their number. The names stay with
/// whoever added them, and have to outlive this.
template <class Thing>
class NameIndex
{
public:
    /// Of equal names, the one that was added first is found first.
    void add(std::string_view name, Thing thing)
    {
        m_entries.push_back({NameKey(name), std::move(thing)});
        if (4 * m_entries.size() > m_places.size())
            makeRoom();
        else
            place(m_entries.size());
    }
    /// The first thing with that name that `fits`, or null.
    template <class Fits>
    [[nodiscard, gnu::always_inline]] inline const Thing* find(std::string_view name,
                                                               Fits fits) const
    {
        return NameKey::isLong(name) ? searchApart(name, fits) : search(name, fits);
    }
    [[nodiscard, gnu::always_inline]] inline const Thing* find(std::string_view name) const
    {
        return find(name, [](const Thing&) { return true; });
    }

private:
    struct Entry {
        NameKey key;
        Thing thing;
    };

    template <class Fits>
    [[nodiscard, gnu::always_inline]] inline const Thing* search(std::string_view name,
                                                                 Fits fits) const
    {
        if (m_mask == 0)
            return nullptr;
        const NameKey key(name);
        for (std::size_t i = placeOf(key); m_places[i] != 0; i = next(i)) {
            const Entry& entry = m_entries[m_places[i] - 1];
            if (entry.key == key && fits(entry.thing)) [[likely]]
                return &entry.thing;
        }
        return nullptr;
    }
    /// The calls that a long name needs would slow down the search for others.
    template <class Fits>
    [[nodiscard, gnu::noinline]] const Thing* searchApart(std::string_view name, Fits fits) const
    {
        return search(name, fits);
    }
    [[nodiscard]] std::size_t placeOf(const NameKey& key) const
    {
        return static_cast<std::size_t>(key.hash() >> 32) & m_mask;
    }
    [[nodiscard]] std::size_t next(std::size_t place) const { return (place + 1) & m_mask; }
    void place(std::size_t number)
    {
        std::size_t i = placeOf(m_entries[number - 1].key);
        while (m_places[i] != 0)
            i = next(i);
        m_places[i] = static_cast<std::uint32_t>(number);
    }
    void makeRoom()
    {
        std::size_t count = m_places.empty() ? 8 : 2 * m_places.size();
        m_places.assign(count, 0);
        m_mask = count - 1;
        for (std::size_t number = 1; number <= m_entries.size(); ++number)
            place(number);
    }

    std::vector<Entry> m_entries;
    /// The numbers of the entries, from 1 on, where their hashes put them; mostly 0, so that
    /// hardly two of them want the same place.
    std::vector<std::uint32_t> m_places;
    /// The number of places is a power of two, of which this is one less; 0 while there are none.
    std::size_t m_mask = 0;
};
} // namespace zt::detail
