#include <zintar/metatypeof.h>
#include <zintar/variant.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <functional>
#include <set>
#include <utility>
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
struct Area {
    Size width, height;
};
template <std::size_t Count>
struct Text {
    constexpr Text(const char (&text)[Count]) { std::copy_n(text, Count, letters); }
    char letters[Count] = {};
};
template <auto Value, class T>
struct Slot {};
template <class T, unsigned Count, class Other = T>
struct Row {};
template <int Number, class T>
struct Level {};
template <class First, class Second, bool Flag, class... Others>
struct Mixed {};
template <class... T>
struct List {};
template <auto... Values>
struct Numbers {};
template <template <class...> class Template, class T>
struct Applied {};
template <class T>
struct Outer {
    struct Inner {};
};
inline int number = 0;
int twice(int);
struct Pair {
    void take(int);
    void take(int) const;
    bool operator<(const Pair&) const;
};
} // namespace house

namespace
{
using house::Box;
using house::Room;
using house::Tag;

__extension__ using UnsignedWide = unsigned __int128;

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
                          int (Room::*)(), int (Room::*)() const, volatile int, volatile int*,
                          int* volatile, const volatile int*>());
static_assert(namesDiffer<char, signed char, unsigned char, wchar_t, char8_t, char16_t, char32_t,
                          bool, short, unsigned short, int, unsigned int, ZTLong, ZTULong,
                          long long, unsigned long long, float, double, long double, void>());
static_assert(namesDiffer<Tag<1>, Tag<1U>, Tag<1LL>, Tag<'1'>, Tag<true>, Tag<Room::Hall>,
                          Tag<Room::Mode::Heat>, Tag<-1>>());
static_assert(namesDiffer<Box<int>, Box<long long>, Box<long>, long*, long long*>());

/// The spelled name of the one type in the list.
template <class T>
std::string_view within()
{
    const std::string_view list = ztTypeName<house::List<T>>();
    const std::size_t front = std::string_view("struct house::List<").size();
    return list.substr(front, list.size() - front - (list.ends_with(" >") ? 2 : 1));
}

TEST(TypeName, IsOneForAllCompilers)
{
    using namespace house;
    const std::pair<std::string_view, std::string_view> names[] = {
        {within<Slot<1, int>>(), "struct house::Slot<1,int>"},
        {within<Slot<1U, int>>(), "struct house::Slot<(unsigned int)1,int>"},
        {within<Slot<'a', Room>>(), "struct house::Slot<(char)97,struct house::Room>"},
        {within<Slot<'>', int>>(), "struct house::Slot<(char)62,int>"},
        {within<Slot<Room::Hall, int>>(),
         "struct house::Slot<(enum house::Room::Kind)(unsigned int)1,int>"},
        {within<Slot<nullptr, int>>(), "struct house::Slot<(nullptr)nullptr,int>"},
        {within<Slot<static_cast<int*>(nullptr), int>>(), "struct house::Slot<(int*)nullptr,int>"},
        {within<Slot<&number, int>>(), "struct house::Slot<&house::number,int>"},
        {within<Slot<&Room::area, int>>(), "struct house::Slot<&house::Room::area,int>"},
        {within<Slot<&twice, int>>(), "struct house::Slot<(int(int)*)&house::twice,int>"},
        {within < Slot < &Pair::operator<, int> >(),
         "struct house::Slot<(struct house::Pair::* bool(const struct house::Pair&)const)"
         "&house::Pair::operator<,int>"},
        {within<Slot<Size{3}, int>>(), "struct house::Slot<struct house::Size{3},int>"},
        {within<Slot<Text("a>b"), int>>(),
         "struct house::Slot<struct house::Text<(unsigned long __int64)4>{\"a>b\"},int>"},
        {within<Slot<Text("\xFF"), int>>(),
         "struct house::Slot<struct house::Text<(unsigned long __int64)2>{FF00},int>"},
        {within<Slot<Area{{1}, {2}}, int>>(),
         "struct house::Slot<struct house::Area{{1},{2}},int>"},
        {within<Row<Room, 3>>(),
         "struct house::Row<struct house::Room,(unsigned int)3,struct house::Room>"},
        {within<Level<3, Room>>(), "struct house::Level<3,struct house::Room>"},
        {within<Mixed<int, Room, true, int, char>>(),
         "struct house::Mixed<int,struct house::Room,(bool)1,int,char>"},
        {within<Applied<List, int>>(), "struct house::Applied<house::List,int>"},
        {within<Numbers<1, 2U>>(), "struct house::Numbers<1,(unsigned int)2>"},
        {within<std::array<int, 3>>(), "struct std::array<int,(unsigned long __int64)3>"},
        {within<Room* const>(), "struct house::Room*const"},
        {within<const volatile int* volatile*>(), "const volatile int*volatile*"},
        {within<volatile int[3]>(), "volatile int[(unsigned long __int64)3]"},
        {within<Room* const[]>(), "struct house::Room*const[]"},
        {within<int[2][3]>(), "int[(unsigned long __int64)2][(unsigned long __int64)3]"},
        {within<void(Room, int)>(), "void(struct house::Room,int)"},
        {within<int(int, ...) noexcept>(), "int(int,...)noexcept"},
        {within<int (*)(...)>(), "int(...)*"},
        {within<void() const&>(), "void()const&"},
        {within<void()&& noexcept>(), "void()&&noexcept"},
        {within<void() const volatile noexcept>(), "void()const volatile noexcept"},
        {within<decltype(&Pair::operator<)>(),
         "struct house::Pair::* bool(const struct house::Pair&)const"},
        {within<int Room::*const>(), "int struct house::Room::*const"},
        {within<unsigned long>(), "unsigned long __int64"},
        {within<long double>(), "long double"},
        {within<UnsignedWide>(), "unsigned __int128"},
        {within<Outer<Room* const>::Inner>(), "struct house::Outer<house::Room*const>::Inner"},
        {within<Outer<UnsignedWide>::Inner>(), "struct house::Outer<unsigned __int128>::Inner"},
        {within<Outer<volatile int[3]>::Inner>(), "struct house::Outer<volatile int[3]>::Inner"},
        {within<Outer<void (*)(Room)>::Inner>(),
         "struct house::Outer<void(*)(house::Room)>::Inner"},
        {within<Outer<int() const&>::Inner>(), "struct house::Outer<int() const&>::Inner"},
    };
    for (const auto& [name, expected] : names)
        EXPECT_EQ(name, expected);
    std::set<std::string_view> all;
    for (const auto& [name, expected] : names)
        EXPECT_TRUE(all.insert(name).second) << name;
}

TEST(TypeName, DiffersForEachValueThatATemplateTakes)
{
    EXPECT_NE(ztTypeName<Tag<&Room::area>>(), ztTypeName<Tag<&Room::height>>());
    EXPECT_NE((ztTypeName<Tag<house::Size{1}>>()), (ztTypeName<Tag<house::Size{2}>>()));
    EXPECT_NE((ztTypeName<Tag<house::Text("a text that is long, with an end a")>>()),
              (ztTypeName<Tag<house::Text("a text that is long, with an end b")>>()));
    using Take = void (house::Pair::*)(int);
    using TakeConst = void (house::Pair::*)(int) const;
    EXPECT_NE((ztTypeName<Tag<Take(&house::Pair::take)>>()),
              (ztTypeName<Tag<TakeConst(&house::Pair::take)>>()));
}
} // namespace
