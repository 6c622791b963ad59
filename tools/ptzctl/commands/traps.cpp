// SPDX-License-Identifier: Apache-2.0
#include "traps.h"

#include <chrono>
#include <ctime>
#include <exception>

#include <fmt/chrono.h>
#include <fmt/format.h>

#include "notification_receiver.h"
#include "notification_user.h"
#include "octets_text.h"
#include "signal_wait.h"
#include "trap_text.h"

namespace ptzctl {

namespace {

std::string now() {
    const std::time_t seconds = std::chrono::system_clock::to_time_t(std::chrono::system_clock::now());
    return fmt::format("{:%Y-%m-%d %H:%M:%S}", fmt::localtime(seconds));
}

/** Writes a notification as a line of text or of JSON. */
std::string lineOf(const Invocation &invocation, const std::string &from, const std::vector<snmp::Varbind> &varbinds) {
    const Settings &settings = invocation.settings;
    if (!invocation.json) {
        return settings.style.faint(now()) + "  " + settings.style.heading(from) + "  " + trapText(varbinds, settings);
    }
    nlohmann::ordered_json line = {{"time", now()}, {"from", from}};
    line.update(trapJson(varbinds, settings));
    return line.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace);
}

} // namespace

void receiveTraps(const Invocation &invocation, std::ostream &output, std::ostream &errors) {
    snmp::startReceiver(kProgram);
    if (!invocation.engine.empty()) {
        snmp::addNotificationUser(
            invocation.credentials, snmp::parseHex(invocation.engine),
            "use --user, PTZCTL_AUTH_PASSPHRASE and PTZCTL_PRIVACY_PASSPHRASE, of at least 8 characters each");
    }
    int received = 0;
    snmp::NotificationReceiver receiver(kProgram, invocation.listen,
                                        [&](const std::string &from, const std::vector<snmp::Varbind> &varbinds) {
                                            ++received;
                                            output << lineOf(invocation, from, varbinds) << std::endl;
                                        });
    const SignalWait interruption;
    errors << "Receiving at " << invocation.listen << "; Ctrl-C ends." << std::endl;
    bool goesOn = true;
    while (goesOn && (invocation.count == 0 || received < invocation.count)) {
        try {
            goesOn = receiver.wait(interruption.descriptor());
        } catch (const std::exception &error) {
            errors << "ptzctl: cannot print a notification: " << error.what() << '\n';
        }
    }
}

} // namespace ptzctl
