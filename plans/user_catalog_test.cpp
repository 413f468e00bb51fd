#include "plans/user_catalog.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "settings/message.h"

namespace nocturnel {
namespace {

// Names the record could not hold as written are refused with the line, not stored cut.
TEST(UserCatalogCsv, NameWithANulIsRefused) {
    using namespace std::string_literals;
    for (const std::string& csv : {"\"\0dd, name\",12.5,45,GALXY,,\n"s, "ab\0cd,1,1\n"s, "\0,1,1\n"s}) {
        MessageCapture capture;
        std::vector<ObjectRecord> records;
        EXPECT_FALSE(readUserCatalogCsv(csv, records)) << csv;
        EXPECT_TRUE(capture.shown("Can't import the user catalogue")) << csv;
    }
    std::vector<ObjectRecord> records;
    ASSERT_TRUE(readUserCatalogCsv("Garden,05:35:00,-05:20:00,Open Cluster,6.5,20\n", records));
    EXPECT_STREQ(records.at(0).name, "Garden");
}

}  // namespace
}  // namespace nocturnel
