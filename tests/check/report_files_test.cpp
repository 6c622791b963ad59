// SPDX-License-Identifier: Apache-2.0
// Reports as files: valid for any octets that a camera sends.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "check/markup.h"
#include "check/report_files.h"
#include "process.h"
#include "temporary_directory.h"

namespace {

using nlohmann::ordered_json;
using ptzctl::check::CameraReports;
using testing::HasSubstr;
using testing::Not;

ordered_json ruleWith(const std::string &result, const std::string &text) {
    return {{"name", "rule-" + result},
            {"level", "read"},
            {"object", text},
            {"expectation", text},
            {"source", text},
            {"result", result},
            {"observation", text},
            {"milliseconds", 12.5},
            {"details", {{{"object", text}, {"result", result}, {"observation", text}}}},
            {"evidence", {{{"request", text}, {"response", text}, {"repeat", text}}}}};
}

/** A report with each result, and with a text at every place that a camera or a user fills. */
ordered_json reportWith(const std::string &text) {
    ordered_json report = {{"host", text},
                           {"subject", {{"make", text}, {"model", text}, {"version", text}}},
                           {"disclaimer", "certifies nothing"},
                           {"time", "2026-03-12T10:00:00Z"},
                           {"requests", 7},
                           {"milliseconds", 1250},
                           {"rules", ordered_json::array()}};
    for (const char *result : {"pass", "fail", "differs", "not-equipped", "skipped", "error"}) {
        report["rules"].push_back(ruleWith(result, text));
    }
    return report;
}

CameraReports everything(const std::string &text) {
    return {reportWith(text), {{"host", text}, {"error", {{"code", 3}, {"text", text}}}}};
}

struct Text {
    const char *what;
    std::string octets;
};

std::vector<Text> hostileTexts() {
    std::string all;
    for (int octet = 0; octet < 256; ++octet) {
        all += static_cast<char>(octet);
    }
    return {{"all octets", all},
            {"markup", "<b a='1' c=\"2\">&amp;]]><!--"},
            {"truncated UTF-8", "a\xF0\x9F"},
            {"overlong UTF-8", "\xC0\xAF\xE0\x80\xAF"},
            {"surrogate", "\xED\xA0\x80"},
            {"noncharacter", "\xEF\xBF\xBE\xEF\xBF\xBF"},
            {"beyond Unicode", "\xF4\x90\x80\x80"},
            {"escape sequence", "\x1B[2J\x1B]0;title\x07"},
            {"line breaks", "a\nb\rc"},
            {"other direction", "\xE2\x80\xAE"
                                "abc"},
            {"format string", "{} {0} %s %n"}};
}

support::CommandResult validated(const std::string &xml) {
    const support::TemporaryDirectory directory;
    directory.write("report.xml", xml);
    return support::runCommand(
        {"xmllint", "--noout", "--nonet", "--schema", CHECK_JUNIT_SCHEMA, directory.file("report.xml")});
}

} // namespace

TEST(JUnitReport, IsValidForAnyOctets) {
    for (const Text &text : hostileTexts()) {
        const std::string xml = ptzctl::check::junitOf(everything(text.octets));
        const support::CommandResult result = validated(xml);
        EXPECT_EQ(result.status.code, 0) << text.what << "\n" << result.errors << xml;
    }
}

TEST(JUnitReport, TheSchemaRefusesWhatReadersDoNotKnow) {
    std::string xml = ptzctl::check::junitOf({reportWith("text")});
    EXPECT_EQ(validated(xml).status.code, 0) << xml;
    xml.replace(xml.find("<skipped"), 8, "<omitted");
    EXPECT_NE(validated(xml).status.code, 0);
}

TEST(JUnitReport, HasACaseForEachRuleAndCountsThem) {
    const std::string xml = ptzctl::check::junitOf({reportWith("text")});
    EXPECT_THAT(xml, HasSubstr(R"(tests="6" failures="1" errors="1" skipped="2" time="1.250")"));
    EXPECT_THAT(xml, HasSubstr(R"(<testcase name="rule-pass" classname="ptzctl.check.read" time="0.013">)"));
    EXPECT_THAT(xml, HasSubstr(R"(<skipped message="not equipped: text"/>)"));
    EXPECT_THAT(xml, HasSubstr(R"(<failure message="text" type="rule-fail">expected: text)"));
    EXPECT_THAT(xml, HasSubstr(R"(timestamp="2026-03-12T10:00:00")"));
}

TEST(JUnitReport, ACameraWithoutAReportIsAnError) {
    const std::string xml = ptzctl::check::junitOf({{{"host", "h"}, {"error", {{"code", 3}, {"text", "no answer"}}}}});
    EXPECT_THAT(xml, HasSubstr(R"(<error message="no answer" type="contact"/>)"));
}

TEST(HtmlReport, HoldsAnyOctetsAsText) {
    for (const Text &text : hostileTexts()) {
        const std::string html = ptzctl::check::htmlOf(everything(text.octets));
        for (const char control : {'\0', '\x1B', '\r', '\x7F'}) {
            EXPECT_EQ(html.find(control), std::string::npos) << text.what;
        }
        EXPECT_THAT(html, Not(HasSubstr("<b a"))) << text.what;
        // A page that is well-formed in its tables has kept every text inside its element.
        const support::TemporaryDirectory directory;
        directory.write("page.xml", html.substr(html.find("<body>"), html.find("</html>") - html.find("<body>")));
        const support::CommandResult result = support::runCommand({"xmllint", "--noout", directory.file("page.xml")});
        EXPECT_EQ(result.status.code, 0) << text.what << "\n" << result.errors;
    }
}

TEST(HtmlReport, HasNeitherScriptsNorOtherFiles) {
    const std::string html = ptzctl::check::htmlOf(everything("text"));
    for (const char *sign : {"<script", "javascript:", "http:", "https:", "src=", "href=", "url("}) {
        EXPECT_THAT(html, Not(HasSubstr(sign)));
    }
}

TEST(Markup, ShowsControlCharactersAndKeepsText) {
    EXPECT_EQ(ptzctl::check::markup("a\tb\x1B[1m"), "a\\x09b\\x1B[1m");
    EXPECT_EQ(ptzctl::check::markup("90.00\xC2\xB0 \xE2\x80\x93 \xF0\x9F\x8E\xA5"),
              "90.00\xC2\xB0 \xE2\x80\x93 \xF0\x9F\x8E\xA5");
    EXPECT_EQ(ptzctl::check::markup("\xC2\x9B"
                                    "2J"),
              "\\x9B2J");
    EXPECT_EQ(ptzctl::check::markup("\xFF<"), "\xEF\xBF\xBD&lt;");
}
