// Exchange with OpenAstronomyLog files: our own round trip, a document written by hand as the
// format's schema describes it, and documents that must be refused.
#include <gtest/gtest.h>

#include "plans/oal_exchange.h"
#include "plans/observer_log_choices.h"
#include "plans/observer_logs.h"
#include "plans/plans_test_support.h"
#include "plans/xml_reader.h"
#include "settings/message.h"

namespace nocturnel {
namespace {

ObserverLog sampleLog(const std::string& object) {
    ObserverLog log;
    log.object = object;
    log.year = 2026, log.month = 11, log.day = 23, log.hour = 21, log.minute = 30;
    log.raHours = 16.6948f, log.decDeg = 36.4613f;
    log.visualMagX10 = 62, log.typeCode = 2, log.objectMag = 6, log.seeing = 3;
    log.scope = "200mm F/6", log.location = "Kitt Peak", log.filter = "UHC";
    log.text = "Resolved <to> the core & \xE9toiles";
    log.choices[kChoiceRating] = 2;
    return log;
}

TEST(OalExchange, RoundTripKeepsWhatTheFormatCarries) {
    std::vector<ObserverLog> logs = {sampleLog("M 13"), sampleLog("NGC 7000")};
    logs[1].typeCode = 20;
    logs[1].filter.clear();
    logs[1].choices[kChoiceRating] = 0;
    const std::string xml = oalDocumentFromLogs(logs, -420);
    std::vector<ObserverLog> back;
    int skipped = -1;
    ASSERT_TRUE(logsFromOalDocument(xml, -420, back, skipped)) << xml;
    EXPECT_EQ(skipped, 0);
    ASSERT_EQ(back.size(), 2u);
    for (std::size_t i = 0; i < 2; ++i) {
        const ObserverLog& a = logs[i];
        const ObserverLog& b = back[i];
        EXPECT_EQ(b.object, a.object);
        EXPECT_EQ(std::tie(b.year, b.month, b.day, b.hour, b.minute), std::tie(a.year, a.month, a.day, a.hour, a.minute));
        EXPECT_NEAR(b.raHours, a.raHours, 1e-6);
        EXPECT_NEAR(b.decDeg, a.decDeg, 1e-5);
        EXPECT_EQ(b.visualMagX10, a.visualMagX10);
        EXPECT_EQ(b.typeCode, a.typeCode);
        EXPECT_EQ(b.objectMag, a.objectMag);
        EXPECT_EQ(b.seeing, a.seeing);
        EXPECT_EQ(b.scope, a.scope);
        EXPECT_EQ(b.location, a.location);
        EXPECT_EQ(b.filter, a.filter);
        EXPECT_EQ(b.text, a.text) << "markup characters and Latin-1 letters survive";
        EXPECT_EQ(b.choices[kChoiceRating], a.choices[kChoiceRating]);
    }
    EXPECT_NE(xml.find("<begin>2026-11-23T21:30:00-07:00</begin>"), std::string::npos);
    EXPECT_NE(xml.find("xmlns:oal=\"http://groups.google.com/group/openastronomylog\""), std::string::npos);
}

// Written by hand from the schema: another prefix, degrees and arc units, a time in UT, CDATA,
// character references, comments, an unresolvable observation.
constexpr char kHandWritten[] = R"(<?xml version="1.0" encoding="UTF-8"?>
<!-- exported by another logging program -->
<log:observations version="2.0" xmlns:log="http://groups.google.com/group/openastronomylog"
    xmlns:xsi="http://www.w3.org/2001/XMLSchema-instance">
  <observers><observer id="o1"><name>Jane</name><surname>Doe</surname></observer></observers>
  <sites><site id="s1"><name>Backyard &amp; hill</name><longitude unit="deg">-111.6</longitude>
    <latitude unit="deg">31.96</latitude><timezone>-420</timezone></site></sites>
  <sessions/>
  <targets>
    <target id="t1" xsi:type="log:deepSkyPN"><datasource>NGC</datasource><name>M 57</name>
      <position><ra unit="deg">283.396</ra><dec unit="arcmin">1982.4</dec></position>
      <constellation>Lyr</constellation><visMag>8.8</visMag></target>
    <target id="t2" xsi:type='log:deepSkyGX'><observer>o1</observer><name>M&#32;31</name>
      <position><ra unit="rad">0.18649</ra><dec unit="rad">0.72078</dec></position></target>
  </targets>
  <scopes><scope id="sc1" xsi:type="log:scopeType"><model>Dob 10&#x22;</model><aperture>254</aperture>
    <focalLength>1200</focalLength></scope></scopes>
  <eyepieces/><lenses/><filters/><imagers/>
  <observation id="ob1"><observer>o1</observer><site>s1</site><target>t1</target>
    <begin>2024-07-02T04:10:00Z</begin><faintestStar>5.9</faintestStar><seeing>2</seeing><scope>sc1</scope>
    <result xsi:type="log:findingsDeepSkyType" lang="en"><description><![CDATA[Ring <clear>]]></description>
      <rating>3</rating></result></observation>
  <observation id="ob2"><observer>o1</observer><target>t2</target><begin>2024-07-02T23:40:00+02:00</begin>
    <result xsi:type="log:findingsDeepSkyType" lang="en"><description>Core only</description><rating>99</rating></result>
  </observation>
  <observation id="ob3"><observer>o1</observer><target>nowhere</target><begin>2024-07-02T23:40:00</begin></observation>
</log:observations>
)";

TEST(OalExchange, ReadsADocumentWrittenFromTheSchema) {
    std::vector<ObserverLog> logs;
    int skipped = 0;
    ASSERT_TRUE(logsFromOalDocument(kHandWritten, -420, logs, skipped));
    EXPECT_EQ(skipped, 1) << "the observation of an unknown target";
    ASSERT_EQ(logs.size(), 2u);
    const ObserverLog& ring = logs[0];
    EXPECT_EQ(ring.object, "M 57");
    EXPECT_EQ(ring.typeCode, 25) << "planetary nebula";
    EXPECT_NEAR(ring.raHours, 283.396 / 15, 1e-5);
    EXPECT_NEAR(ring.decDeg, 33.04, 1e-5);
    // 04:10 UT at UT-7h is 21:10 the evening before.
    EXPECT_EQ(std::tie(ring.year, ring.month, ring.day, ring.hour, ring.minute), std::make_tuple(2024, 7, 1, 21, 10));
    EXPECT_EQ(ring.visualMagX10, 59);
    EXPECT_EQ(ring.objectMag, 9);
    EXPECT_EQ(ring.seeing, 3) << "Antoniadi II is the second best choice";
    EXPECT_EQ(ring.scope, "Dob 10\"");
    EXPECT_EQ(ring.location, "Backyard & hill");
    EXPECT_EQ(ring.text, "Ring <clear>");
    EXPECT_EQ(ring.choices[kChoiceRating], 3);
    const ObserverLog& andromeda = logs[1];
    EXPECT_EQ(andromeda.object, "M 31");
    EXPECT_EQ(andromeda.typeCode, 16);
    EXPECT_EQ(std::tie(andromeda.hour, andromeda.minute), std::make_tuple(23, 40)) << "a local time stays as written";
    EXPECT_NEAR(andromeda.decDeg, 41.297, 1e-3);
    EXPECT_EQ(andromeda.choices[kChoiceRating], 0) << "99 is an unknown rating";
}

// A seeing far outside the Antoniadi scale is the nearest end of it, not a number cut to int.
TEST(OalExchange, SeeingOutsideTheScaleTakesTheNearestEnd) {
    struct Case {
        const char* seeing;
        int32_t choice;
    };
    for (const Case c : {Case{"777777777777777777777777777777777777777772", 0}, Case{"-1e300", 4}, Case{"6", 0},
                         Case{"0", 4}, Case{"2.7", 3}}) {
        std::string doc = kHandWritten;
        doc.replace(doc.find("<seeing>2</seeing>"), 18, std::string("<seeing>") + c.seeing + "</seeing>");
        std::vector<ObserverLog> logs;
        int skipped = 0;
        ASSERT_TRUE(logsFromOalDocument(doc, -420, logs, skipped)) << c.seeing;
        EXPECT_EQ(logs.at(0).seeing, c.choice) << c.seeing;
    }
}

TEST(OalExchange, RefusesWhatIsNotAnOalDocument) {
    const char* documents[] = {
        "",
        "<observations version=\"2.0\"></observations>",
        "<oal:observations xmlns:oal=\"http://groups.google.com/group/openastronomylog\">",
        "<oal:observations xmlns:oal=\"http://groups.google.com/group/openastronomylog\"></oal:observation>",
        "<!DOCTYPE x [<!ENTITY e \"boom\">]><x>&e;</x>",
        "<oal:observations xmlns:oal=\"http://groups.google.com/group/openastronomylog\"/>",
    };
    for (const char* doc : documents) {
        MessageCapture capture;
        std::vector<ObserverLog> logs;
        int skipped = 0;
        EXPECT_FALSE(logsFromOalDocument(doc, 0, logs, skipped)) << doc;
        EXPECT_EQ(capture.messages().size(), 1u) << doc;
    }
}

TEST(XmlReader, RefusesMalformedInputWithoutCrashing) {
    std::string deep;
    for (int i = 0; i < 100; ++i) deep += "<a>";
    const std::string documents[] = {"<a", "<a b=c/>", "<a>&unknown;</a>", "<a>&#0;</a>", "<a>&#x110000;</a>",
                                     "<a></b>", "<a/><b/>", "<a b=\"<\"/>", "<a><![CDATA[x</a>", deep, "<a>&#xD800;</a>"};
    for (const std::string& doc : documents) {
        XmlParseError error;
        EXPECT_FALSE(parseXml(doc, error)) << doc;
        EXPECT_FALSE(error.what.empty()) << doc;
    }
    XmlParseError error;
    const auto ok = parseXml("<?xml version='1.0'?><a x='1' y=\"&lt;2&gt;\">t&#233;<b/>xt</a>", error);
    ASSERT_TRUE(ok) << error.what;
    EXPECT_EQ((*ok)->text, "t\xC3\xA9xt");
    EXPECT_EQ(*(*ok)->attribute("y"), "<2>");
}

class OalFilesTest : public PlansFolderTest {};

TEST_F(OalFilesTest, ExportThenImportIntoAnotherFolder) {
    ASSERT_TRUE(saveObserverLog(sampleLog("M 13"), -1));
    ASSERT_TRUE(saveObserverLog(sampleLog("M 92"), -1));
    const std::string file = (home_ / "logs.oal").string();
    ASSERT_EQ(exportLogsToOal(file, 60), 2);
    const std::string before0 = readFile(home_ / "userlogs" / "M 13.log");
    std::filesystem::remove_all(home_ / "userlogs");
    ASSERT_EQ(importLogsFromOal(file, 60), 2);
    EXPECT_EQ(readFile(home_ / "userlogs" / "M 13.log"), before0) << "the record comes back byte for byte";
    MessageCapture capture;
    EXPECT_EQ(importLogsFromOal((home_ / "missing.oal").string(), 60), -1);
    EXPECT_EQ(importLogsFromOal(home_.string(), 60), -1) << "a folder is no OAL file";
    EXPECT_EQ(capture.messages().size(), 2u);
}

}  // namespace
}  // namespace nocturnel
