#include "common/nameindex.h"

#include "support/crafted.h"

#include <gtest/gtest.h>

#include <deque>
#include <string>

namespace
{
using Index = zt::detail::NameIndex<int>;

/// The number of the thing that is found, or -1.
int found(const Index& index, std::string_view name)
{
    const int* thing = index.find(name);
    return thing ? *thing : -1;
}

/// An index of the names, the number of each being its place among them.
Index indexOf(const std::deque<std::string>& names)
{
    Index index;
    int number = 0;
    for (const std::string& name : names)
        index.add(name, number++);
    return index;
}

void expectAllFound(const Index& index, const std::deque<std::string>& names)
{
    for (std::size_t i = 0; i < names.size(); ++i)
        ASSERT_EQ(found(index, names[i]), static_cast<int>(i)) << names[i];
    for (const char* absent :
         {"", "a", "abc", "not there", "a name that is longer than the others"})
        ASSERT_EQ(found(index, absent), -1) << absent;
}

TEST(NameIndex, FindsNamesOfEachLengthThatDifferInOneLetter)
{
    std::deque<std::string> names;
    for (std::size_t length = 1; length <= 40; ++length)
        for (std::size_t changed = 0; changed < length; ++changed) {
            names.emplace_back(length, 'x');
            names.back()[changed] = 'y';
        }
    const Index index = indexOf(names);
    EXPECT_FALSE(index.isSorted());
    expectAllFound(index, names);
    EXPECT_EQ(found(Index(), "x"), -1);
}

TEST(NameIndex, FindsTheFirstOfEqualNamesThatFits)
{
    for (int count : {3, 1000}) {
        Index index;
        for (int i = 0; i < count; ++i)
            index.add("same", i);
        EXPECT_EQ(index.isSorted(), count > 100);
        EXPECT_EQ(found(index, "same"), 0);
        EXPECT_EQ(*index.find("same", [](int i) { return i > 1; }), 2);
        EXPECT_EQ(index.find("same", [](int i) { return i < 0; }), nullptr);
    }
}

// As programs have them, and more alike than names that are drawn.
TEST(NameIndex, SpreadsNumberedNames)
{
    for (const char* front : {"", "x", "set", "sensor", "channel", "backgroundColour"})
        for (const char* back : {"", "X", "Changed", "Settings", "OfTheWholeMachine"})
            for (int count : {10, 1000, 30'000}) {
                std::deque<std::string> names;
                for (int i = 0; i < count; ++i)
                    names.push_back(front + std::to_string(i) + back);
                EXPECT_FALSE(indexOf(names).isSorted()) << front << "#" << back << " " << count;
            }
}

TEST(NameIndex, SortsNamesThatAreMadeToCollide)
{
    std::deque<std::string> names{"height", "width", "a name that is longer than the others are"};
    for (const std::string& name : support::collidingNames(2000))
        names.push_back(name);
    Index index = indexOf(names);
    EXPECT_TRUE(index.isSorted());
    names.emplace_back("added behind them");
    index.add(names.back(), static_cast<int>(names.size()) - 1);
    index.add("width", 9999); // the one that was there before is found
    expectAllFound(index, names);
}
} // namespace
