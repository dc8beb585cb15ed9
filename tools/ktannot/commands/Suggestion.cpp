#include "tools/ktannot/commands/Suggestion.h"

#include <algorithm>
#include <cstddef>

namespace ktannot {

namespace {

/// The number of typing errors between two words.
std::size_t countErrors(std::string_view a, std::string_view b) {
    std::vector<std::size_t> beforeLast(b.size() + 1);
    std::vector<std::size_t> last(b.size() + 1);
    std::vector<std::size_t> row(b.size() + 1);
    for (std::size_t j = 0; j <= b.size(); ++j) {
        row[j] = j;
    }
    for (std::size_t i = 1; i <= a.size(); ++i) {
        beforeLast.swap(last);
        last.swap(row);
        row[0] = i;
        for (std::size_t j = 1; j <= b.size(); ++j) {
            row[j] = std::min({last[j] + 1, row[j - 1] + 1, last[j - 1] + (a[i - 1] == b[j - 1] ? 0U : 1U)});
            if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1]) {
                row[j] = std::min(row[j], beforeLast[j - 2] + 1);
            }
        }
    }
    return row[b.size()];
}

}  // namespace

std::string findNearest(std::string_view word, const std::vector<std::string>& candidates) {
    // Long words are no typing errors, and would take long.
    std::size_t fewest = word.size() > 40 ? 0 : std::max<std::size_t>(2, word.size() / 3) + 1;
    std::string nearest;
    for (const std::string& candidate : candidates) {
        if (const std::size_t errors = countErrors(word, candidate); errors < fewest && errors < candidate.size()) {
            fewest = errors;
            nearest = candidate;
        }
    }
    return nearest;
}

}  // namespace ktannot
