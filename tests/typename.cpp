#include <zintar/metatypeof.h>
#include <zintar/variant.h>

#include <gtest/gtest.h>

#include <array>
#include <functional>
#include <vector>

/// A host's types, as names see them.
namespace house
{
class Room
{
public:
    enum Kind { Kitchen, Hall };
    enum class Mode : unsigned char { Off, Heat };
    int area = 0;
    int height = 0;
};
union Either {
    int number;
};
template <class T>
struct Box {};
template <auto Value>
struct Tag {};
struct Size {
    int number;
};
} // namespace house

namespace
{
using house::Box;
using house::Room;
using house::Tag;

// All of it is worked out while compiling. First the library's own types:
constexpr std::string_view stringName =
    "class std::basic_string<char,struct std::char_traits<char>,class std::allocator<char> >";
static_assert(ztTypeName<const std::string>().substr(6) == stringName);
static_assert(ztTypeName<const ZTMetaClass*>() == "const struct ZTMetaClass*");
// A host's:
static_assert(ztTypeName<Room* const*>() == "struct house::Room*const*");
static_assert(ztTypeName<house::Either>() == "union house::Either");
static_assert(ztTypeName<Room::Kind>() == "enum house::Room::Kind");
static_assert(ztTypeName<Box<Box<Room::Mode>>>() ==
              "struct house::Box<struct house::Box<enum house::Room::Mode> >");
static_assert(
    ztTypeName<std::vector<Room*>>() ==
    "struct std::vector<struct house::Room*,struct std::allocator<struct house::Room*> >");
static_assert(ztTypeName<std::function<void(const Room&, int)>>() ==
              "struct std::function<void(const struct house::Room&,int)>");
static_assert(ztTypeName<Tag<-7>>() == "struct house::Tag<-7>");
// An 8-byte `long` is the `long long` at the top, and told apart within:
static_assert(sizeof(ZTLong) == 4 && ztTypeName<ZTLong>() == "long");
static_assert(sizeof(ZTULong) == 4 && ztTypeName<ZTULong>() == "unsigned long");
static_assert(sizeof(long) == 4 || ztTypeName<const long>() == "const __int64");
static_assert(sizeof(long) == 4 || ztTypeName<unsigned long>() == "unsigned __int64");

template <class... T>
constexpr bool namesDiffer()
{
    constexpr std::array<std::string_view, sizeof...(T)> names{ztTypeName<T>()...};
    for (std::size_t i = 0; i < names.size(); ++i)
        for (std::size_t j = 0; j < i; ++j)
            if (names[i] == names[j])
                return false;
    return true;
}
static_assert(namesDiffer<int, const int, int*, int**, const int*, int* const, int&, const int&,
                          int&&, int[2], int[3], int[], int(), int(int), int (*)(int), int Room::*,
                          int (Room::*)(), int (Room::*)() const, volatile int>());
static_assert(namesDiffer<char, signed char, unsigned char, wchar_t, char8_t, char16_t, char32_t,
                          bool, short, unsigned short, int, unsigned int, ZTLong, ZTULong,
                          long long, unsigned long long, float, double, long double, void>());
static_assert(namesDiffer<Tag<1>, Tag<1U>, Tag<1LL>, Tag<'1'>, Tag<true>, Tag<Room::Hall>,
                          Tag<Room::Mode::Heat>, Tag<-1>>());
static_assert(namesDiffer<Box<int>, Box<long long>, Box<long>, long*, long long*>());

TEST(TypeName, DiffersForEachValueThatATemplateTakes)
{
    EXPECT_NE(ztTypeName<Tag<&Room::area>>(), ztTypeName<Tag<&Room::height>>());
    EXPECT_NE((ztTypeName<Tag<house::Size{1}>>()), (ztTypeName<Tag<house::Size{2}>>()));
}
} // namespace
