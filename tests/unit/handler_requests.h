// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * What the tests of all handlers share: requests through the phases of a SET, and what is expected of an answer and in
 * the log.
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

/** Status of every call that a test lets fail. */
inline constexpr zorva_core_status kRefused = 17;

using Modes = std::vector<int>;

/** Modes that no handler of a scalar has a use for. */
inline constexpr int kUnknownModes[] = {-1, 6, 99, 162, MODE_GETBULK, std::numeric_limits<int>::max()};

/** All modes that the agent uses. */
const Modes &knownModes();
/** All modes that the agent knows, and some that nobody knows, without those that a handler serves. */
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
/** What the handler returns, and what it sets on the request. */
testing::Matcher<const Answer &> isRefused(int returned, int requestError);

/** Runs all phases of a SET that nobody refuses; each has to be accepted. */
void set(std::string_view instance, const NewValue &value);
/** Runs the phases up to ACTION and then UNDO, as the agent does when another variable's ACTION fails. */
void setAndUndo(std::string_view instance, const NewValue &value);

/** A request for a handler; what lies behind the value in memory is not 0. */
class DirtyRequest : public requests::Request {
public:
    DirtyRequest(std::string_view dotted, const NewValue &value);
};

#endif
