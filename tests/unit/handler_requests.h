// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Helpers for the tests of all handlers: requests through the phases of a SET, and expectations of answers and log
 * lines.
 */
#ifndef QUARNSNMP_HANDLER_REQUESTS_H
#define QUARNSNMP_HANDLER_REQUESTS_H

#include <functional>
#include <initializer_list>
#include <limits>

#include "module_test.h"

namespace logs {

LogLine error(const std::string &text);
LogLine notice(const std::string &text);
LogLine info(const std::string &text);
LogLine debug(const std::string &text);

/** Lines of a handler from "Enter." to "Done.", with others between them. */
std::vector<LogLine> from(const std::string &handler, const std::vector<LogLine> &between = {});

/** The line of a call that failed with kRefused. */
LogLine failed(const std::string &call);

} // namespace logs

/** Calls that find, open and close a service. */
std::string discoverCall(const std::string &service);
std::string openCall(const std::string &service);
std::string closeCall(const std::string &service);

/** Status of every call that a test makes fail. */
inline constexpr zorva_core_status kRefused = 17;

using Modes = std::vector<int>;

/** Modes that no handler of a scalar serves. */
inline constexpr int kUnknownModes[] = {-1, 6, 99, 162, MODE_GETBULK, std::numeric_limits<int>::max()};

/** All modes that the agent uses. */
const Modes &knownModes();
/** All modes of the agent and some unknown ones, without those that a handler serves. */
Modes modesExcept(const Modes &served);

/** Octets of a value. */
std::string octets(std::initializer_list<unsigned int> values);
/** A position command: its mode, speed, and position with the low-order octet first. */
std::string command(unsigned int mode, int speed, unsigned int position);

/** An answer that reports no error in either way. */
testing::Matcher<const Answer &> isAccepted();
/** An answer without an error, of this value. */
testing::Matcher<const Answer &> isInteger(long value, unsigned char type = ASN_INTEGER);
testing::Matcher<const Answer &> isOctets(const std::string &value);
/** An answer with these errors: the result of the handler, and the error of the request. */
testing::Matcher<const Answer &> isRefused(int returned, int requestError);

/** Runs all phases of a SET, and expects each to be accepted. */
void set(std::string_view instance, const NewValue &value);
/** Runs the phases up to ACTION and then UNDO, as the agent does when the ACTION of another varbind fails. */
void setAndUndo(std::string_view instance, const NewValue &value);

/** A request for a handler; what lies behind the value in memory is not 0. */
class DirtyRequest : public requests::Request {
public:
    DirtyRequest(std::string_view dotted, const NewValue &value);
};

#endif
