#include "platform/svg/SmallVector.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <random>
#include <stdexcept>
#include <vector>

namespace {

using Item = std::shared_ptr<int>;
using Small = kt::svg::SmallVector<Item, 3>;

/// Does the same to both, at random: whatever the small one does in its own room or on the heap must not show.
TEST(SmallVector, DoesWhatAVectorDoes) {
    std::mt19937 random(1);
    Small small;
    std::vector<Item> plain;
    for (int step = 0; step < 20'000; ++step) {
        const auto item = std::make_shared<int>(step);
        const std::vector<Item> items(random() % 6, item);
        const auto index = static_cast<std::ptrdiff_t>(random() % (plain.size() + 1));
        switch (random() % 8) {
            case 0:
            case 1:
                small.push_back(item);
                plain.push_back(item);
                break;
            case 2:
                EXPECT_EQ(*small.insert(small.begin() + index, item), item);
                plain.insert(plain.begin() + index, item);
                break;
            case 3:
                small.append(items);
                plain.insert(plain.end(), items.begin(), items.end());
                break;
            case 4:
                for (auto count = index; count > 0; --count) {
                    small.pop_back();
                    plain.pop_back();
                }
                break;
            case 5: {
                Small taken = std::move(small);
                small = Small{item};
                small = std::move(taken);
                break;
            }
            case 6: {
                const Small copy = small;
                small = small;
                small.clear();
                small = copy;
                break;
            }
            default:
                small.reserve(plain.size() + items.size());
        }
        ASSERT_EQ(small, plain) << step;
        const auto held = std::ranges::count(plain, item) + std::ranges::count(small, item);
        ASSERT_EQ(item.use_count(), 1 + std::ssize(items) + held) << step;
    }
    EXPECT_THROW(small.at(plain.size()), std::out_of_range);
}

}  // namespace
