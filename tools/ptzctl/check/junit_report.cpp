// SPDX-License-Identifier: Apache-2.0
#include <fmt/format.h>

#include "check/markup.h"
#include "check/report_files.h"

namespace ptzctl::check {

namespace {

using nlohmann::ordered_json;

std::string attribute(const char *name, const std::string &value) {
    return fmt::format(" {}=\"{}\"", name, markup(value));
}

std::string seconds(const ordered_json &object) {
    return fmt::format("{:.3f}", object.value("milliseconds", 0.0) / 1000);
}

/** Numbers of test cases as JUnit counts them. */
struct Counts {
    std::size_t tests = 0;
    std::size_t failures = 0;
    std::size_t errors = 0;
    std::size_t skipped = 0;

    void add(const std::string &result) {
        ++tests;
        failures += result == "fail" ? 1U : 0U;
        errors += result == "error" ? 1U : 0U;
        skipped += result == "skipped" || result == "not-equipped" ? 1U : 0U;
    }

    Counts &operator+=(const Counts &other) {
        tests += other.tests;
        failures += other.failures;
        errors += other.errors;
        skipped += other.skipped;
        return *this;
    }

    std::string attributes() const {
        return fmt::format(R"( tests="{}" failures="{}" errors="{}")", tests, failures, errors);
    }
};

/** Everything about a rule that a reader of a failure needs. */
std::string explanation(const ordered_json &rule) {
    std::string text = fmt::format("expected: {}\nsource: {}\nobserved: {}\n", textAt(rule, "expectation"),
                                   textAt(rule, "source"), textAt(rule, "observation"));
    for (const ordered_json &detail : rule.value("details", ordered_json::array())) {
        text += fmt::format("{}: {}: {}\n", textAt(detail, "object"), textAt(detail, "result"),
                            textAt(detail, "observation"));
    }
    for (const ordered_json &exchange : rule.value("evidence", ordered_json::array())) {
        text += fmt::format("{}\n  -> {}\n  $ {}\n", textAt(exchange, "request"), textAt(exchange, "response"),
                            textAt(exchange, "repeat"));
    }
    return text;
}

std::string outcomeElement(const ordered_json &rule) {
    const std::string result = textAt(rule, "result");
    const std::string message = attribute("message", textAt(rule, "observation"));
    if (result == "skipped") {
        return fmt::format("      <skipped{}/>\n", message);
    }
    if (result == "not-equipped") {
        return fmt::format("      <skipped{}/>\n",
                           attribute("message", "not equipped: " + textAt(rule, "observation")));
    }
    if (result == "fail" || result == "error") {
        const char *const name = result == "fail" ? "failure" : "error";
        return fmt::format("      <{0}{1}{2}>{3}</{0}>\n", name, message, attribute("type", textAt(rule, "name")),
                           markup(explanation(rule)));
    }
    return "";
}

std::string testCase(const ordered_json &rule) {
    const std::string result = textAt(rule, "result");
    std::string body = outcomeElement(rule);
    if (result != "fail" && result != "error") {
        body +=
            fmt::format("      <system-out>{}</system-out>\n", markup("result: " + result + "\n" + explanation(rule)));
    }
    return fmt::format("    <testcase{}{}{}>\n{}    </testcase>\n", attribute("name", textAt(rule, "name")),
                       attribute("classname", "ptzctl.check." + textAt(rule, "level")),
                       attribute("time", seconds(rule)), body);
}

/** The test case of a camera without a report. */
std::string failedCamera(const ordered_json &error) {
    return fmt::format("    <testcase{}{}{}>\n      <error{}{}/>\n    </testcase>\n", attribute("name", "contact"),
                       attribute("classname", "ptzctl.check"), attribute("time", "0.000"),
                       attribute("message", textAt(error, "text")), attribute("type", "contact"));
}

std::string properties(const ordered_json &report) {
    std::string list;
    const ordered_json subject = report.value("subject", ordered_json::object());
    for (const char *name : {"make", "model", "version"}) {
        list +=
            fmt::format("      <property{}{}/>\n", attribute("name", name), attribute("value", textAt(subject, name)));
    }
    list += fmt::format("      <property{}{}/>\n", attribute("name", "disclaimer"),
                        attribute("value", textAt(report, "disclaimer")));
    return "    <properties>\n" + list + "    </properties>\n";
}

std::string suite(const ordered_json &report, Counts &all) {
    Counts counts;
    std::string cases;
    for (const ordered_json &rule : report.value("rules", ordered_json::array())) {
        counts.add(textAt(rule, "result"));
        cases += testCase(rule);
    }
    if (!report.contains("rules") && report.contains("error")) {
        counts.add("error");
        cases += failedCamera(report.at("error"));
    }
    all += counts;
    std::string time = textAt(report, "time");
    if (!time.empty() && time.back() == 'Z') {
        time.pop_back(); // readers of these files expect no time zone
    }
    const std::string timestamp = time.empty() ? "" : attribute("timestamp", time);
    return fmt::format("  <testsuite{}{}{} skipped=\"{}\"{}>\n{}{}  </testsuite>\n",
                       attribute("name", textAt(report, "host")), timestamp, counts.attributes(), counts.skipped,
                       attribute("time", seconds(report)), properties(report), cases);
}

} // namespace

std::string junitOf(const CameraReports &reports) {
    Counts all;
    std::string suites;
    for (const ordered_json &report : reports) {
        suites += suite(report, all);
    }
    return fmt::format("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<testsuites name=\"ptzctl check\"{}>\n{}"
                       "</testsuites>\n",
                       all.attributes(), suites);
}

} // namespace ptzctl::check
