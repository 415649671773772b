// SPDX-License-Identifier: MIT
#include "tools/probe_options.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace tarnwick::probe {
namespace {

std::variant<Options, Help, UsageError> parsed(std::vector<std::string> words) {
    words.insert(words.begin(), "tarnwick-probe");
    std::vector<char*> arguments;
    for (std::string& word : words) {
        arguments.push_back(word.data());
    }
    arguments.push_back(nullptr);
    return parseOptions(static_cast<int>(words.size()), arguments.data());
}

Options accepted(const std::vector<std::string>& words) {
    const auto result = parsed(words);
    EXPECT_TRUE(std::holds_alternative<Options>(result));
    const auto* options = std::get_if<Options>(&result);
    return options ? *options : Options();
}

/// Empty when the words were accepted.
std::string complaint(const std::vector<std::string>& words) {
    const auto result = parsed(words);
    const auto* error = std::get_if<UsageError>(&result);
    return error ? error->message : "";
}

TEST(ProbeOptions, HaveDefaults) {
    const Options options = accepted({});
    EXPECT_EQ(options.format, Format::json);
    EXPECT_FALSE(options.all);
    EXPECT_EQ(options.thresholds, std::nullopt);
    EXPECT_EQ(options.root, "/");
    EXPECT_EQ(options.samples, 1);
    EXPECT_EQ(options.interval, 2);
    EXPECT_EQ(options.limit, 3);
    EXPECT_EQ(options.home, std::nullopt);
}

TEST(ProbeOptions, AreTakenInEitherForm) {
    const Options options = accepted(
        {"--root", "/usr", "--samples=7", "--interval", "0.25", "--limit=0", "--home=/srv/home"});
    EXPECT_EQ(options.root, "/usr");
    EXPECT_EQ(options.samples, 7);
    EXPECT_EQ(options.interval, 0.25);
    EXPECT_EQ(options.limit, 0);
    EXPECT_EQ(options.home, "/srv/home");
    EXPECT_EQ(accepted({"--interval", "5e-1"}).interval, 0.5);
}

TEST(ProbeOptions, ChooseTheFormat) {
    EXPECT_EQ(accepted({"--format=json"}).format, Format::json);
    const Options options =
        accepted({"--all", "--format", "prometheus", "--thresholds=/etc/limits.json"});
    EXPECT_EQ(options.format, Format::prometheus);
    EXPECT_TRUE(options.all);
    EXPECT_EQ(options.thresholds, "/etc/limits.json");
    EXPECT_EQ(accepted({"--format=openmetrics", "--all"}).format, Format::openMetrics);
    for (const char* format : {"xml", "", "JSON", "prometheus "}) {
        EXPECT_EQ(complaint({"--format", format}),
                  "--format takes json, prometheus, openmetrics, text or waybar");
    }
    EXPECT_EQ(complaint({"--format=prometheus", "--samples=2"}),
              "metrics are one text, so more than one sample goes with --output");
    EXPECT_EQ(accepted({"--format=prometheus", "--samples=0", "--output=a.prom"}).samples, 0);
    EXPECT_EQ(complaint({"--all"}), "--all goes with --format prometheus and openmetrics");
}

TEST(ProbeOptions, WatchAPage) {
    const Options options = accepted({"--watch", "--format=text"});
    EXPECT_EQ(options.format, Format::text);
    EXPECT_TRUE(options.watches);
    EXPECT_EQ(options.samples, 0);
    EXPECT_EQ(accepted({"--watch", "--format=text", "--samples=3"}).samples, 3);
    const std::string refusal = "--watch goes with --format text and without --output";
    EXPECT_EQ(complaint({"--watch"}), refusal);
    EXPECT_EQ(complaint({"--watch", "--format=text", "--output=page"}), refusal);
    EXPECT_EQ(accepted({"--format=waybar"}).format, Format::waybar);
}

TEST(ProbeOptions, NameAFile) {
    EXPECT_EQ(accepted({}).output, std::nullopt);
    EXPECT_EQ(accepted({"--output", "a.prom"}).output, "a.prom");
    EXPECT_EQ(complaint({"--output="}), "--output takes the name of a file");
    EXPECT_EQ(accepted({"--samples=0"}).samples, 0);
}

TEST(ProbeOptions, TakeASingleReading) {
    EXPECT_EQ(accepted({"--interval", "0"}).interval, 0);
    EXPECT_EQ(complaint({"--interval", "0", "--samples", "2"}),
              "--interval 0 goes with one sample");
}

TEST(ProbeOptions, RefuseUnknownWords) {
    EXPECT_EQ(complaint({"--sample-size", "3"}), "unknown option --sample-size");
    EXPECT_EQ(complaint({"--limit", "3", "-x"}), "unknown option -x");
    EXPECT_EQ(complaint({"now"}), "what is now for?");
    EXPECT_EQ(complaint({"--limit", "3", "now", "--bad"}), "what is now for?");
}

TEST(ProbeOptions, RefuseAMissingValue) {
    EXPECT_EQ(complaint({"--limit", "3", "--samples"}), "--samples needs a value");
}

TEST(ProbeOptions, RefuseNumbersOutOfRange) {
    for (const char* samples : {"-1", "1000001", "99999999999", "1.5", "3x", "x", ""}) {
        EXPECT_EQ(complaint({"--samples", samples}), "--samples takes a number from 0 to 1000000")
            << samples;
    }
    for (const char* interval : {"-0.1", "-1", "86401", "nan", "inf", "1s", "1 ", " 1", "+1", "0x1",
                                 "1e", "1e999", "0,5", ""}) {
        EXPECT_EQ(complaint({"--interval", interval}),
                  "--interval takes a number of seconds from 0 to 86400")
            << interval;
    }
    for (const char* limit : {"-1", "100001", "three", ""}) {
        EXPECT_EQ(complaint({"--limit", limit}), "--limit takes a number from 0 to 100000")
            << limit;
    }
}

TEST(ProbeOptions, KnowTheRootOfThisMachineInEveryForm) {
    for (const char* root : {"/", "//", "/./", "/usr/..", "/proc/self/root"}) {
        EXPECT_EQ(accepted({"--root", root}).root, "/") << root;
    }
}

TEST(ProbeOptions, RefuseARootThatIsNoFolder) {
    EXPECT_EQ(complaint({"--root", "/no/such/folder"}), "there is no folder /no/such/folder");
    EXPECT_EQ(complaint({"--root", "/proc/stat"}), "there is no folder /proc/stat");
    EXPECT_EQ(complaint({"--root", ""}), "there is no folder ");
}

TEST(ProbeOptions, RefuseARelativeHome) {
    EXPECT_EQ(complaint({"--home", "mine"}), "--home takes an absolute path");
}

TEST(ProbeOptions, TellOfThemselves) {
    const auto help = parsed({"--help"});
    ASSERT_TRUE(std::holds_alternative<Help>(help));
    for (const char* option : {"--format", "--all", "--thresholds", "--output", "--watch", "--root",
                               "--samples", "--interval", "--limit", "--home"}) {
        EXPECT_NE(std::get<Help>(help).text.find(option), std::string::npos) << option;
    }
    const auto version = parsed({"--version"});
    ASSERT_TRUE(std::holds_alternative<Help>(version));
    EXPECT_EQ(std::get<Help>(version).text, "tarnwick-probe " TARNWICK_VERSION "\n");
}

}  // namespace
}  // namespace tarnwick::probe
