// SPDX-License-Identifier: Apache-2.0
#include "json_report.h"

#include "octets_text.h"

namespace ptzctl::check {

namespace {

using nlohmann::ordered_json;

double millisecondsOf(std::chrono::microseconds time) {
    constexpr double kMicroseconds = 1000;
    return static_cast<double>(time.count()) / kMicroseconds;
}

ordered_json messagesJson(const std::vector<std::string> &messages) {
    ordered_json list = ordered_json::array();
    for (const std::string &octets : messages) {
        list.push_back(snmp::hexText(octets));
    }
    return list;
}

ordered_json jsonOfExchange(const Exchange &exchange, const std::string &target) {
    return {{"request", describe(exchange.request)},
            {"response", describeResponse(exchange)},
            {"repeat", repeatLine(exchange.request, target)},
            {"milliseconds", millisecondsOf(exchange.elapsed)},
            {"sent", messagesJson(exchange.sent)},
            {"received", messagesJson(exchange.received)}};
}

ordered_json jsonOfRule(const RuleOutcome &outcome, const std::string &target) {
    ordered_json result = {{"name", outcome.rule->name},
                           {"level", nameOf(outcome.rule->level)},
                           {"object", outcome.rule->object},
                           {"expectation", outcome.rule->expectation},
                           {"source", outcome.rule->source},
                           {"result", nameOf(outcome.finding.result)},
                           {"observation", outcome.finding.observation},
                           {"milliseconds", millisecondsOf(outcome.elapsed)},
                           {"details", ordered_json::array()},
                           {"evidence", ordered_json::array()}};
    for (const Detail &detail : outcome.finding.details) {
        result["details"].push_back(
            {{"object", detail.object}, {"result", nameOf(detail.result)}, {"observation", detail.observation}});
    }
    for (const Exchange *exchange : outcome.evidence) {
        result["evidence"].push_back(jsonOfExchange(*exchange, target));
    }
    return result;
}

ordered_json countsJson(const CheckReport &report) {
    ordered_json counts;
    for (const Result result :
         {Result::Pass, Result::Fail, Result::Differs, Result::NotEquipped, Result::Skipped, Result::Error}) {
        counts[nameOf(result)] = count(report, result);
    }
    return counts;
}

} // namespace

ordered_json jsonOf(const CheckReport &report) {
    ordered_json rules = ordered_json::array();
    for (const RuleOutcome &outcome : report.outcomes) {
        rules.push_back(jsonOfRule(outcome, report.target));
    }
    const Subject &subject = report.subject;
    return {{"schema", kSchema},
            {"disclaimer", kDisclaimer},
            {"time", report.time},
            {"subject", {{"make", subject.make}, {"model", subject.model}, {"version", subject.version}}},
            {"requests", report.requests},
            {"milliseconds", millisecondsOf(report.elapsed)},
            {"summary", countsJson(report)},
            {"rules", rules},
            {"troubles", report.troubles}};
}

} // namespace ptzctl::check
