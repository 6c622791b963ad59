// SPDX-License-Identifier: Apache-2.0
#include "command.h"

#include <memory>
#include <stdexcept>

#include <fmt/format.h>

#include "check/context.h"
#include "check/interruption.h"
#include "check/json_report.h"
#include "check/report_files.h"
#include "check/runner.h"
#include "check/text_report.h"

namespace ptzctl::check {

namespace {

/** Writes the user's credentials as options of the Net-SNMP programs, which read passphrases from snmp.conf. */
std::string credentialOptions(const snmp::Credentials &credentials) {
    std::string text;
    const auto add = [&text](const char *option, const std::string &value) {
        if (!value.empty()) {
            text += (text.empty() ? "" : " ") + std::string(option) + " " + shellWord(value);
        }
    };
    const bool hasUser = !credentials.user.empty();
    const std::string version = hasUser ? "3" : credentials.community.empty() ? "" : "2c";
    add("-v", credentials.version.empty() ? version : credentials.version);
    add("-c", credentials.community);
    add("-u", credentials.user);
    add("-l", credentials.level);
    add("-a", credentials.authentication);
    add("-x", credentials.privacy);
    return text;
}

std::string counted(std::size_t number, const char *one, const char *many) {
    return std::to_string(number) + " " + (number == 1 ? one : many);
}

/** Ends the program with a failure unless nothing failed. */
void requireSuccess(const CheckReport &report) {
    std::vector<std::string> troubles;
    if (const std::size_t failed = count(report, Result::Fail); failed > 0) {
        troubles.push_back(counted(failed, "rule failed", "rules failed"));
    }
    if (const std::size_t errors = count(report, Result::Error); errors > 0) {
        troubles.push_back(counted(errors, "rule has no usable response", "rules have no usable response"));
    }
    if (!report.troubles.empty()) {
        troubles.push_back(counted(report.troubles.size(), "value is not restored", "values are not restored"));
    }
    if (!troubles.empty()) {
        throw snmp::Failure(snmp::Cause::Refused, fmt::format("{}", fmt::join(troubles, ", ")));
    }
}

void checkCamera(const snmp::SessionOptions &session, const Options &options, const Settings &settings,
                 ptzctl::Report &output) {
    noteInterruptions();
    Context context(session, options);
    CheckReport report;
    try {
        report = runRules(context);
    } catch (const Ended &ended) {
        throw snmp::Failure(snmp::Cause::Refused, ended.what());
    }
    output.text = textOf(report, settings);
    output.data = jsonOf(report);
    requireSuccess(report);
}

void addOptions(CLI::App &command, Options &options) {
    command.add_flag("--writes", options.writes, "Also send SETs that move, store, switch and restart nothing");
    command.add_flag("--moves", options.moves, "Also move the camera; includes --writes");
    command
        .add_option("--disruptive", options.disruptive, "Also run a rule that disrupts the camera's work; repeatable")
        ->delimiter(',');
    command.add_option("--rule", options.only, "Run this rule only; repeatable, or a list with commas")->delimiter(',');
    command.add_option("--skip", options.skip, "Leave this rule out; repeatable, or a list with commas")
        ->delimiter(',');
    command.add_option("--read-community", options.readCommunity, "Community that must not write, for --writes");
    command.add_flag("--ask", options.ask, "Ask a person what the camera does");
    command.add_option("--camera", options.cameraDirectory, "Look at the simulated camera of this directory")
        ->type_name("DIRECTORY");
    command.add_option("--preset", options.preset, "Preset that --moves may recall")->check(CLI::Range(1, 255));
    command.add_option("--junit", options.junitFile, "Write JUnit XML to this file")->type_name("FILE");
    command.add_option("--html", options.htmlFile, "Write a printable page to this file")->type_name("FILE");
}

/** Checks the names of rules. @throws std::invalid_argument */
void requireRules(const Options &options) {
    for (const std::vector<std::string> *names : {&options.only, &options.skip}) {
        for (const std::string &name : *names) {
            ruleNamed(name);
        }
    }
    for (const std::string &name : options.disruptive) {
        if (ruleNamed(name).level != Level::Disruptive) {
            throw std::invalid_argument("the rule '" + name + "' is not disruptive");
        }
    }
}

/** Writes the files that the user wants. */
void writeFiles(const Options &options, const std::vector<std::string> &hosts, const std::vector<Outcome> &outcomes) {
    CameraReports reports;
    for (std::size_t i = 0; i < hosts.size(); ++i) {
        reports.push_back(outcomesJson({hosts[i]}, {outcomes[i]}));
    }
    if (!options.junitFile.empty()) {
        writeFile(options.junitFile, junitOf(reports));
    }
    if (!options.htmlFile.empty()) {
        writeFile(options.htmlFile, htmlOf(reports));
    }
}

/** Asks before the rules that the user has named. */
std::string questionOf(const Options &options) {
    std::string names;
    for (const std::string &name : options.disruptive) {
        names += (names.empty() ? "" : ", ") + name;
    }
    return names.empty() ? "" : "Disrupt the camera's work with " + names + "?";
}

/** Checks options that exclude each other. @throws std::invalid_argument */
void requireOneCamera(const Options &options, std::size_t hosts) {
    if (hosts > 1 && (options.ask || !options.cameraDirectory.empty())) {
        throw std::invalid_argument("--ask and --camera watch one camera only");
    }
    if (options.ask && !options.cameraDirectory.empty()) {
        throw std::invalid_argument("either --ask or --camera");
    }
    if (options.ask && !options.moves) {
        throw std::invalid_argument("--ask needs --moves");
    }
}

} // namespace

void addCheck(CLI::App &app, Invocation &invocation) {
    CLI::App *command = app.add_subcommand("check", "Judge a camera, by default with requests that only read");
    const auto options = std::make_shared<Options>();
    addOptions(*command, *options);
    CLI::Option *list = command->add_flag("--list-rules", "List the rules");
    command->add_flag("-y,--yes", invocation.yes, "Skip the confirmation of --disruptive");
    command->callback([=, &invocation] {
        if (list->count() > 0) {
            invocation.local = [&invocation] { return ruleList(invocation.json); };
            return;
        }
        requireRules(*options);
        options->writes = options->writes || options->moves;
        options->credentials = credentialOptions(invocation.credentials);
        requireOneCamera(*options, invocation.hosts.size());
        invocation.question = questionOf(*options);
        invocation.asksPerson = options->ask;
        invocation.endsChildrenGently = true;
        invocation.afterwards = [options, &invocation](const std::vector<Outcome> &outcomes) {
            writeFiles(*options, invocation.hosts, outcomes);
        };
        invocation.sessionAction = [options, &invocation](const snmp::SessionOptions &session, ptzctl::Report &report) {
            // A line of progress would run into the questions.
            options->progress = invocation.showsProgress && invocation.hosts.size() == 1 && !options->ask;
            checkCamera(session, *options, invocation.settings, report);
        };
    });
}

} // namespace ptzctl::check
