// The log record byte for byte: every field at its offset, little-endian, texts cut to fit.
#include <cstring>

#include <gtest/gtest.h>

#include "plans/observer_log_record.h"

namespace nocturnel {
namespace {

ObserverLog sampleLog() {
    ObserverLog log;
    log.logNumber = 7;
    log.object = "M 13";
    log.year = 2026, log.day = 23, log.month = 11, log.hour = 21, log.minute = 30;
    log.raHours = 16.6948f, log.decDeg = 36.4613f;
    log.moonPct = 42, log.sunAltDeg = -18, log.visualMagX10 = 58, log.typeCode = 2, log.objectMag = 6;
    log.unused76 = 0x11223344, log.transparency = 3, log.seeing = 4;
    log.scope = "200mm F/6", log.location = "Kitt Peak", log.filter = "UHC", log.text = "Resolved";
    log.choices = {2, 5, 1};
    return log;
}

int32_t i32At(const std::array<unsigned char, kObserverLogSize>& b, std::size_t at) {
    return static_cast<int32_t>(b[at] | b[at + 1] << 8 | b[at + 2] << 16 | static_cast<uint32_t>(b[at + 3]) << 24);
}
float f32At(const std::array<unsigned char, kObserverLogSize>& b, std::size_t at) {
    const uint32_t bits = static_cast<uint32_t>(i32At(b, at));
    float v;
    std::memcpy(&v, &bits, 4);
    return v;
}
std::string textAt(const std::array<unsigned char, kObserverLogSize>& b, std::size_t at) {
    return reinterpret_cast<const char*>(&b[at]);
}

TEST(ObserverLogRecord, EveryFieldAtItsOffset) {
    const auto b = encodeObserverLog(sampleLog());
    struct { std::size_t at; int32_t value; const char* what; } ints[] = {
        {0, 123456789, "magic"}, {4, 7, "log number"}, {28, 2026, "year"}, {32, 23, "day"}, {36, 11, "month"},
        {40, 21, "hour"}, {44, 30, "minute"}, {56, 42, "moon"}, {60, -18, "sun"}, {64, 58, "vis mag x10"},
        {68, 2, "type"}, {72, 6, "object mag"}, {76, 0x11223344, "not exported"}, {80, 3, "transparency"},
        {84, 4, "seeing"}, {444, 2, "choice 1"}, {448, 5, "choice 2"}, {452, 1, "choice 3"},
    };
    for (const auto& f : ints) EXPECT_EQ(i32At(b, f.at), f.value) << f.what;
    EXPECT_EQ(b[0], 0x15) << "little-endian magic";  // 123456789 = 0x075BCD15
    EXPECT_FLOAT_EQ(f32At(b, 48), 16.6948f);
    EXPECT_FLOAT_EQ(f32At(b, 52), 36.4613f);
    EXPECT_EQ(textAt(b, 8), "M 13");
    EXPECT_EQ(textAt(b, 88), "200mm F/6");
    EXPECT_EQ(textAt(b, 108), "Kitt Peak");
    EXPECT_EQ(textAt(b, 138), "UHC");
    EXPECT_EQ(textAt(b, 153), "Resolved");
    EXPECT_EQ(b[441] | b[442] | b[443], 0) << "padding";
}

TEST(ObserverLogRecord, RoundTripAndTextsCutToTheirFields) {
    ObserverLog log = sampleLog();
    log.object = std::string(40, 'o');
    log.text = std::string(400, 't');
    log.filter = std::string(30, 'f');
    const auto bytes = encodeObserverLog(log);
    const auto back = decodeObserverLog(bytes);
    ASSERT_TRUE(back);
    EXPECT_EQ(back->object, std::string(19, 'o'));
    EXPECT_EQ(back->text, std::string(287, 't'));
    EXPECT_EQ(back->filter, std::string(14, 'f'));
    EXPECT_EQ(back->location, "Kitt Peak");
    EXPECT_EQ(back->choices, log.choices);
    EXPECT_EQ(back->unused76, 0x11223344);
    EXPECT_EQ(bytes[8 + 19], 0) << "the object field keeps its terminator";
    EXPECT_EQ(encodeObserverLog(*back), bytes) << "decode then encode gives the same bytes";
}

TEST(ObserverLogRecord, ShortBytesAreNoRecord) {
    const auto bytes = encodeObserverLog(sampleLog());
    EXPECT_FALSE(decodeObserverLog(std::span(bytes.data(), kObserverLogSize - 1)));
    EXPECT_FALSE(decodeObserverLog({}));
}

}  // namespace
}  // namespace nocturnel
