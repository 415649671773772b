// SPDX-License-Identifier: MIT
#include "tools/exposition.h"

#include <gtest/gtest.h>
#include <limits>

namespace tarnwick::probe {
namespace {

std::string written(Exposition::Format format) {
    Exposition text(format);
    text.info("machine", "What it is.");
    text.sample(1, {{"model", "A"}});
    text.gauge("used_bytes", "bytes", "In use.");
    text.sample(1.5);
    text.sample(1e300, {{"a", "1"}, {"b", "2"}});
    return text.finish();
}

TEST(Exposition, IsTextOfPrometheus) {
    EXPECT_EQ(written(Exposition::Format::prometheus),
              "# HELP machine_info What it is.\n"
              "# TYPE machine_info gauge\n"
              "machine_info{model=\"A\"} 1\n"
              "# HELP used_bytes In use.\n"
              "# TYPE used_bytes gauge\n"
              "used_bytes 1.5\n"
              "used_bytes{a=\"1\",b=\"2\"} 1e+300\n");
}

TEST(Exposition, IsTextOfOpenMetrics) {
    EXPECT_EQ(written(Exposition::Format::openMetrics),
              "# HELP machine What it is.\n"
              "# TYPE machine info\n"
              "machine_info{model=\"A\"} 1\n"
              "# HELP used_bytes In use.\n"
              "# TYPE used_bytes gauge\n"
              "# UNIT used_bytes bytes\n"
              "used_bytes 1.5\n"
              "used_bytes{a=\"1\",b=\"2\"} 1e+300\n"
              "# EOF\n");
}

TEST(Exposition, WritesNumbersInAsFewDigitsAsReadTheSame) {
    Exposition text(Exposition::Format::prometheus);
    text.gauge("x", "", "X.");
    for (const double value : {0.1, 1.0 / 3, -2.5, 5368709120.0, 8190.4400000572205}) {
        text.sample(value);
    }
    EXPECT_EQ(text.finish(),
              "# HELP x X.\n# TYPE x gauge\nx 0.1\nx 0.3333333333333333\nx -2.5\nx 5368709120\n"
              "x 8190.4400000572205\n");
}

TEST(Exposition, EscapesLabels) {
    Exposition text(Exposition::Format::prometheus);
    text.gauge("x", "", "X.");
    text.sample(0, {{"name", "a\\b\"c\nd\xff\xC3\xA9"}});
    EXPECT_EQ(text.finish(),
              "# HELP x X.\n# TYPE x gauge\nx{name=\"a\\\\b\\\"c\\nd\uFFFD\u00E9\"} 0\n");
}

TEST(Exposition, LeavesOutWhatIsUnknown) {
    Exposition text(Exposition::Format::prometheus);
    text.gauge("x", "", "X.");
    text.sample(std::numeric_limits<double>::quiet_NaN());
    text.sample(std::numeric_limits<double>::infinity());
    text.gauge("y", "", "Y.");
    EXPECT_EQ(text.finish(), "");
}

}  // namespace
}  // namespace tarnwick::probe
