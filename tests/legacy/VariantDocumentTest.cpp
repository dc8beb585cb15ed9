#include "legacy/variant/ktVariantDocumentReader.h"
#include "platform/system/variant/ktVariantListImpl.h"
#include "tests/legacy/LegacyLibraryTest.h"

#include <array>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <span>
#include <vector>

namespace ktLegacy {
namespace {

class VariantDocument : public ktTest::LegacyLibraryTest {};

std::string describe(const ViewPointer& view, const std::vector<std::string>& messages) {
    std::string text = ktTest::show(view);
    for (const std::string& message : messages) {
        text += "; " + message;
    }
    return text + '\n';
}

std::string describe(const kt::ktJsonError& error) { return std::to_string(error.mOffset) + error.mMessage; }

/// The views by way of the variants of the whole document.
std::string readByVariants(const std::string& json) {
    kt::ktVariant value;
    kt::ktJsonError error;
    if (!kt::ktJsonReader().parse(std::as_bytes(std::span(json)), value, error)) {
        return describe(error);
    }
    std::string text;
    const auto add = [&text](const kt::ktVariant& map) {
        std::vector<std::string> messages;
        const ViewPointer view = ktAnnotationView::FromVariantMap(map.toMap(), messages);
        text += describe(view, messages);
    };
    if (const kt::ktVariant::ktVariantListImpl* maps = value.getList(); maps != nullptr) {
        std::for_each(maps->begin(), maps->end(), add);
    } else {
        add(value);
    }
    return text;
}

std::string readDirectly(ktVariantDocumentReader& reader, const std::string& json) {
    std::vector<ktVariantDocumentReader::View> views;
    kt::ktJsonError error;
    if (reader.read(std::as_bytes(std::span(json)), views, error) == ktVariantDocumentReader::Outcome::NotJson) {
        return views.empty() ? describe(error) : "views of no document";
    }
    std::string text;
    for (const ktVariantDocumentReader::View& view : views) {
        text += describe(view.mView, view.getMessages());
    }
    return text;
}

/// Entries of view maps, of which some suit each other.
std::vector<std::string> readEntries() {
    std::ifstream file(KT_SOURCE_DIR "/tests/data/legacy/view_entries.txt");
    std::vector<std::string> entries;
    for (std::string line; std::getline(file, line);) {
        const std::size_t at = line.find("$LONG");
        entries.push_back(at == std::string::npos ? line : line.replace(at, 5, std::string(70'000, 'x')));
    }
    return entries;
}

/// A view map of a few entries in any order.
std::string makeMap(std::mt19937& engine, const std::vector<std::string>& entries) {
    std::string map = "{";
    for (std::size_t count = engine() % 8; count != 0; --count) {
        map += entries[engine() % entries.size()] + (count == 1 ? "" : ",");
    }
    return map + '}';
}

TEST_F(VariantDocument, ReadsEntriesInAnyOrderAsByVariants) {
    const std::vector<std::string> entries = readEntries();
    constexpr std::array<const char*, 4> sOthers{"null", "[{\"annotations\":[1]}]", "[", "{\"ver\":\"6.27\",}"};
    std::mt19937 engine(1);
    ktVariantDocumentReader reader;
    std::size_t readable = 0;
    for (int number = 0; number < 3000; ++number) {
        std::string json = makeMap(engine, entries);
        if (number % 2 == 0) {
            json = '[' + json + ',' + (number % 16 == 0 ? sOthers[engine() % 4] : makeMap(engine, entries)) + ']';
        }
        const std::string direct = readDirectly(reader, json);
        ASSERT_EQ(direct, readByVariants(json)) << json;
        readable += static_cast<std::size_t>(direct.find("view '") != std::string::npos);
    }
    EXPECT_GT(readable, 500U);
}

TEST_F(VariantDocument, ReadsSamplesWholeCutAndDamagedAsByVariants) {
    ktVariantDocumentReader reader;
    std::mt19937 engine(2);
    for (const auto& file : std::filesystem::directory_iterator(KT_SAMPLES_DIR)) {
        if (file.path().extension() != ".json") {
            continue;
        }
        std::ifstream stream(file.path(), std::ios::binary);
        const std::string whole{std::istreambuf_iterator<char>(stream), {}};
        EXPECT_THAT(readDirectly(reader, whole), testing::HasSubstr("view '"));
        EXPECT_EQ(readDirectly(reader, whole), readByVariants(whole)) << file.path();
        for (int number = 0; number < 40; ++number) {
            std::string damaged = whole.substr(0, number % 4 == 0 ? engine() % whole.size() : whole.size());
            for (char& character : std::span(damaged).last(damaged.size() * (number % 4 == 0 ? 0 : 1))) {
                if (engine() % whole.size() < 3) {
                    character = "019-\"{}[]:,xs\\"[engine() % 14];
                }
            }
            ASSERT_EQ(readDirectly(reader, damaged), readByVariants(damaged)) << file.path() << number;
        }
    }
}

}  // namespace
}  // namespace ktLegacy
