// SPDX-License-Identifier: Apache-2.0
#include "runner.h"

#include <algorithm>
#include <ctime>
#include <iostream>

#include <fmt/chrono.h>
#include <fmt/format.h>

#include "object_oids.h"
#include "rules/expected.h"

namespace ptzctl::check {

namespace {

using std::chrono::steady_clock;

bool contains(const std::vector<std::string> &names, const std::string &name) {
    return std::find(names.begin(), names.end(), name) != names.end();
}

bool isAdmitted(const Rule &rule, const Options &options) {
    switch (rule.level) {
    case Level::Reads:
        return true;
    case Level::Writes:
        return options.writes || options.moves;
    case Level::Moves:
        return options.moves;
    case Level::Disruptive:
        break;
    }
    return contains(options.disruptive, rule.name);
}

const char *optionOf(Level level) {
    switch (level) {
    case Level::Writes:
        return "--writes";
    case Level::Moves:
        return "--moves";
    default:
        return "--disruptive";
    }
}

/** Returns the rules to report about. A rule named by the user is among them even if its level is not admitted. */
std::vector<const Rule *> selected(const Options &options) {
    std::vector<const Rule *> list;
    for (const Rule &rule : rules()) {
        if (options.only.empty() ? isAdmitted(rule, options) : contains(options.only, rule.name)) {
            list.push_back(&rule);
        }
    }
    return list;
}

/** Ends the check of a camera that answers nothing at all. */
void requireContact(Context &context) {
    for (const Request &request : {getRequest({oids::sysUpTime}), getNextRequest({oids::kCctvSubtree})}) {
        const Exchange &exchange = context.send(request);
        if (exchange.response || !exchange.received.empty()) {
            return;
        }
        if (exchange.failure && exchange.failure->cause() != snmp::Cause::NoAnswer) {
            throw snmp::Failure(*exchange.failure);
        }
    }
    throw snmp::Failure(*context.exchanges().back().failure);
}

std::string textOf(Context &context, const char *name) {
    try {
        return octetsOf(context, name).value_or("");
    } catch (const Undecided &) {
        return "";
    }
}

Finding judged(const Rule &rule, Context &context) {
    try {
        return rule.judge(context);
    } catch (const NotPossible &reason) {
        return {Result::Skipped, reason.what(), {}};
    } catch (const Undecided &error) {
        return {Result::Error, error.what(), {}};
    } catch (const snmp::Failure &failure) {
        return {Result::Error, failure.what(), {}};
    } catch (const std::invalid_argument &error) {
        return {Result::Error, error.what(), {}};
    }
}

/** The rules of one camera in their order. */
class Run {
public:
    Run(Context &context, CheckReport &report) : context_(context), report_(report) {}

    /** Reads the camera's statements about itself. */
    void introduce() {
        Subject &subject = report_.subject;
        try {
            subject.make = textOf(context_, "moduleMake");
            subject.model = textOf(context_, "moduleModel");
            subject.version = textOf(context_, "moduleVersion");
        } catch (const Ended &ended) {
            end_ = ended.what();
        }
    }

    void runAll() {
        const std::vector<const Rule *> list = selected(context_.options());
        for (const Rule *rule : list) {
            showProgress(report_.outcomes.size() + 1, list.size(), *rule);
            runRule(*rule);
        }
        clearProgress();
    }

private:
    void runRule(const Rule &rule) {
        context_.takeEvidence();
        const auto start = steady_clock::now();
        RuleOutcome outcome{&rule, find(rule), {}, {}};
        context_.restore();
        for (const std::string &trouble : context_.takeTroubles()) {
            report_.troubles.push_back(trouble);
        }
        outcome.elapsed = std::chrono::duration_cast<std::chrono::microseconds>(steady_clock::now() - start);
        outcome.evidence = context_.takeEvidence();
        report_.outcomes.push_back(std::move(outcome));
    }

    Finding find(const Rule &rule) {
        const Options &options = context_.options();
        if (contains(options.skip, rule.name)) {
            return {Result::Skipped, "excluded with --skip", {}};
        }
        if (!isAdmitted(rule, options)) {
            return {Result::Skipped, fmt::format("needs {}", optionOf(rule.level)), {}};
        }
        if (!end_.empty() && !rule.judgesResponses) {
            return {Result::Skipped, end_, {}};
        }
        try {
            return judged(rule, context_);
        } catch (const Ended &ended) {
            end_ = fmt::format("{} since {}", ended.what(), rule.name);
            return {Result::Error, ended.what(), {}};
        }
    }

    void showProgress(std::size_t number, std::size_t all, const Rule &rule) const {
        if (context_.options().progress) {
            std::cerr << fmt::format("\r\033[K[{}/{}] {}", number, all, rule.name) << std::flush;
        }
    }

    void clearProgress() const {
        if (context_.options().progress) {
            std::cerr << "\r\033[K" << std::flush;
        }
    }

    Context &context_;
    CheckReport &report_;
    std::string end_; ///< reason why nothing more is sent; empty at first
};

} // namespace

CheckReport runRules(Context &context) {
    CheckReport report;
    report.time = fmt::format("{:%Y-%m-%dT%H:%M:%SZ}", fmt::gmtime(std::time(nullptr)));
    const auto start = steady_clock::now();
    requireContact(context);
    Run run(context, report);
    report.subject.host = context.host();
    report.target =
        context.options().credentials + (context.options().credentials.empty() ? "" : " ") + shellWord(context.host());
    run.introduce();
    run.runAll();
    report.requests = context.exchanges().size();
    report.elapsed = std::chrono::duration_cast<std::chrono::microseconds>(steady_clock::now() - start);
    return report;
}

} // namespace ptzctl::check
