// SPDX-License-Identifier: Apache-2.0
#include "command_line.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <iterator>
#include <map>
#include <stdexcept>

#include "axes.h"
#include "check/command.h"
#include "commands/move.h"
#include "commands/set.h"
#include "commands/show.h"
#include "hosts_file.h"
#include "object_table.h"
#include "octets_text.h"
#include "oid_text.h"

namespace ptzctl {

namespace {

constexpr const char *kFooter =
    "Exit status: 0 success, 1 refused or not carried out by the camera, 2 usage error, 3 no answer, 4 several cameras "
    "with different "
    "outcomes, 5 bad answer or local error, such as unwritable output.\nManual page: ptzctl(1).";
constexpr const char *kProbeFooter =
    "A range is 10 (0 to 10), 10: (from 10), ~:10 (up to 10), 10:20, or @10:20 (not from 10 to 20).\n"
    "From ptzctl: -H HOST, -C COMMUNITY (-c is --critical here), and -t SECONDS, the time-out of the whole probe, by "
    "default 10.\nExit status: 0 OK, 1 WARNING, 2 CRITICAL, 3 UNKNOWN, also for wrong usage.";
constexpr int kMostMilliseconds = 65535;
constexpr int kMostNumber = 255;
constexpr double kLongestSeconds = 3600;

/** Arguments of the command, while the command line is parsed. */
struct Arguments {
    std::string axis;
    std::string name;
    std::string text;
    std::vector<std::string> words;
    std::string speed = "64";
    double amount = 0;
    int number = 0;
    bool flag = false;
};

using SharedArguments = std::shared_ptr<Arguments>;

std::string environmentText(const char *name) {
    // NOLINTNEXTLINE(concurrency-mt-unsafe): the environment does not change while threads run
    const char *const value = std::getenv(name);
    return value != nullptr ? value : "";
}

/** Adds the options of the credentials, which are texts and have environment variables. */
void addAuthentication(CLI::App &app, snmp::Credentials &credentials) {
    const auto add = [&app](const char *names, std::string &value, const char *help, const char *variable) {
        return app.add_option(names, value, help)->envname(variable)->group("Authentication");
    };
    add("-v,--snmp-version", credentials.version, "Protocol version", "PTZCTL_SNMP_VERSION")
        ->check(CLI::IsMember({"2c", "3"}));
    add("-c,-C,--community", credentials.community, "Community, for 2c", "PTZCTL_COMMUNITY");
    add("-u,--user", credentials.user, "User, for 3; passphrases come from the environment or snmp.conf",
        "PTZCTL_USER");
    add("-l,--level", credentials.level, "Security level, for 3; by default that of the passphrases", "PTZCTL_LEVEL")
        ->check(CLI::IsMember({"noAuthNoPriv", "authNoPriv", "authPriv"}));
    add("-a,--auth", credentials.authentication, "Authentication protocol, such as SHA-256", "PTZCTL_AUTH");
    add("-x,--privacy", credentials.privacy, "Privacy protocol, such as AES", "PTZCTL_PRIVACY");
    credentials.authenticationPassphrase = environmentText("PTZCTL_AUTH_PASSPHRASE");
    credentials.privacyPassphrase = environmentText("PTZCTL_PRIVACY_PASSPHRASE");
}

void addOptions(CLI::App &app, Invocation &invocation, const SharedArguments &arguments) {
    app.set_version_flag("-V,--version", std::string("ptzctl ") + PTZCTL_VERSION);
    app.add_option("-H,--host", invocation.hosts, "Camera as HOST or HOST:PORT; repeatable, or a list with commas")
        ->delimiter(',')
        ->envname("PTZCTL_HOST");
    app.add_option("--hosts-file", invocation.hostLists,
                   "File with a camera in each line; - for standard input, # for comments")
        ->type_name("FILE");
    app.add_option("-s,--speed", arguments->speed, "Speed of a move: 1 to 127, or 1% to 100%")->capture_default_str();
    app.add_flag("-j,--json", invocation.json, "Print JSON");
    app.add_flag("!--no-before", invocation.settings.readsBefore, "Send a command without reading anything before it");
    app.add_flag("--verbose", invocation.settings.verbose, "Show raw octets and numbers as well");
    app.add_option("-t,--timeout", invocation.timeoutSeconds, "Seconds to wait for an answer")
        ->check(CLI::Range(0.05, kLongestSeconds))
        ->envname("PTZCTL_TIMEOUT")
        ->capture_default_str();
    app.add_option("--byte-order", invocation.settings.order,
                   "First octet of a position: low, or high as in the public encoding")
        ->transform(CLI::CheckedTransformer(std::map<std::string, ptz::ByteOrder>{{"low", ptz::ByteOrder::LowFirst},
                                                                                  {"high", ptz::ByteOrder::HighFirst}}))
        ->envname("PTZCTL_BYTE_ORDER")
        ->default_str("low");
}

/** Adds the commands of an axis; `use` gets the parsed command. */
void addAxisCommands(CLI::App &parent, const ptz::Axis &axis, Invocation &invocation, const SharedArguments &arguments,
                     const std::function<void(const ptz::PositionCommand &)> &use) {
    const bool degrees = axis.range.unit == ptz::Unit::Degrees;
    const char *const unit = degrees ? "DEGREES" : "PERCENT";
    const auto speed = [arguments] { return speedOf(arguments->speed); };
    parent.require_subcommand(1);
    CLI::App *to = parent.add_subcommand("to", "Go to a position");
    to->add_option(unit, arguments->amount)->required();
    to->callback([=, &axis] { use(ptz::commandTo(axis, arguments->amount, speed())); });
    CLI::App *by = parent.add_subcommand("by", "Move by a step");
    by->add_option(unit, arguments->amount, "Negative for the other direction")->required();
    by->callback([=, &axis] { use(ptz::commandBy(axis, arguments->amount, speed())); });
    for (const char *direction : {axis.directions.backward, axis.directions.forward}) {
        CLI::App *run = parent.add_subcommand(direction, "Move until a stop or the time-out");
        run->callback(
            [=, &axis, &invocation] { use(ptz::commandTowards(axis, direction, speed(), invocation.settings.order)); });
    }
    parent.add_subcommand("stop", "Stop")->callback([use] { use({}); });
}

void addMoves(CLI::App &app, Invocation &invocation, const SharedArguments &arguments) {
    for (const ptz::Axis &axis : ptz::axes()) {
        CLI::App *parent = app.add_subcommand(axis.name, std::string("Move or stop ") + axis.name);
        addAxisCommands(*parent, axis, invocation, arguments,
                        [&axis, &invocation](const ptz::PositionCommand &command) {
                            invocation.action = [&axis, command](Context &context) { move(context, axis, command); };
                        });
    }
    CLI::App *stopping = app.add_subcommand("stop", "Stop an axis, or pan, tilt and zoom at once");
    arguments->axis = "all";
    stopping->add_option("AXIS", arguments->axis, "pan, tilt, zoom, focus, iris or all")->capture_default_str();
    stopping->callback([=, &invocation] {
        invocation.action = [list = axesNamed(arguments->axis)](Context &context) { stop(context, list); };
    });
}

void addShow(CLI::App &app, const char *name, const char *help, void (*show)(Context &), Invocation &invocation) {
    app.add_subcommand(name, help)->callback([show, &invocation] { invocation.action = show; });
}

/** Adds the commands `on` and `off` below another one. */
void addOnOff(CLI::App &parent, const std::function<void(bool)> &use) {
    parent.require_subcommand(1);
    parent.add_subcommand("on", "On")->callback([use] { use(true); });
    parent.add_subcommand("off", "Off")->callback([use] { use(false); });
}

void addSwitches(CLI::App &app, Invocation &invocation, const SharedArguments &arguments) {
    CLI::App *automatic = app.add_subcommand("auto", "Switch automatic focus or iris on or off");
    automatic->require_subcommand(1);
    for (const auto &[name, feature] :
         {std::pair{"focus", ptz::kAutomaticFocus}, std::pair{"iris", ptz::kAutomaticIris}}) {
        addOnOff(*automatic->add_subcommand(name, std::string("Automatic ") + name),
                 [feature = feature, &invocation](bool on) {
                     invocation.action = [feature, on](Context &context) { setAutomatic(context, feature, on); };
                 });
    }
    CLI::App *relay = app.add_subcommand("relay", "Switch a relay on or off");
    relay->add_option("N", arguments->number, "Number of the relay, from 1")
        ->required()
        ->check(CLI::Range(1, kMostNumber));
    addOnOff(*relay, [=, &invocation](bool on) {
        invocation.action = [=](Context &context) { switchRelay(context, arguments->number, on); };
    });
}

void addPresets(CLI::App &app, Invocation &invocation, const SharedArguments &arguments) {
    CLI::App *preset = app.add_subcommand("preset", "Recall or store a preset");
    preset->require_subcommand(1);
    struct Use {
        const char *name;
        void (*use)(Context &, int);
        const char *help;
    };
    for (const auto &[name, use, help] :
         {Use{"go", goToPreset, "Recall the preset"}, Use{"store", storePreset, "Store the present position"}}) {
        CLI::App *command = preset->add_subcommand(name, help);
        command->add_option("N", arguments->number, "Number of the preset")
            ->required()
            ->check(CLI::Range(1, kMostNumber));
        command->callback([=, use = use, &invocation] {
            invocation.action = [=](Context &context) { use(context, arguments->number); };
        });
    }
}

void addTimeouts(CLI::App &app, Invocation &invocation, const SharedArguments &arguments) {
    CLI::App *timeouts = app.add_subcommand("timeouts", "Show or set the time-outs of continuous moves");
    CLI::Option *axis = timeouts->add_option("AXIS", arguments->name, "pan, tilt, zoom, focus, iris or all");
    CLI::Option *time =
        timeouts->add_option("MILLISECONDS", arguments->number, "0 for none")->check(CLI::Range(0, kMostMilliseconds));
    axis->needs(time);
    timeouts->callback([=, &invocation] {
        if (arguments->name.empty()) {
            invocation.action = showTimeouts;
            return;
        }
        invocation.action = [=, list = axesNamed(arguments->name)](Context &context) {
            setTimeout(context, list, arguments->number);
        };
    });
}

void addReboot(CLI::App &app, Invocation &invocation) {
    CLI::App *command = app.add_subcommand("reboot", "Restart the camera");
    command->add_flag("-y,--yes", invocation.yes, "Skip the confirmation");
    command->callback([&invocation] {
        invocation.question = "Restart the camera?";
        invocation.action = reboot;
    });
}

std::string objectList(bool json) {
    std::vector<std::vector<std::string>> rows;
    nlohmann::ordered_json list = nlohmann::ordered_json::array();
    for (const ptz::Object &object : ptz::objects()) {
        const char *const access = object.access == ptz::Access::ReadWrite ? "read-write" : "read-only";
        const std::string oid = snmp::withoutDot(ptz::instanceNamed(object.name).oid);
        rows.push_back({object.name, oid, access});
        list.push_back({{"name", object.name}, {"identifier", oid}, {"access", access}});
    }
    return json ? list.dump(2) + "\n" : alignedRows(rows);
}

ptz::Instance resolve(const std::string &name) {
    try {
        return ptz::instanceNamed(name);
    } catch (const std::invalid_argument &error) {
        throw std::invalid_argument(std::string(error.what()) + "; `ptzctl get --list` shows the names");
    }
}

void addObjects(CLI::App &app, Invocation &invocation, const SharedArguments &arguments) {
    CLI::App *get = app.add_subcommand("get", "Read objects");
    CLI::Option *names =
        get->add_option("NAME", arguments->words, "Name or OID, such as modelName or relayStatesTable.3.2");
    CLI::Option *list = get->add_flag("--list", arguments->flag, "List the names")->excludes(names);
    get->callback([=, &invocation] {
        if (list->count() > 0) {
            invocation.local = [&invocation] { return objectList(invocation.json); };
            return;
        }
        if (arguments->words.empty()) {
            throw CLI::RequiredError("NAME");
        }
        std::vector<ptz::Instance> instances;
        std::transform(arguments->words.begin(), arguments->words.end(), std::back_inserter(instances), resolve);
        invocation.action = [instances](Context &context) { showObjects(context, instances); };
    });
    CLI::App *set = app.add_subcommand("set", "Write an object");
    set->add_option("NAME", arguments->name, "Name of a writable object")->required();
    set->add_option("VALUE", arguments->text, "Number, or octets in hexadecimal")->required();
    set->callback([=, &invocation] {
        const ptz::Assignment assignment = ptz::parseAssignment(resolve(arguments->name), arguments->text);
        invocation.action = [assignment](Context &context) { writeAndShow(context, {assignment}); };
    });
}

/** Prepares the output of octets: as they are, or explained. */
void printOctets(Invocation &invocation, const ptz::Axis &axis, const std::string &octets, bool explain) {
    invocation.local = [=, &axis, &invocation] {
        const ptz::ByteOrder order = invocation.settings.order;
        if (invocation.json) {
            return ptz::octetsJson(axis, octets, order).dump(2) + "\n";
        }
        return (explain ? ptz::describeOctets(axis, octets, order) : snmp::hexText(octets)) + "\n";
    };
}

void addOctets(CLI::App &app, Invocation &invocation, const SharedArguments &arguments) {
    CLI::App *encoding = app.add_subcommand("encode", "Print the octets of a command without sending it");
    encoding->require_subcommand(1);
    for (const ptz::Axis &axis : ptz::axes()) {
        addAxisCommands(*encoding->add_subcommand(axis.name, axis.title), axis, invocation, arguments,
                        [&axis, &invocation](const ptz::PositionCommand &command) {
                            printOctets(invocation, axis, ptz::encode(command, invocation.settings.order), false);
                        });
    }
    CLI::App *decoding = app.add_subcommand("decode", "Explain the octets of a command");
    decoding->add_option("AXIS", arguments->name, "pan, tilt, zoom, focus or iris")->required();
    decoding->add_option("OCTETS", arguments->words, "In hexadecimal, as one or several arguments")->required();
    decoding->callback([=, &invocation] {
        std::string octets;
        for (const std::string &word : arguments->words) {
            octets += snmp::parseHex(word);
        }
        const ptz::Axis &axis = ptz::axisNamed(arguments->name);
        if (!ptz::isInitialPosition(octets, invocation.settings.order)) {
            ptz::decode(octets, invocation.settings.order);
        }
        printOctets(invocation, axis, octets, true);
    });
}

void addWatching(CLI::App &app, Invocation &invocation) {
    CLI::App *watch = app.add_subcommand("watch", "Show the status repeatedly until Ctrl-C");
    watch->add_option("--interval", invocation.intervalSeconds, "Seconds between updates")
        ->check(CLI::Range(0.05, kLongestSeconds))
        ->capture_default_str();
    watch->add_option("--count", invocation.count, "Number of updates")->check(CLI::PositiveNumber);
    watch->callback([&invocation] {
        invocation.repeats = true;
        invocation.action = showStatus;
    });
    CLI::App *traps = app.add_subcommand("traps", "Receive and explain traps until Ctrl-C");
    traps->add_option("ADDRESS", invocation.listen, "Address to listen at, as ADDRESS:PORT")
        ->default_val("127.0.0.1:1162");
    traps->add_option("--count", invocation.count, "Number of traps")->check(CLI::PositiveNumber);
    traps->add_option("--engine", invocation.engine, "Engine ID of the sender of SNMPv3 traps, 0x…");
    traps->callback([&invocation] { invocation.receives = true; });
}

State unreadableState(const std::string &name) {
    if (name != "unknown" && name != "critical") {
        throw std::invalid_argument("--unreadable: '" + name + "' is neither unknown nor critical");
    }
    return name == "unknown" ? State::Unknown : State::Critical;
}

void addProbe(CLI::App &app, Invocation &invocation) {
    CLI::App *command = app.add_subcommand("probe", "Report the state of a camera as a monitoring plugin");
    const auto expected = std::make_shared<Expectations>();
    const auto add = [&](const char *names, const char *help, const char *type,
                         const std::function<void(const std::string &)> &use) {
        return command->add_option_function<std::string>(names, use, help)->type_name(type);
    };
    add("-w,--warning", "Temperatures without a warning, in degrees Celsius", "RANGE",
        [=](const std::string &text) { expected->warning = parseRange(text); });
    add("-c,--critical", "Temperatures that are not critical", "RANGE",
        [=](const std::string &text) { expected->critical = parseRange(text); });
    command->add_option("--power", expected->power, "Expected state of the power supply; another one is critical");
    command->add_option("--voltage", expected->voltage, "Expected state of the voltage; another one is critical");
    command
        ->add_option_function<std::vector<std::string>>(
            "--input",
            [=](const std::vector<std::string> &texts) {
                for (const std::string &text : texts) {
                    expectInput(*expected, text);
                }
            },
            "Expected state of an input; another one is critical")
        ->delimiter(',')
        ->type_name("N=on|off");
    add("--unreadable",
        "State without an answer, and for values that cannot be read: unknown, the default, or critical", "STATE",
        [=](const std::string &name) { expected->unreadable = unreadableState(name); });
    command->footer(kProbeFooter);
    command->callback([=, &app, &invocation] {
        invocation.expectations = *expected;
        if (app.get_option("--timeout")->count() == 0) {
            invocation.timeoutSeconds = kProbeSeconds;
        }
    });
}

/** Reads the files of hosts. They take precedence over the environment, as all options do. */
void readHostLists(const CLI::App &app, Invocation &invocation) {
    if (invocation.hostLists.empty()) {
        return;
    }
    const std::vector<CLI::Option *> &given = app.parse_order();
    if (std::find(given.begin(), given.end(), app.get_option("--host")) == given.end()) {
        invocation.hosts.clear();
    }
    for (const std::string &path : invocation.hostLists) {
        addHostsOfFile(path, invocation.hosts);
    }
}

} // namespace

int speedOf(const std::string &text) {
    constexpr int kPercent = 100;
    const bool percent = !text.empty() && text.back() == '%';
    const char *const end = text.data() + text.size() - (percent ? 1 : 0);
    const int most = percent ? kPercent : ptz::kFastest;
    int number = 0;
    const auto [last, error] = std::from_chars(text.data(), end, number);
    if (error != std::errc() || last != end || number < 1 || number > most) {
        throw std::invalid_argument("--speed: '" + text + "' is not a number from 1 to 127 or from 1% to 100%");
    }
    return percent ? static_cast<int>(std::ceil(number * static_cast<double>(ptz::kFastest) / kPercent)) : number;
}

std::string errorOf(const CLI::App &app, const CLI::ParseError &error) {
    const std::vector<std::string> unknown = app.remaining(true);
    return unknown.empty() ? error.what() : "unknown: '" + unknown.front() + "'";
}

std::unique_ptr<CLI::App> commandLine(Invocation &invocation) {
    auto app = std::make_unique<CLI::App>("Controls PTZ cameras over SNMP.", "ptzctl");
    const auto arguments = std::make_shared<Arguments>();
    app->footer(kFooter);
    app->fallthrough();
    app->require_subcommand(1);
    addOptions(*app, invocation, arguments);
    addAuthentication(*app, invocation.credentials);
    addShow(*app, "status", "Show an overview", showStatus, invocation);
    addMoves(*app, invocation, arguments);
    addSwitches(*app, invocation, arguments);
    addPresets(*app, invocation, arguments);
    addShow(*app, "inputs", "Show the alarm inputs", showInputs, invocation);
    addShow(*app, "limits", "Show the limits of the axes", showLimits, invocation);
    addTimeouts(*app, invocation, arguments);
    addReboot(*app, invocation);
    addObjects(*app, invocation, arguments);
    addOctets(*app, invocation, arguments);
    addWatching(*app, invocation);
    check::addCheck(*app, invocation);
    addProbe(*app, invocation);
    app->final_callback([parser = app.get(), &invocation] { readHostLists(*parser, invocation); });
    return app;
}

} // namespace ptzctl
