// SPDX-License-Identifier: Apache-2.0
#include "text_report.h"

#include <algorithm>
#include <iterator>
#include <sstream>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include "octets_text.h"
#include "style.h"

namespace ptzctl::check {

namespace {

constexpr std::size_t kResultWidth = 14;
constexpr std::size_t kLineWidth = 100;
constexpr std::size_t kMostDetails = 12;

std::string marked(Result result, const std::string &text, const Style &style) {
    if (isTrouble(result)) {
        return style.trouble(text);
    }
    if (result == Result::Differs) {
        return style.active(text);
    }
    return result == Result::Pass ? text : style.faint(text);
}

/** Pads a text to a column. */
std::string padded(const std::string &text, std::size_t width) {
    const std::size_t used = displayWidth(text);
    return text + std::string(used < width ? width - used : 1, ' ');
}

/** Wraps words with a separator in between, with an indentation of all lines. */
std::string wrapped(const std::vector<std::string> &words, const std::string &separator, std::size_t indentation) {
    std::string text;
    std::string line;
    for (const std::string &word : words) {
        if (!line.empty() && indentation + line.size() + word.size() + separator.size() > kLineWidth) {
            text += std::string(indentation, ' ') + line + "\n";
            line.clear();
        }
        line += (line.empty() ? "" : " ") + word + (&word == &words.back() ? "" : separator);
    }
    return line.empty() ? text : text + std::string(indentation, ' ') + line + "\n";
}

std::vector<std::string> wordsOf(const std::string &text) {
    std::istringstream stream(text);
    return {std::istream_iterator<std::string>(stream), std::istream_iterator<std::string>()};
}

bool isNotable(const Detail &detail) {
    return detail.result == Result::Differs || isTrouble(detail.result);
}

/** Octets in hexadecimal, in lines. */
std::string octetLines(const char *title, const std::string &octets) {
    constexpr std::size_t kPerLine = 32;
    std::string text;
    for (std::size_t start = 0; start < octets.size(); start += kPerLine) {
        text +=
            fmt::format("        {:<9}{}\n", start == 0 ? title : "", snmp::hexText(octets.substr(start, kPerLine)));
    }
    return text;
}

std::string evidenceText(const RuleOutcome &outcome, const CheckReport &report, const Style &style) {
    std::string text;
    for (const Exchange *exchange : outcome.evidence) {
        text += "      " + style.heading(snmp::printable(describe(exchange->request))) + "\n";
        text += fmt::format("        answer   {} ({:.1f} ms)\n", snmp::printable(describeResponse(*exchange)),
                            static_cast<double>(exchange->elapsed.count()) / 1000);
        for (const std::string &octets : exchange->sent) {
            text += octetLines("sent", octets);
        }
        for (const std::string &octets : exchange->received) {
            text += octetLines("received", octets);
        }
        text += "        repeat   " + repeatLine(exchange->request, report.target) + "\n";
    }
    return text;
}

std::string detailLines(const std::vector<Detail> &notable, const Style &style) {
    std::string text;
    for (std::size_t i = 0; i < notable.size() && i < kMostDetails; ++i) {
        const Detail &detail = notable[i];
        text += std::string(kResultWidth + 2, ' ') +
                marked(detail.result, snmp::printable(detail.object + ": " + detail.observation), style) + "\n";
    }
    if (notable.size() > kMostDetails) {
        text += std::string(kResultWidth + 2, ' ') + fmt::format("and {} more\n", notable.size() - kMostDetails);
    }
    return text;
}

/** Writes a rule in one line, and the details, the expectation and the evidence below. */
std::string ruleText(const RuleOutcome &outcome, const CheckReport &report, const Settings &settings,
                     std::size_t nameWidth) {
    const Style &style = settings.style;
    const Finding &finding = outcome.finding;
    std::vector<Detail> notable;
    std::copy_if(finding.details.begin(), finding.details.end(), std::back_inserter(notable), isNotable);
    const bool inOneLine = notable.size() < 2;
    const std::string observation =
        inOneLine ? finding.observation : fmt::format("{} of {}", notable.size(), finding.details.size());
    std::string text = padded(marked(finding.result, nameOf(finding.result), style), kResultWidth) +
                       padded(outcome.rule->name, nameWidth) + snmp::printable(observation) + "\n";
    text += inOneLine ? "" : detailLines(notable, style);
    if (isTrouble(finding.result)) {
        text += std::string(kResultWidth + 2, ' ') +
                style.faint(fmt::format("expected: {} ({})", outcome.rule->expectation, outcome.rule->source)) + "\n";
    }
    return settings.verbose ? text + evidenceText(outcome, report, style) : text;
}

std::string heading(const CheckReport &report, const Style &style) {
    const Subject &subject = report.subject;
    std::vector<std::string> words;
    for (const std::string &word : {subject.make, subject.model, subject.version}) {
        if (!word.empty()) {
            words.push_back(snmp::printable(word));
        }
    }
    const std::string camera = words.empty() ? "a camera without a name" : fmt::format("{}", fmt::join(words, ", "));
    return style.heading(fmt::format("Check of {}", report.subject.host)) + "\n" + camera + "\n" + report.time + "\n\n";
}

std::vector<std::string> namesWith(const CheckReport &report, Result result) {
    std::vector<std::string> names;
    for (const RuleOutcome &outcome : report.outcomes) {
        if (outcome.finding.result == result) {
            names.push_back(outcome.rule->name);
        }
    }
    return names;
}

/** Writes the rules of a result in one paragraph. */
std::string paragraph(const CheckReport &report, Result result, const std::string &title, const Style &style) {
    const std::vector<std::string> names = namesWith(report, result);
    if (names.empty()) {
        return "";
    }
    std::string lines = wrapped(names, ",", kResultWidth);
    lines.replace(0, kResultWidth, padded(marked(result, title, style), kResultWidth));
    return lines;
}

std::string ending(const CheckReport &report, const Settings &settings) {
    const Style &style = settings.style;
    std::string text = fmt::format("\n{}; {} requests in {:.1f} s\n", summaryText(report), report.requests,
                                   static_cast<double>(report.elapsed.count()) / 1e6);
    text += paragraph(report, Result::Fail, "failed", style);
    text += paragraph(report, Result::Error, "errors", style);
    for (const std::string &trouble : report.troubles) {
        text += style.trouble("NOT RESTORED  ") + snmp::printable(trouble) + "\n";
    }
    return text + "\n" + wrapped(wordsOf(kDisclaimer), "", 0);
}

} // namespace

std::string textOf(const CheckReport &report, const Settings &settings) {
    std::size_t nameWidth = 0;
    for (const RuleOutcome &outcome : report.outcomes) {
        nameWidth = std::max(nameWidth, outcome.rule->name.size() + 2);
    }
    std::string text = heading(report, settings.style);
    for (const RuleOutcome &outcome : report.outcomes) {
        // Those of missing equipment make one paragraph below.
        if (settings.verbose || outcome.finding.result != Result::NotEquipped) {
            text += ruleText(outcome, report, settings, nameWidth);
        }
    }
    if (!settings.verbose) {
        text += paragraph(report, Result::NotEquipped, nameOf(Result::NotEquipped), settings.style);
    }
    return text + ending(report, settings);
}

std::string ruleList(bool json) {
    std::vector<std::vector<std::string>> rows = {{"RULE", "LEVEL", "EXPECTATION", "SOURCE"}};
    nlohmann::ordered_json list = nlohmann::ordered_json::array();
    for (const Rule &rule : rules()) {
        rows.push_back({rule.name, nameOf(rule.level), rule.expectation, rule.source});
        list.push_back({{"name", rule.name},
                        {"level", nameOf(rule.level)},
                        {"object", rule.object},
                        {"expectation", rule.expectation},
                        {"source", rule.source}});
    }
    return json ? list.dump(2) + "\n" : alignedRows(rows);
}

} // namespace ptzctl::check
