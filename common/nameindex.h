#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <map>
#include <memory>
#include <optional>
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
    /// Mixed the better the higher the bit: a number at the end of a name reaches the upper bits
    /// alone. Names can be made up to have the same hash.
    [[nodiscard]] std::uint64_t hash() const noexcept
    {
        const std::uint64_t mixed =
            (first ^ size) * 0x9E3779B97F4A7C15u ^ last * 0xD6E8FEB86659FD93u;
        return size <= twoWords ? mixed : mixedWithMiddle(mixed);
    }
    /// For a table that looks at the lower bits: the uppermost ones alone know of a digit at the
    /// end of a name.
    [[nodiscard]] std::size_t shortHash() const noexcept
    {
        const std::uint64_t mixed = hash();
        return static_cast<std::size_t>(mixed >> 32 ^ mixed >> 56);
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
///
/// Names may come from outside, made up so that all want the same place. When some do, or very many
/// are equal, the index sorts its things instead: from then on adding one and finding one takes a
/// time that grows as the logarithm of their number.
///
/// Adding one either succeeds or, when memory fails, leaves all as it was.
template <class Thing>
class NameIndex
{
public:
    /// Takes the memory for that many things at once.
    void reserve(std::size_t count) { m_entries.reserve(count); }
    /// Of equal names, the one that was added first is found first.
    void add(std::string_view name, Thing thing)
    {
        if (!isSorted() && 4 * (m_entries.size() + 1) > m_places.size())
            makeRoom();
        if (!isSorted()) {
            const NameKey key(name);
            if (const auto place = freePlace(key, m_places, m_shift)) {
                m_entries.push_back({key, std::move(thing)});
                m_places[*place] = static_cast<std::uint32_t>(m_entries.size());
                return;
            }
            sort();
        }
        m_sorted->emplace(name, std::move(thing));
    }
    /// The first thing with that name that `fits`, or null.
    template <class Fits>
    [[nodiscard, gnu::always_inline]] inline const Thing* find(std::string_view name,
                                                               Fits fits) const
    {
        return isPlain(name) ? search(name, fits) : searchApart(name, fits);
    }
    [[nodiscard, gnu::always_inline]] inline const Thing* find(std::string_view name) const
    {
        return find(name, [](const Thing&) { return true; });
    }
    /// Whether to find the name takes no calls. Those that others need would slow down the search
    /// for it, so they stand in a function apart.
    [[nodiscard]] bool isPlain(std::string_view name) const noexcept
    {
        return !NameKey::isLong(name) && m_shift != 0;
    }
    /// Whether it has given up on hashing.
    [[nodiscard]] bool isSorted() const noexcept { return m_sorted != nullptr; }

private:
    struct Entry {
        NameKey key;
        Thing thing;
    };
    using Places = std::vector<std::uint32_t>;
    using Sorted = std::multimap<std::string_view, Thing>; // which keeps equal ones in their order

    /// How far from its place an entry may stand. As three quarters of the places are free, names
    /// that were not made for it come nowhere near.
    static constexpr std::size_t farthest = 64;

    template <class Fits>
    [[nodiscard, gnu::always_inline]] inline const Thing* search(std::string_view name,
                                                                 Fits fits) const
    {
        const NameKey key(name);
        for (std::size_t i = key.hash() >> m_shift; m_places[i] != 0; i = next(i, m_shift)) {
            const Entry& entry = m_entries[m_places[i] - 1];
            if (entry.key == key && fits(entry.thing)) [[likely]]
                return &entry.thing;
        }
        return nullptr;
    }
    /// For a name that is not plain.
    template <class Fits>
    [[nodiscard, gnu::noinline]] const Thing* searchApart(std::string_view name, Fits fits) const
    {
        if (m_shift != 0)
            return search(name, fits);
        if (!m_sorted)
            return nullptr;
        for (auto [one, end] = m_sorted->equal_range(name); one != end; ++one)
            if (fits(one->second))
                return &one->second;
        return nullptr;
    }
    /// There are as many places as the bits of a hash that are left by the shift can count.
    [[nodiscard]] static std::size_t next(std::size_t place, unsigned int shift)
    {
        return (place + 1) & (~std::uint64_t{0} >> shift);
    }
    /// Nothing when there is none near enough.
    [[nodiscard]] static std::optional<std::size_t>
    freePlace(const NameKey& key, const Places& places, unsigned int shift)
    {
        std::size_t place = key.hash() >> shift;
        for (std::size_t distance = 0; distance <= farthest; ++distance, place = next(place, shift))
            if (places[place] == 0)
                return place;
        return std::nullopt;
    }
    void makeRoom()
    {
        const unsigned int shift = m_places.empty() ? 64 - 3 : m_shift - 1;
        Places places(std::size_t{1} << (64 - shift));
        for (std::size_t number = 1; number <= m_entries.size(); ++number) {
            const auto place = freePlace(m_entries[number - 1].key, places, shift);
            if (!place)
                return sort();
            places[*place] = static_cast<std::uint32_t>(number);
        }
        m_places = std::move(places);
        m_shift = shift;
    }
    void sort()
    {
        auto sorted = std::make_unique<Sorted>();
        for (const Entry& entry : m_entries)
            sorted->emplace(std::string_view(entry.key.text, entry.key.size), entry.thing);
        m_sorted = std::move(sorted);
        m_entries = std::vector<Entry>();
        m_places = Places();
        m_shift = 0;
    }

    std::vector<Entry> m_entries;
    /// The numbers of the entries, from 1 on, where their hashes put them; mostly 0, so that
    /// hardly two of them want the same place.
    Places m_places;
    /// What turns a hash into a place; 0 while there are no places.
    unsigned int m_shift = 0;
    /// Holds all in place of the entries, once there is one.
    std::unique_ptr<Sorted> m_sorted;
};
} // namespace zt::detail
