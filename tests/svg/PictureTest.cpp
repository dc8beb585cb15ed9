#include "platform/svg/Picture_p.h"
#include "platform/svg/TextBuffer_p.h"

#include <gtest/gtest.h>

namespace kt::svg {
namespace {

using namespace std::string_literals;

const std::string sPng = "\x89PNG\r\n\x1A\n\0\0\0\rIHDR"s;
const std::string sPngBase64 = "iVBORw0KGgoAAAANSUhEUg==";

/// The data URI, or "" for what is no picture.
std::string embed(const std::string& source) {
    const Picture picture(source);
    std::string uri;
    if (picture.getProblem() == nullptr) {
        TextBuffer buffer;
        picture.appendDataUri(buffer);
        uri = buffer.makeText();
        EXPECT_EQ(uri.size(), picture.getDataUriSize());
    }
    return uri;
}

TEST(Picture, IsToldByItsContent) {
    const struct {
        std::string mSource;
        std::string mUri;
    } rows[] = {
        {sPng, "data:image/png;base64," + sPngBase64},
        {"\xFF\xD8\xFF\xE0", "data:image/jpeg;base64,/9j/4A=="},
        {"GIF89a", "data:image/gif;base64,R0lGODlh"},
        {"GIF87a", "data:image/gif;base64,R0lGODdh"},
        {"RIFF\1\2\3\4WEBPVP8 ", "data:image/webp;base64,UklGRgECAwRXRUJQVlA4IA=="},
        {"data:image/png;base64," + sPngBase64, "data:image/png;base64," + sPngBase64},
        // What the header says does not count, and neither does how the base64 is laid out.
        {"DATA:image/svg+xml;charset=x;BASE64, iVBORw0K\r\nGgoAAAANSUhEUg", "data:image/png;base64," + sPngBase64},
        {"data:;base64,iVBORw0KGgoAAAANSUhEUg%3D%3D", "data:image/png;base64," + sPngBase64},
        {"data:image/gif,GIF89a%00%ff", "data:image/gif;base64,R0lGODlhAP8="},
        {"", ""},
        {"data:", ""},
        {"data:image/png;base64,", ""},
        {"data:image/png;base64,R0lGODlh\"onload=\"x", ""},
        {"data:image/png;base64,iVBORw0K=GgoA", ""},
        {"data:image/gif;base64,R0lGODlhA", ""},
        {"data:image/png;base64,PHN2Zz48L3N2Zz4=", ""},
        {"data:image/svg+xml,<svg/>", ""},
        {"<svg xmlns=\"http://www.w3.org/2000/svg\"/>", ""},
        {"http://example.com/a.png", ""},
        {"file:///etc/passwd", ""},
        {"RIFF\1\2\3\4WAVE", ""},
        {"BM\1\2", ""},
        {"\x89PNG", ""},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(embed(row.mSource), row.mUri) << testing::PrintToString(row.mSource);
    }
}

TEST(Picture, IsWholeWithASizeAndAnEnd) {
    const std::string png =
        "\x89PNG\r\n\x1A\n\0\0\0\rIHDR\0\0\0\1\0\0\0\1\1\0\0\0\0crc0\0\0\0\0IEND\xAE"
        "B`\x82"s;
    const std::string jpeg = "\xFF\xD8\xFF\xE0\0\4ab\xFF\xC0\0\x0B\x08\0\1\0\1\1\1\x11\0\xFF\xDA\0\2scan\xFF\xD9"s;
    const std::string gif = "GIF89a\1\0\1\0\0\0\0;"s;
    const std::string webp = "RIFF\x12\0\0\0WEBPVP8 \6\0\0\0pixels"s;
    for (const std::string& whole : {png, jpeg, gif, webp}) {
        EXPECT_FALSE(Picture(whole).isDamaged()) << testing::PrintToString(whole);
        EXPECT_FALSE(Picture(whole + "\0\0"s).isDamaged()) << testing::PrintToString(whole);
        // Cut anywhere: told as damaged, if it can be told as a picture still.
        for (std::size_t size = 0; size < whole.size(); ++size) {
            const std::string cut = whole.substr(0, size);
            const Picture picture(cut);
            EXPECT_TRUE(picture.getProblem() != nullptr || picture.isDamaged())
                << size << testing::PrintToString(whole);
        }
    }
    std::string flat = png;
    flat[19] = '\0';
    EXPECT_TRUE(Picture(flat).isDamaged());
    EXPECT_TRUE(Picture("data:image/png;base64," + sPngBase64).isDamaged());
}

TEST(Picture, IsRefusedOneByteAboveTheLimit) {
    std::string file = "GIF89a" + std::string(Picture::sMaxSize - 6, '\1');
    const std::string uri = embed(file);
    EXPECT_FALSE(uri.empty());
    EXPECT_LT(uri.size(), 10'000'000U);
    EXPECT_EQ(embed(uri), uri);
    file.push_back('\1');
    EXPECT_EQ(embed(file), "");
    // One more group of the base64 alphabet is three more bytes.
    EXPECT_EQ(embed(uri.substr(0, uri.find('=')) + "AAAA"), "");
}

}  // namespace
}  // namespace kt::svg
