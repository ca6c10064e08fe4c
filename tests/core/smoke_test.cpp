#include <gtest/gtest.h>
#include "shell/client.h"
#include "support/fakes.h"
using namespace kelpa;
TEST(Smoke, Builds) {
    test::FakePlatform fp;
    Client c(fp.platform);
    c.Form_Load();
    EXPECT_TRUE(fp.folder.read("CONN.ZIG").empty());
}
