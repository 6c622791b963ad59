// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Rules and what they find.
 */
#ifndef PTZCTL_CHECK_RULE_H
#define PTZCTL_CHECK_RULE_H

#include <functional>
#include <string>
#include <vector>

namespace ptzctl::check {

class Context;

/** What a rule may do to the camera. */
enum class Level {
    Reads,
    Writes,    ///< sends SETs that a faulty camera may obey, none of which moves, stores, switches or restarts
    Moves,     ///< moves the camera
    Disruptive ///< does what its name says, and only if named by the user
};

/** Result of a rule. */
enum class Result {
    Pass,
    Fail,
    Differs,     ///< a known dialect
    NotEquipped, ///< the camera does not have the objects
    Skipped,     ///< not tried; the observation has the reason
    Error        ///< tried without a usable response
};

/** Result for one object of a rule. */
struct Detail {
    std::string object; ///< name, or an OID without dot
    Result result = Result::Pass;
    std::string observation;
};

/** What a rule has found. */
struct Finding {
    Result result = Result::Pass;
    std::string observation;     ///< one line
    std::vector<Detail> details; ///< may be empty; of a rule about several objects
};

struct Rule {
    std::string name; ///< stable and short, such as "timeout-range"
    Level level = Level::Reads;
    std::string object;      ///< names of its objects, or of what it is about
    std::string expectation; ///< one sentence without a full stop
    std::string source;      ///< of the expectation
    std::function<Finding(Context &)> judge;
    bool judgesResponses = false; ///< judges the responses to the requests of all other rules
};

/** Returns all rules in the order in which they run. */
const std::vector<Rule> &rules();

/** Finds a rule. @throws std::invalid_argument for an unknown name */
const Rule &ruleNamed(const std::string &name);

/** Returns the name of a level: read, writes, moves or disruptive. */
const char *nameOf(Level level);

/** Returns the name of a result, such as "not-equipped". */
const char *nameOf(Result result);

/** Finds a result by its name. @throws std::invalid_argument for an unknown name */
Result resultNamed(const std::string &name);

/** Tests whether a result ends the program with a failure. */
bool isTrouble(Result result);

/**
 * Makes the finding of several objects. Its result is the gravest of theirs; its observation counts them and has the
 * gravest one's.
 */
Finding summarize(std::vector<Detail> details);

} // namespace ptzctl::check

#endif
