#include <zintar/base.h>
#include <zintar/metaclassbuilder.h>
#include <zintar/metatypeof.h>
#include <zintar/shortname.h>
#include <zintar/variant.h>

#include <gtest/gtest.h>

#include <array>
#include <functional>
#include <list>
#include <map>
#include <memory>
#include <set>
#include <unordered_map>
#include <vector>

namespace house
{
class Room : public ZTBase
{
public:
    enum class Mode { Off, Heat };
    bool operator<(const Room&) const;
};
struct classroom {};
template <auto... Values>
struct Tag {};
template <std::size_t Count>
struct Text {
    constexpr Text(const char (&text)[Count])
    {
        for (std::size_t i = 0; i < Count; ++i)
            letters[i] = text[i];
    }
    char letters[Count] = {};
};
} // namespace house

namespace
{
using house::Room;
struct Hidden {};

template <class T>
std::string shortNameOf()
{
    return ztShortName(ztTypeName<T>());
}

TEST(ShortName, IsWhatPeopleWrite)
{
    EXPECT_EQ(ztShortName(ztMetaType<std::string>()), "std::string");
    EXPECT_EQ(ztShortName(ztMetaType<const Room*>()), "const house::Room*");
    EXPECT_EQ(ztShortName(ztMetaType<Room::Mode>()), "house::Room::Mode");
    EXPECT_EQ(ztShortName(ztMetaType<long>()), "long long");
    EXPECT_EQ(ztShortName(ztMetaType<unsigned long long>()), "unsigned long long");
    EXPECT_EQ(ztShortName(ZTMetaType::ZTBadMetaType), "invalid");
    EXPECT_EQ(ztShortName(ZTBase::typeMetaClass()), "ZTBase");
    EXPECT_EQ(shortNameOf<house::classroom>(), "house::classroom");
    EXPECT_EQ(shortNameOf<Hidden>(), "Hidden");
}

TEST(ShortName, LeavesOutWhatTheStandardLibraryFillsIn)
{
    EXPECT_EQ(shortNameOf<std::vector<ZTVariant>>(), "std::vector<ZTVariant>");
    EXPECT_EQ((shortNameOf<std::map<std::string, std::list<Room*>>>()),
              "std::map<std::string, std::list<house::Room*>>");
    EXPECT_EQ((shortNameOf<std::unordered_map<long, std::unique_ptr<Room>>>()),
              "std::unordered_map<long, std::unique_ptr<house::Room>>");
    EXPECT_EQ((shortNameOf<std::array<int, 3>>()), "std::array<int, 3>");
    EXPECT_EQ(shortNameOf<house::Tag<-3LL>>(), "house::Tag<-3>");
    EXPECT_EQ((shortNameOf<std::set<int, std::less<>>>()), "std::set<int, std::less<void>>");
    EXPECT_EQ((shortNameOf<std::function<void(const Room&, std::string)>>()),
              "std::function<void(const house::Room&, std::string)>");
}

TEST(ShortName, ReadsBracketsThatAreNone)
{
    EXPECT_EQ((shortNameOf < house::Tag < &Room::operator<> >()),
              "house::Tag<(house::Room::* bool(const house::Room&)const)&house::Room::operator<>");
    EXPECT_EQ((shortNameOf<house::Tag<house::Text("struct <")>>()),
              R"(house::Tag<house::Text<9>{"struct <"}>)");
}

TEST(ShortName, OfAnyTextIsThatText)
{
    for (const char* text : {"", "a<b", "a>b", "(", "f(a", "{\"", "operator", "x,y"})
        EXPECT_EQ(ztShortName(text), text);
    const std::string deep(100'000, '<');
    EXPECT_EQ(ztShortName(deep), deep);

    ZTMetaClassBuilder builder;
    builder.setTypeName("struct class < 3");
    const std::unique_ptr<ZTMetaClass> made(builder.toMetaClass());
    EXPECT_EQ(ztShortName(*made), "class < 3");
}
} // namespace
