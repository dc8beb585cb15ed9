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
using namespace std::string_literals;

/// Whether the map holds these entries in this order.
bool holds(const Map& map, const std::map<std::string, std::int64_t>& expected) {
    return std::ranges::equal(map, expected, [](const auto& entry, const auto& wanted) {
        return entry.first == wanted.first && entry.second.toInteger() == wanted.second;
    });
}

TEST(VariantMap, BehavesLikeAStandardMap) {
    const std::string heads[] = {
        ""s, "B"s, "\xC3\xA4"s, "k\0"s, "k\0\0"s, "123456789012345"s, "a key not kept inside"s};
    std::mt19937 random(1);
    Map map;
    Map appended;
    std::map<std::string, std::int64_t> expected;
    std::map<std::string, std::int64_t> lasts;
    for (int step = 0; step < 4000; ++step) {
        std::string key = heads[random() % std::size(heads)];
        key.append(random() % 3, static_cast<char>(random() % 8));
        const auto operation = random() % 4;
        if (operation == 0) {
            EXPECT_EQ(map.insert_or_assign(key, step).second, expected.insert_or_assign(key, step).second);
        } else if (operation == 1) {
            EXPECT_EQ(map.emplace(key, step).second, expected.emplace(key, step).second);
        } else if (operation == 2) {
            map[key] = expected[key] = step;
        } else {
            EXPECT_EQ(map.erase(key), expected.erase(key));
        }
        EXPECT_EQ(map.contains(key), expected.contains(key));
        appended.append(key, step);
        lasts[key] = step;
    }
    appended.finish();
    EXPECT_TRUE(holds(map, expected));
    EXPECT_TRUE(holds(appended, lasts));
    EXPECT_EQ((Map{{"a", 1}, {"b", 2}, {"a", 3}}).at("a").toInteger(), 3);
}

}  // namespace
