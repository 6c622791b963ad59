// SPDX-License-Identifier: Apache-2.0
#include "command_line.h"

#include <charconv>
#include <cmath>
#include <cstdlib>
#include <map>
#include <stdexcept>

#include "axes.h"
#include "driving.h"
#include "objects.h"
#include "octets_text.h"
#include "showing.h"
#include "writing.h"

namespace ptzctl {

namespace {

constexpr const char *kFooter =
    "Exit status: 0 done, 1 refused by the camera, 2 wrong usage, 3 no answer, 4 several cameras that did not all end "
    "alike, 5 an answer that cannot be used.\nManual page: ptzctl(1).";
constexpr int kMostMilliseconds = 65535;
constexpr int kMostNumber = 255;
constexpr double kLongestSeconds = 3600;

/** Holds the texts of a command's arguments until the command line is read. */
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
    // NOLINTNEXTLINE(concurrency-mt-unsafe): nobody changes the environment while threads run
    const char *const value = std::getenv(name);
    return value != nullptr ? value : "";
}

void addSecurity(CLI::App &app, Credentials &credentials) {
    const char *const group = "Who asks";
    app.add_option("-v,--snmp-version", credentials.version, "Protocol version")
        ->check(CLI::IsMember({"2c", "3"}))
        ->envname("PTZCTL_SNMP_VERSION")
        ->group(group);
    app.add_option("-c,--community", credentials.community, "Community, for 2c")
        ->envname("PTZCTL_COMMUNITY")
        ->group(group);
    app.add_option("-u,--user", credentials.user, "User, for 3; passphrases come from the environment or snmp.conf")
        ->envname("PTZCTL_USER")
        ->group(group);
    app.add_option("-l,--level", credentials.level, "Security level, for 3")
        ->check(CLI::IsMember({"noAuthNoPriv", "authNoPriv", "authPriv"}))
        ->envname("PTZCTL_LEVEL")
        ->group(group);
    app.add_option("-a,--auth", credentials.authentication, "Authentication protocol, such as SHA-256")
        ->envname("PTZCTL_AUTH")
        ->group(group);
    app.add_option("-x,--privacy", credentials.privacy, "Privacy protocol, such as AES")
        ->envname("PTZCTL_PRIVACY")
        ->group(group);
    credentials.authenticationPassphrase = environmentText("PTZCTL_AUTH_PASSPHRASE");
    credentials.privacyPassphrase = environmentText("PTZCTL_PRIVACY_PASSPHRASE");
}

void addOptions(CLI::App &app, Invocation &invocation, const SharedArguments &arguments) {
    app.set_version_flag("--version", std::string("ptzctl ") + PTZCTL_VERSION);
    app.add_option("-H,--host", invocation.hosts,
                   "Camera to ask, as HOST or HOST:PORT; several, or separated by commas")
        ->delimiter(',')
        ->envname("PTZCTL_HOST");
    app.add_option("-s,--speed", arguments->speed, "Speed of a move, 1 to 127 or 1% to 100%")->capture_default_str();
    app.add_flag("-j,--json", invocation.json, "Print JSON");
    app.add_flag("--verbose", invocation.settings.verbose, "Show raw octets and numbers beside their meaning");
    app.add_option("-t,--timeout", invocation.timeoutSeconds, "Seconds to wait for an answer")
        ->check(CLI::Range(0.05, kLongestSeconds))
        ->capture_default_str();
    app.add_option("--byte-order", invocation.settings.order,
                   "Which octet of a position comes first: low, or high as public texts have it")
        ->transform(CLI::CheckedTransformer(
            std::map<std::string, ByteOrder>{{"low", ByteOrder::LowFirst}, {"high", ByteOrder::HighFirst}}))
        ->envname("PTZCTL_BYTE_ORDER")
        ->default_str("low");
}

/** Adds what an axis can be told; `use` gets the command when the command line has been read. */
void addAxisCommands(CLI::App &parent, const Axis &axis, Invocation &invocation, const SharedArguments &arguments,
                     const std::function<void(const PositionCommand &)> &use) {
    const bool degrees = axis.unit == Unit::Degrees;
    const char *const unit = degrees ? "DEGREES" : "PERCENT";
    const auto speed = [arguments] { return speedOf(arguments->speed); };
    parent.require_subcommand(1);
    CLI::App *to = parent.add_subcommand("to", "Go to a position");
    to->add_option(unit, arguments->amount)->required();
    to->callback([=, &axis] { use(commandTo(axis, arguments->amount, speed())); });
    CLI::App *by = parent.add_subcommand("by", "Make a step");
    by->add_option(unit, arguments->amount, "Negative for the other direction")->required();
    by->callback([=, &axis] { use(commandBy(axis, arguments->amount, speed())); });
    for (const char *direction : {axis.backward, axis.forward}) {
        CLI::App *run = parent.add_subcommand(direction, "Move until it is stopped or its time-out is over");
        run->callback(
            [=, &axis, &invocation] { use(commandTowards(axis, direction, speed(), invocation.settings.order)); });
    }
    parent.add_subcommand("stop", "Stop")->callback([use] { use({}); });
}

void addMoves(CLI::App &app, Invocation &invocation, const SharedArguments &arguments) {
    for (const Axis &axis : axes()) {
        CLI::App *command = app.add_subcommand(axis.name, std::string("Move: ") + axis.title);
        addAxisCommands(*command, axis, invocation, arguments, [&axis, &invocation](const PositionCommand &move) {
            invocation.action = [&axis, move](Context &context) { drive(context, axis, move); };
        });
    }
    CLI::App *stopping = app.add_subcommand("stop", "Stop an axis, or pan, tilt and zoom in one request");
    arguments->axis = "all";
    stopping->add_option("AXIS", arguments->axis, "pan, tilt, zoom, focus, iris or all")->capture_default_str();
    stopping->callback([=, &invocation] {
        if (arguments->axis != "all") {
            axisOf(arguments->axis);
        }
        invocation.action = [arguments](Context &context) { stop(context, arguments->axis); };
    });
}

void addShow(CLI::App &app, const char *name, const char *help, void (*show)(Context &), Invocation &invocation) {
    app.add_subcommand(name, help)->callback([show, &invocation] { invocation.action = show; });
}

/** Adds the two commands `on` and `off` below another one. */
void addOnOff(CLI::App &parent, const std::function<void(bool)> &use) {
    parent.require_subcommand(1);
    parent.add_subcommand("on", "On")->callback([use] { use(true); });
    parent.add_subcommand("off", "Off")->callback([use] { use(false); });
}

void addSwitches(CLI::App &app, Invocation &invocation, const SharedArguments &arguments) {
    CLI::App *automatic = app.add_subcommand("auto", "Switch the automatic focus or iris");
    automatic->require_subcommand(1);
    for (const auto &[name, feature] : {std::pair{"focus", kAutomaticFocus}, std::pair{"iris", kAutomaticIris}}) {
        addOnOff(*automatic->add_subcommand(name, std::string("The automatic ") + name),
                 [feature = feature, &invocation](bool on) {
                     invocation.action = [feature, on](Context &context) { setAutomatic(context, feature, on); };
                 });
    }
    CLI::App *relay = app.add_subcommand("relay", "Switch a relay");
    relay->add_option("N", arguments->number, "Number of the relay, from 1")
        ->required()
        ->check(CLI::Range(1, kMostNumber));
    addOnOff(*relay, [=, &invocation](bool on) {
        invocation.action = [=](Context &context) { switchRelay(context, arguments->number, on); };
    });
}

void addPresets(CLI::App &app, Invocation &invocation, const SharedArguments &arguments) {
    CLI::App *preset = app.add_subcommand("preset", "Go to a preset, or store the position as one");
    preset->require_subcommand(1);
    struct Use {
        const char *name;
        void (*use)(Context &, int);
        const char *help;
    };
    for (const auto &[name, use, help] :
         {Use{"go", goToPreset, "Go to a preset"}, Use{"store", storePreset, "Store the position"}}) {
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
    CLI::App *timeouts = app.add_subcommand("timeouts", "Show or set when continuous moves end");
    CLI::Option *axis = timeouts->add_option("AXIS", arguments->name, "pan, tilt, zoom, focus, iris or all");
    CLI::Option *time = timeouts->add_option("MILLISECONDS", arguments->number, "0 for no time-out")
                            ->check(CLI::Range(0, kMostMilliseconds));
    axis->needs(time);
    timeouts->callback([=, &invocation] {
        if (arguments->name.empty()) {
            invocation.action = showTimeouts;
            return;
        }
        if (arguments->name != "all") {
            axisOf(arguments->name);
        }
        invocation.action = [arguments](Context &context) { setTimeout(context, arguments->name, arguments->number); };
    });
}

void addReboot(CLI::App &app, Invocation &invocation) {
    CLI::App *command = app.add_subcommand("reboot", "Restart the camera, after asking");
    command->add_flag("-y,--yes", invocation.yes, "Do not ask");
    command->callback([&invocation] {
        invocation.question = "Restart the camera?";
        invocation.action = reboot;
    });
}

std::string objectList(bool json) {
    std::vector<std::vector<std::string>> rows;
    nlohmann::ordered_json list = nlohmann::ordered_json::array();
    for (const Object &object : objects()) {
        const char *const access = object.writable ? "read-write" : "read-only";
        rows.push_back({object.name, object.identifier, access});
        list.push_back({{"name", object.name}, {"identifier", object.identifier}, {"access", access}});
    }
    return json ? list.dump(2) + "\n" : alignedRows(rows);
}

void addObjects(CLI::App &app, Invocation &invocation, const SharedArguments &arguments) {
    CLI::App *get = app.add_subcommand("get", "Read objects by name or identifier");
    CLI::Option *names = get->add_option("NAME", arguments->words, "Such as modelName or relayStatesTable.3.2");
    CLI::Option *list = get->add_flag("--list", arguments->flag, "List the names instead")->excludes(names);
    get->callback([=, &invocation] {
        if (list->count() > 0) {
            invocation.local = [&invocation] { return objectList(invocation.json); };
            return;
        }
        if (arguments->words.empty()) {
            throw CLI::RequiredError("NAME");
        }
        for (const std::string &name : arguments->words) {
            identifierOf(name);
        }
        invocation.action = [arguments](Context &context) { showObjects(context, arguments->words); };
    });
    CLI::App *set = app.add_subcommand("set", "Write an object by name");
    set->add_option("NAME", arguments->name, "Name of an object that can be written")->required();
    set->add_option("VALUE", arguments->text, "A number, or octets in hexadecimal")->required();
    set->callback([=, &invocation] {
        const Variable value = valueNamed(arguments->name, arguments->text);
        invocation.action = [value](Context &context) { writeAndShow(context, {value}); };
    });
}

/** Lets a command print what octets mean, or for `encode` the octets themselves. */
void printOctets(Invocation &invocation, const Axis &axis, const std::string &octets, bool explain) {
    invocation.local = [=, &axis, &invocation] {
        if (invocation.json) {
            return octetsJson(axis, octets, invocation.settings.order).dump(2) + "\n";
        }
        return (explain ? describeOctets(axis, octets, invocation.settings.order) : hexText(octets)) + "\n";
    };
}

void addOctets(CLI::App &app, Invocation &invocation, const SharedArguments &arguments) {
    CLI::App *encoding = app.add_subcommand("encode", "Print the four octets of a command, and send nothing");
    encoding->require_subcommand(1);
    for (const Axis &axis : axes()) {
        addAxisCommands(*encoding->add_subcommand(axis.name, axis.title), axis, invocation, arguments,
                        [&axis, &invocation](const PositionCommand &move) {
                            printOctets(invocation, axis, encode(move, invocation.settings.order), false);
                        });
    }
    CLI::App *decoding = app.add_subcommand("decode", "Explain the four octets of a command");
    decoding->add_option("AXIS", arguments->name, "pan, tilt, zoom, focus or iris")->required();
    decoding->add_option("OCTETS", arguments->words, "In hexadecimal, in one word or several")->required();
    decoding->callback([=, &invocation] {
        std::string octets;
        for (const std::string &word : arguments->words) {
            octets += octetsOf(word);
        }
        const Axis &axis = axisOf(arguments->name);
        if (!isInitialPosition(octets, invocation.settings.order)) {
            decode(octets, invocation.settings.order);
        }
        printOctets(invocation, axis, octets, true);
    });
}

void addWatching(CLI::App &app, Invocation &invocation) {
    CLI::App *watch = app.add_subcommand("watch", "Show the status again and again, until Ctrl-C");
    watch->add_option("--interval", invocation.intervalSeconds, "Seconds between two looks")
        ->check(CLI::Range(0.05, kLongestSeconds))
        ->capture_default_str();
    watch->add_option("--count", invocation.count, "End after so many looks")->check(CLI::PositiveNumber);
    watch->callback([&invocation] {
        invocation.repeats = true;
        invocation.action = showStatus;
    });
    CLI::App *traps = app.add_subcommand("traps", "Receive traps and explain them, until Ctrl-C");
    traps->add_option("ADDRESS", invocation.listen, "Where to receive, as ADDRESS:PORT")->default_val("127.0.0.1:1162");
    traps->add_option("--count", invocation.count, "End after so many traps")->check(CLI::PositiveNumber);
    traps->add_option("--engine", invocation.engine, "Engine identifier of the camera whose SNMPv3 traps to read, 0x…");
    traps->callback([&invocation] { invocation.receives = true; });
}

} // namespace

int speedOf(const std::string &text) {
    constexpr int kPercent = 100;
    const bool percent = !text.empty() && text.back() == '%';
    const char *const end = text.data() + text.size() - (percent ? 1 : 0);
    const int most = percent ? kPercent : kFastest;
    int number = 0;
    const auto [last, error] = std::from_chars(text.data(), end, number);
    if (error != std::errc() || last != end || number < 1 || number > most) {
        throw std::invalid_argument("--speed: '" + text + "' is not a number from 1 to 127 or from 1% to 100%");
    }
    return percent ? static_cast<int>(std::ceil(number * static_cast<double>(kFastest) / kPercent)) : number;
}

std::string complaintOf(const CLI::App &app, const CLI::ParseError &error) {
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
    addSecurity(*app, invocation.credentials);
    addShow(*app, "status", "Everything at a glance", showStatus, invocation);
    addMoves(*app, invocation, arguments);
    addSwitches(*app, invocation, arguments);
    addPresets(*app, invocation, arguments);
    addShow(*app, "inputs", "Show the alarm inputs", showInputs, invocation);
    addShow(*app, "limits", "Show where the axes end", showLimits, invocation);
    addTimeouts(*app, invocation, arguments);
    addReboot(*app, invocation);
    addObjects(*app, invocation, arguments);
    addOctets(*app, invocation, arguments);
    addWatching(*app, invocation);
    return app;
}

} // namespace ptzctl
