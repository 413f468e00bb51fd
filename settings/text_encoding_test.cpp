#include "settings/text_encoding.h"

#include <gtest/gtest.h>

namespace nocturnel {
namespace {

TEST(TextEncoding, Latin1AndUtf8RoundTrip) {
    std::string all;
    for (int c = 1; c < 256; ++c) all.push_back(static_cast<char>(c));
    const auto back = utf8ToLatin1(latin1ToUtf8(all));
    ASSERT_TRUE(back.has_value());
    EXPECT_EQ(*back, all);
    EXPECT_EQ(latin1ToUtf8("-70\xB0" "45'00"), "-70\xC2\xB0" "45'00");
}

TEST(TextEncoding, RefusesWhatLatin1CannotHold) {
    for (const char* text : {"\xE2\x82\xAC", "\xC3", "\xC3(", "\x80", "\xC4\x80", "\xF0\x9F\x94\xAD"})
        EXPECT_FALSE(utf8ToLatin1(text).has_value()) << text;
}

}  // namespace
}  // namespace nocturnel
