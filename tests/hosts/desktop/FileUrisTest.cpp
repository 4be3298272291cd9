#include "hosts/linux/desktop/FileUris.h"

#include <gtest/gtest.h>

namespace velloway::test {
namespace {

TEST(FileUris, WriteAPathByteForByteAndReadItBack) {
    for (const char* path : {"/plain", "/with space/ä", "/100%/#?&;", "/not utf-8 \xff\xfe", "/new\nline"}) {
        EXPECT_EQ(pathOfFileUri(fileUri(path)), path);
    }
    EXPECT_EQ(fileUri("/a b/%#?ä"), "file:///a%20b/%25%23%3F%C3%A4");
}

TEST(FileUris, ReadTheUsualForms) {
    EXPECT_EQ(pathOfFileUri("file:///tmp/a"), "/tmp/a");
    EXPECT_EQ(pathOfFileUri("file://localhost/tmp/a"), "/tmp/a");
    EXPECT_EQ(pathOfFileUri("file:/tmp/a"), "/tmp/a");
    EXPECT_EQ(pathOfFileUri("FILE:///tmp/a"), "/tmp/a");
    EXPECT_EQ(pathOfFileUri("file:///tmp/a?query#part"), "/tmp/a");
}

TEST(FileUris, RefuseWhatIsNoFileOfThisComputer) {
    for (const char* uri : {"", "file", "file:", "file://", "file:tmp/a", "https://x/y", "/tmp/a",
                            "file://other.host/tmp/a", "file:///tmp/%00a"}) {
        EXPECT_EQ(pathOfFileUri(uri), std::nullopt) << uri;
    }
}

} // namespace
} // namespace velloway::test
