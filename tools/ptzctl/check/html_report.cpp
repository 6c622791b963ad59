// SPDX-License-Identifier: Apache-2.0
#include <array>
#include <map>

#include <fmt/format.h>

#include "check/html_style.h"
#include "check/markup.h"
#include "check/report_files.h"

namespace ptzctl::check {

namespace {

using nlohmann::ordered_json;

/** A result as people read it. */
struct ResultWord {
    const char *result;
    const char *word;
    const char *mark; ///< distinguishes it without colours
};

constexpr std::array<ResultWord, 6> kResults = {{{"fail", "fail", "✗"},
                                                 {"error", "error", "!"},
                                                 {"differs", "differs", "≠"},
                                                 {"pass", "pass", "✓"},
                                                 {"not-equipped", "not equipped", "–"},
                                                 {"skipped", "skipped", "○"}}};

struct LevelTitle {
    const char *level;
    const char *title;
};

constexpr std::array<LevelTitle, 4> kLevels = {{{"read", "Rules that only read"},
                                                {"writes", "Rules that write"},
                                                {"moves", "Rules that move the camera"},
                                                {"disruptive", "Rules that disrupt the camera’s work"}}};

/** Returns a known word for a result, since it becomes the name of a class. */
const ResultWord &wordOf(const std::string &result) {
    for (const ResultWord &word : kResults) {
        if (result == word.result) {
            return word;
        }
    }
    return kResults[1];
}

std::string badge(const std::string &result) {
    const ResultWord &word = wordOf(result);
    return fmt::format(R"(<span class="badge {}"><span aria-hidden="true">{}</span> {}</span>)", word.result, word.mark,
                       word.word);
}

bool isOrdinary(const std::string &result) {
    return result == "pass" || result == "not-equipped" || result == "skipped";
}

/** Writes the objects that did not pass; those that did are counted in the observation. */
std::string detailsList(const ordered_json &rule) {
    std::string items;
    for (const ordered_json &detail : rule.value("details", ordered_json::array())) {
        const std::string result = textAt(detail, "result");
        if (!isOrdinary(result)) {
            items += fmt::format("<li><code>{}</code> {}: {}</li>\n", markup(textAt(detail, "object")),
                                 wordOf(result).word, markup(textAt(detail, "observation")));
        }
    }
    return items.empty() ? "" : "<ul>\n" + items + "</ul>\n";
}

/** Writes the requests of a rule that did not pass, with the line that repeats each. */
std::string evidence(const ordered_json &rule) {
    constexpr std::size_t kMost = 4;
    const ordered_json list = rule.value("evidence", ordered_json::array());
    if (isOrdinary(textAt(rule, "result")) || list.empty()) {
        return "";
    }
    std::string text;
    for (std::size_t i = 0; i < list.size() && i < kMost; ++i) {
        text += fmt::format("<pre>{}\n→ {}\n$ {}</pre>\n", markup(textAt(list[i], "request")),
                            markup(textAt(list[i], "response")), markup(textAt(list[i], "repeat")));
    }
    if (list.size() > kMost) {
        text += fmt::format("<p class=\"more\">and {} more requests</p>\n", list.size() - kMost);
    }
    return text;
}

std::string row(const ordered_json &rule) {
    const std::string result = textAt(rule, "result");
    return fmt::format("<tr class=\"{}\">\n<td>{}</td>\n<th scope=\"row\"><code>{}</code><p>{}</p></th>\n<td>{}</td>\n"
                       "<td class=\"object\">{}</td>\n<td>{}{}{}</td>\n</tr>\n",
                       wordOf(result).result, badge(result), markup(textAt(rule, "name")),
                       markup(textAt(rule, "expectation")), markup(textAt(rule, "source")),
                       markup(textAt(rule, "object")), markup(textAt(rule, "observation")), detailsList(rule),
                       evidence(rule));
}

std::string tables(const ordered_json &report) {
    std::string text;
    for (const LevelTitle &level : kLevels) {
        std::string rows;
        for (const ordered_json &rule : report.value("rules", ordered_json::array())) {
            rows += textAt(rule, "level") == level.level ? row(rule) : "";
        }
        if (!rows.empty()) {
            text += fmt::format("<table>\n<caption>{}</caption>\n<thead><tr><th>Result</th><th>Rule and "
                                "expectation</th><th>Clause or source</th><th>Object</th><th>Observation and "
                                "evidence</th></tr></thead>\n<tbody>\n{}</tbody>\n</table>\n",
                                level.title, rows);
        }
    }
    return text;
}

std::string counts(const ordered_json &report) {
    std::map<std::string, std::size_t> numbers;
    for (const ordered_json &rule : report.value("rules", ordered_json::array())) {
        ++numbers[wordOf(textAt(rule, "result")).result];
    }
    std::string items;
    for (const ResultWord &word : kResults) {
        const std::size_t number = numbers[word.result];
        items += fmt::format("<li class=\"{}{}\"><b>{}</b> {}</li>\n", word.result, number == 0 ? " none" : "", number,
                             word.word);
    }
    return "<ul class=\"counts\">\n" + items + "</ul>\n";
}

std::string facts(const ordered_json &report) {
    const ordered_json subject = report.value("subject", ordered_json::object());
    const std::string requests =
        fmt::format("{} requests in {:.1f} s", report.value("requests", 0), report.value("milliseconds", 0.0) / 1000);
    std::string items;
    for (const auto &[term, text] : {std::pair<const char *, std::string>{"Make", textAt(subject, "make")},
                                     {"Model", textAt(subject, "model")},
                                     {"Version", textAt(subject, "version")},
                                     {"Time", textAt(report, "time")},
                                     {"Traffic", requests}}) {
        items += fmt::format("<div><dt>{}</dt><dd>{}</dd></div>\n", term, text.empty() ? "–" : markup(text));
    }
    return "<dl>\n" + items + "</dl>\n";
}

std::string section(const ordered_json &report) {
    const std::string heading = fmt::format("<section>\n<h2>{}</h2>\n", markup(textAt(report, "host")));
    std::string error;
    if (report.contains("error")) {
        error = fmt::format("<p class=\"trouble\">{}</p>\n", markup(textAt(report.at("error"), "text")));
    }
    if (!report.contains("rules")) {
        return heading + error + "</section>\n";
    }
    return heading + facts(report) + error + counts(report) + tables(report) + "</section>\n";
}

} // namespace

std::string htmlOf(const CameraReports &reports) {
    std::string sections;
    std::string disclaimer;
    for (const ordered_json &report : reports) {
        sections += section(report);
        disclaimer = disclaimer.empty() ? textAt(report, "disclaimer") : disclaimer;
    }
    const std::string title = reports.size() == 1 ? "Check of " + markup(textAt(reports.front(), "host"))
                                                  : fmt::format("Check of {} cameras", reports.size());
    return fmt::format("<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
                       "<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; style-src "
                       "'unsafe-inline'\">\n"
                       "<meta name=\"viewport\" content=\"width=device-width\">\n<meta name=\"color-scheme\" "
                       "content=\"light dark\">\n<title>{}</title>\n<style>\n{}</style>\n</head>\n<body>\n"
                       "<header>\n<h1>Camera check</h1>\n<p>{}</p>\n</header>\n{}</body>\n</html>\n",
                       title, kHtmlStyle, markup(disclaimer), sections);
}

} // namespace ptzctl::check
