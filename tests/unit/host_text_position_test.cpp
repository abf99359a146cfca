#include "host/text/text_position.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

namespace tessera_host {
namespace {

using basekit2::source_position_t;

// The definition, character by character.
source_position_t expected(std::string_view text, std::size_t offset) {
    source_position_t position{1, 1};
    std::size_t i = text.starts_with("\xEF\xBB\xBF") ? 3 : 0;
    for (; i < offset; ++i) {
        const bool isCrOfCrLf = text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n';
        if (text[i] == '\n' || (text[i] == '\r' && !isCrOfCrLf))
            position = {position.line + 1, 1};
        else if ((text[i] & '\xC0') != '\x80')
            ++position.column;
    }
    return position;
}

TEST(TextPosition, CountsLinesAndCharacters) {
    const std::string_view text = "ab\n\u00E9\u20ACx\r\nlong enough for a word or two\ry";
    TextPosition position(text);
    EXPECT_EQ(position.at(0), (source_position_t{1, 1}));
    EXPECT_EQ(position.at(2), (source_position_t{1, 3}));
    EXPECT_EQ(position.at(3), (source_position_t{2, 1}));
    EXPECT_EQ(position.at(8), (source_position_t{2, 3}));  // two characters of two and three bytes before it
    EXPECT_EQ(position.at(text.find("long")), (source_position_t{3, 1}));
    EXPECT_EQ(position.at(text.size() - 1), (source_position_t{4, 1}));
    EXPECT_EQ(position.at(3), (source_position_t{2, 1})) << "going back starts again";
}

TEST(TextPosition, ByteOrderMarkTakesNoColumn) {
    TextPosition position("\xEF\xBB\xBF<a>");
    EXPECT_EQ(position.at(3), (source_position_t{1, 1}));
    EXPECT_EQ(position.at(4), (source_position_t{1, 2}));
}

TEST(TextPosition, AgreesWithTheDefinitionOnRandomTexts) {
    std::mt19937 random(20240517);
    for (int round = 0; round < 300; ++round) {
        std::string text = round % 5 == 0 ? "\xEF\xBB\xBF" : "";
        const std::size_t pieces = random() % 40;
        for (std::size_t i = 0; i < pieces; ++i) {
            static constexpr const char* samples[] = {"a",  "some text",        "\n",     "\r\n",
                                                      "\r", "\u00E9",           "\u20AC", "\U0001F600",
                                                      "\t", "12345678901234567"};
            text += samples[random() % std::size(samples)];
        }
        TextPosition position(text);
        for (std::size_t offset = text.starts_with("\xEF") ? 3 : 0; offset <= text.size();
             offset += 1 + random() % 12)
            ASSERT_EQ(position.at(offset), expected(text, offset))
                << testing::PrintToString(text) << " at " << offset;
    }
}

}  // namespace
}  // namespace tessera_host
