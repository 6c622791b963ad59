// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Checks that run in a process of their own, because a defective library may hang, crash or end the process.
 */
#ifndef QUARNSNMP_CORE_CHECK_TRIAL_H
#define QUARNSNMP_CORE_CHECK_TRIAL_H

#include <chrono>
#include <functional>
#include <set>
#include <string>

#include <nlohmann/json_fwd.hpp>

namespace core_check {

/** Result of a check. */
struct Result {
    std::string group; ///< "library", a service, "fork" or "reload"
    std::string name;
    bool passed = false;
    double milliseconds = 0;
    std::string detail;
};

/** Time after which a call delays the agent too much. Libraries are expected to give up after two seconds. */
inline constexpr std::chrono::milliseconds kCallLimit{2500};

/** What a check must not exceed. */
enum class Limit {
    kCall, ///< kCallLimit
    kNone  ///< for several calls
};

/** The checks' side of a trial, in the child process. */
class Trial {
public:
    /**
     * @param descriptor  pipe to the supervisor
     * @param failed      keys of the checks that failed before, which are not repeated
     */
    Trial(int descriptor, const std::set<std::string> &failed) : descriptor_(descriptor), failed_(failed) {}

    /**
     * Makes a check.
     * @param action  returns a detail to show; an exception is the reason of a failure
     * @return true if the check passed; false also if it failed in a former process, where it is not made again
     */
    bool check(const std::string &group, const std::string &name, const std::function<std::string()> &action,
               Limit limit = Limit::kCall);

    /** Returns true if a check has failed before. */
    bool hasFailed(const std::string &group, const std::string &name) const;

private:
    void send(const nlohmann::json &message) const;

    int descriptor_;
    const std::set<std::string> &failed_;
};

/** Runs checks in child processes and collects their results. */
class Supervisor {
public:
    using Checks = std::function<void(Trial &trial)>;
    using Report = std::function<void(const Result &result)>;

    /**
     * @param patience  time after which a check counts as hanging
     * @param report    called with each result
     */
    Supervisor(std::chrono::milliseconds patience, Report report) : patience_(patience), report_(std::move(report)) {}

    /**
     * Runs checks in a child process. After one that hangs or ends the process, it starts another process for the rest;
     * the checks that passed before are made again there, without a report.
     */
    void run(const Checks &checks);

    /** Adds a result of this process. */
    void add(const Result &result);

    /** Returns true if a check has passed. */
    bool hasPassed(const std::string &group, const std::string &name) const;

    std::size_t passed() const {
        return passed_.size();
    }
    std::size_t failed() const {
        return failed_.size();
    }

private:
    /** Runs the checks in one child process. @return true if the process made all of them */
    bool runOnce(const Checks &checks);
    /** Collects the messages of a child process until its end or its hang. @return true if it made all checks */
    bool collect(int descriptor, Result &current, bool &hangs);
    void fail(Result result, const std::string &detail);

    std::chrono::milliseconds patience_;
    Report report_;
    std::set<std::string> passed_;
    std::set<std::string> failed_;
};

/**
 * Runs an action in a fork of this process.
 * @throws Failure if the action throws, or the process ends in another way
 */
void inChild(const std::function<void()> &action);

} // namespace core_check

#endif
