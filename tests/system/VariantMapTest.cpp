#include "platform/system/ktVariantMapImpl.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <random>
#include <sstream>
#include <string>

namespace {

using kt::ktVariant;
using Map = ktVariant::ktVariantMapImpl;

std::string keysOf(const Map& map) {
    std::string keys;
    for (const auto& [key, value] : map) {
        keys.append(key).append("|");
    }
    return keys;
}

TEST(VariantMap, KeysAscendByBytes) {
    const Map map{
        {"b", 1}, {"a", 2}, {"\xC3\xA4", 3}, {"B", 4}, {"", 5}, {"aa", 6}, {"a longer key than fits inside", 7}};
    EXPECT_EQ(keysOf(map), "|B|a|a longer key than fits inside|aa|b|\xC3\xA4|");
}

TEST(VariantMap, KeysWithNulBytesAndCommonPrefixesDiffer) {
    using namespace std::string_literals;
    const std::string keys[] = {
        "k"s, "k\0"s, "k\0\0"s, "k\1"s, "123456789012345"s, "1234567890123456"s, "12345678901234\0"s};
    Map map;
    std::map<std::string, int> expected;
    for (const std::string& key : keys) {
        const int number = static_cast<int>(expected.size());
        map[key] = number;
        expected[key] = number;
    }
    ASSERT_EQ(map.size(), expected.size());
    EXPECT_TRUE(std::equal(map.begin(), map.end(), expected.begin(), [](const auto& entry, const auto& wanted) {
        return entry.first == wanted.first && entry.second.toInteger() == wanted.second;
    }));
}

TEST(VariantMap, LastOfEqualKeysCounts) {
    EXPECT_EQ((Map{{"a", 1}, {"b", 2}, {"a", 3}}).at("a").toInteger(), 3);
    Map map;
    for (int index = 0; index < 1000; ++index) {
        map.append("key of some length " + std::to_string(index % 100), index);
    }
    map.finish();
    ASSERT_EQ(map.size(), 100U);
    EXPECT_EQ(map.at("key of some length 7").toInteger(), 907);
}

TEST(VariantMap, BehavesLikeAStandardMap) {
    std::mt19937 random(1);
    Map map;
    std::map<std::string, std::int64_t> expected;
    for (int step = 0; step < 4000; ++step) {
        std::string key(random() % 20, 'k');
        if (!key.empty()) {
            key.back() = static_cast<char>('a' + random() % 8);
        }
        switch (random() % 4) {
            case 0:
                EXPECT_EQ(map.insert_or_assign(key, step).second, expected.insert_or_assign(key, step).second);
                break;
            case 1:
                EXPECT_EQ(map.emplace(key, step).second, expected.emplace(key, step).second);
                break;
            case 2:
                map[key] = step;
                expected[key] = step;
                break;
            default:
                EXPECT_EQ(map.erase(key), expected.erase(key));
        }
        EXPECT_EQ(map.contains(key), expected.contains(key));
    }
    ASSERT_EQ(map.size(), expected.size());
    for (const auto& [key, number] : expected) {
        EXPECT_EQ(map.at(key).toInteger(), number) << key;
    }
    EXPECT_TRUE(std::is_sorted(map.begin(), map.end(), [](const auto& a, const auto& b) { return a.first < b.first; }));
}

TEST(VariantMap, ValueConvertsAndFallsBack) {
    const Map map{{"text", "6.5"}, {"real", 6.5}, {"yes", true}, {"none", ktVariant()}};
    EXPECT_EQ(map.value<std::string>("text", "fallback"), "6.5");
    EXPECT_EQ(map.value<std::string>("real", "fallback"), "6.5");
    EXPECT_EQ(map.value<std::string>("none", "fallback"), "");
    EXPECT_EQ(map.value<std::string>("missing", "fallback"), "fallback");
    EXPECT_EQ(map.value<double>("text", 1.0), 6.5);
    EXPECT_EQ(map.value<float>("real", 1.0F), 6.5F);
    EXPECT_EQ(map.value<std::int64_t>("real", 1), 6);
    EXPECT_TRUE(map.value<bool>("yes", false));
    EXPECT_TRUE(map.value<bool>("missing", true));
    EXPECT_THROW(map.at("missing"), std::out_of_range);
}

TEST(VariantMap, KeysAreTexts) {
    Map map{{"short", 1}, {"a key that needs storage of its own", 2}};
    std::ostringstream printed;
    for (auto& [key, value] : map) {
        printed << key << ';';
        EXPECT_TRUE(map.find(key) != map.end());
        EXPECT_EQ(std::string(key).size(), key.size());
        value = ktVariant(3);
    }
    EXPECT_EQ(printed.str(), "a key that needs storage of its own;short;");
    EXPECT_EQ(map["short"].toInteger(), 3);
    const Map copy = map;
    map.clear();
    EXPECT_TRUE(map.empty() && map.find("short") == map.end());
    EXPECT_EQ(copy.size(), 2U);
}

}  // namespace
