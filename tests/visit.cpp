#include <zintar/base.h>
#include <zintar/visit.h>

#include <gtest/gtest.h>

#include <string>
#include <type_traits>

namespace
{
std::string shown(const ZTVariant& variant)
{
    std::string text = "none";
    const bool isVisited =
        ztVisit<int, long, std::string, ZTBase*>(variant, [&]<class T>(const T& held) {
            if constexpr (std::is_same_v<T, std::string>)
                text = held;
            else if constexpr (std::is_arithmetic_v<T>)
                text = std::to_string(held) + (std::is_same_v<T, long> ? "L" : "");
            else
                text = held ? "object" : "null";
        });
    EXPECT_EQ(isVisited, text != "none");
    return text;
}

TEST(Visit, CallsWithTheOneTypeThatTheVariantHolds)
{
    struct Lamp : ZTBase {
    } lamp;
    EXPECT_EQ(shown(ZTVariant(5)), "5");
    EXPECT_EQ(shown(ZTVariant(6L)), "6L");
    EXPECT_EQ(shown(ZTVariant("text")), "text");
    EXPECT_EQ(shown(ZTVariant(static_cast<ZTBase*>(&lamp))), "object");
    EXPECT_EQ(shown(ZTVariant(&lamp)), "none");
    EXPECT_EQ(shown(ZTVariant(0.5)), "none");
    EXPECT_EQ(shown(ZTVariant()), "none");
    EXPECT_EQ(shown(ZTVariant(ztMetaType<void>(), nullptr)), "none");
}

TEST(Visit, GivesWhatTheCallableGives)
{
    auto half = [](auto value) { return static_cast<decltype(value)>(value / 2); };
    const auto result = ztVisit<int, double>(ZTVariant(5.0), half);
    static_assert(std::is_same_v<decltype(result), const std::optional<double>>);
    EXPECT_EQ(result, 2.5);
    EXPECT_EQ((ztVisit<int, double>(ZTVariant(5), half)), 2);
    EXPECT_EQ((ztVisit<int, double>(ZTVariant("5"), half)), std::nullopt);
    EXPECT_EQ(ztVisit<int>(ZTVariant(5), [](int) { return false; }), false);
}

TEST(Visit, MayChangeTheValue)
{
    ZTVariant variant("abc");
    EXPECT_TRUE(ztVisit<std::string>(variant, [](std::string& text) { text += "d"; }));
    EXPECT_EQ(variant, "abcd");
}
} // namespace
