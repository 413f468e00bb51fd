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

TEST(TextEncoding, TypedTextForMessagesIsConvertedOnceAndNeverFails) {
    struct Case {
        const char* typed;
        const char* latin1;
    };
    for (const Case c : {Case{"plain", "plain"}, Case{"\xC3\x89t\xC3\xA9", "\xC9t\xE9"},
                         Case{"\xE2\x98\x83", "?"}, Case{"a\xF0\x9F\x94\xAD" "b", "a?b"},
                         Case{"\xC3", "?"}, Case{"\x80x", "?x"}, Case{"10\xC2\xB0", "10\xB0"}})
        EXPECT_EQ(utf8ToLatin1ForMessage(c.typed), c.latin1) << c.typed;
    // Shown through the UTF-8 output once, the typed text comes back as typed.
    EXPECT_EQ(latin1ToUtf8(utf8ToLatin1ForMessage("Sa\xC3\xAF" "d")), "Sa\xC3\xAF" "d");
}

}  // namespace
}  // namespace nocturnel
