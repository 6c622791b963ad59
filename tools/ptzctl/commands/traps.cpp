// SPDX-License-Identifier: Apache-2.0
#include "traps.h"

#include <chrono>
#include <ctime>
#include <exception>

#include <fmt/chrono.h>
#include <fmt/format.h>

#include "failure.h"
#include "notification_receiver.h"
#include "notification_user.h"
#include "octets_text.h"
#include "output.h"
#include "signal_wait.h"
#include "trap_text.h"

namespace ptzctl {

namespace {

using snmp::Received;
using snmp::SecurityLevel;

std::string now() {
    const std::time_t seconds = std::chrono::system_clock::to_time_t(std::chrono::system_clock::now());
    return fmt::format("{:%Y-%m-%d %H:%M:%S}", fmt::localtime(seconds));
}

/** Returns the lowest security level of the notifications to print. */
SecurityLevel lowestLevel(const snmp::Credentials &credentials) {
    if (!credentials.level.empty()) {
        return snmp::levelNamed(credentials.level);
    }
    return credentials.user.empty()
               ? SecurityLevel::NoAuthNoPriv
               : snmp::levelOfPassphrases(credentials.authenticationPassphrase, credentials.privacyPassphrase);
}

/** Writes a notification as a line of text or of JSON. */
std::string lineOf(const Invocation &invocation, const Received &notification) {
    const Settings &settings = invocation.settings;
    if (!invocation.json) {
        const bool isDoubtful = !invocation.engine.empty() && notification.level == SecurityLevel::NoAuthNoPriv;
        return settings.style.faint(now()) + "  " + settings.style.heading(notification.from) +
               (isDoubtful ? settings.style.trouble(" (" + snmp::levelName(notification.level) + ")") : "") + "  " +
               trapText(notification.varbinds, settings);
    }
    nlohmann::ordered_json line = {
        {"time", now()}, {"from", notification.from}, {"level", snmp::levelName(notification.level)}};
    line.update(trapJson(notification.varbinds, settings));
    return line.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace);
}

/** Counts notifications below the lowest level, and reports the first one. */
class Discards {
public:
    explicit Discards(std::ostream &errors) : errors_(errors) {}

    void add(const Received &notification) {
        if (++count_ == 1) {
            errors_ << "ptzctl: discarded a notification of the level " << snmp::levelName(notification.level)
                    << " from " << notification.from
                    << "\n  --level sets the lowest level accepted; further ones are counted\n"
                    << std::flush;
        }
    }

    void report() const {
        if (count_ > 1) {
            errors_ << "ptzctl: discarded " << count_ << " notifications\n";
        }
    }

private:
    std::ostream &errors_;
    std::size_t count_ = 0;
};

/** Starts the library with the SNMPv3 user, if any. */
void startWithUser(const Invocation &invocation, SecurityLevel lowest) {
    snmp::startReceiver(kProgram);
    if (!invocation.engine.empty()) {
        snmp::addNotificationUser(
            invocation.credentials, snmp::parseHex(invocation.engine),
            "use --user, PTZCTL_AUTH_PASSPHRASE and PTZCTL_PRIVACY_PASSPHRASE, of at least 8 characters each");
    } else if (lowest != SecurityLevel::NoAuthNoPriv) {
        throw snmp::Failure(snmp::Cause::Usage, "traps of the level " + snmp::levelName(lowest) + " need --engine",
                            "--level noAuthNoPriv receives unauthenticated traps");
    }
}

} // namespace

void receiveTraps(const Invocation &invocation, std::ostream &output, std::ostream &errors) {
    const SecurityLevel lowest = lowestLevel(invocation.credentials);
    startWithUser(invocation, lowest);
    int received = 0;
    Discards discards(errors);
    snmp::NotificationReceiver receiver(kProgram, invocation.listen, [&](const Received &notification) {
        if (notification.level < lowest) {
            discards.add(notification);
            return false;
        }
        const std::string line = lineOf(invocation, notification);
        ++received;
        output << line << std::endl;
        return output.good();
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
        requireWritten(output);
    }
    discards.report();
}

} // namespace ptzctl
