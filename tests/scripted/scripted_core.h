// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * A core library for unit tests: it answers as the test says, and records every call and every log line.
 *
 * A call is recorded as one text, written as in C with the handles by name and the outputs as `&`, for instance
 * `zorva_api_iris_set_velocity_send(iris, "iris/1", 0, 1)`. A handle that is not open shows as `null` or `closed`.
 *
 * There are no default answers: a service has no targets until targets() names some, and a call that has outputs
 * needs an answer(). A call without one fails and is listed by problems(). After a failed call the outputs hold
 * rubbish, as the interface allows.
 */
#ifndef QUARNSNMP_SCRIPTED_CORE_H
#define QUARNSNMP_SCRIPTED_CORE_H

#include <cstdarg>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <variant>
#include <vector>

#include "zorva-core.h"

namespace scripted {

/** Value of an output. The null pointer is a missing text, or a number that the call leaves as it was. */
using Value = std::variant<std::int64_t, std::string, std::nullptr_t>;

/** Outcome of a call: its status, and with status 0 the values of its outputs in order. */
struct Outcome {
    zorva_core_status status = 0;
    std::vector<Value> outputs;
};

/** Outcome of getTargetIds(). */
struct Targets {
    bool found = false;
    std::vector<std::string> ids;
};

struct LogLine {
    int level;
    std::string text;
};

bool operator==(const LogLine &left, const LogLine &right);
std::ostream &operator<<(std::ostream &stream, const LogLine &line);

/** The script and the record. All of it may be used from any thread. */
class Core {
public:
    /** Forgets the script, the record and all open handles. */
    void reset();

    /** From now on the service has these targets; with an empty list the discovery succeeds without a target. */
    void targets(const std::string &service, std::vector<std::string> ids);
    /** The next discovery of the service, before those of targets(); several are used up in order. */
    void targetsOnce(const std::string &service, Targets targets);

    /** From now on the call succeeds with these outputs. */
    void answer(const std::string &function, std::vector<Value> outputs);
    /** From now on the call fails. */
    void fail(const std::string &function, zorva_core_status status);
    /** The next call only, before the outcome of answer() or fail(); several are used up in order. */
    void once(const std::string &function, Outcome outcome);
    /**
     * Runs `action` inside each such call, on the caller's thread. A discovery goes by its record, as in
     * `getTargetIds("iris")`, and a sleep of the module by `sleep`.
     */
    void during(const std::string &function, std::function<void()> action);
    /** From now on the service is not found. */
    void loseTargets(const std::string &service);

    std::vector<std::string> calls() const;
    std::vector<LogLine> logs() const;
    /** Log lines of one level. */
    std::vector<std::string> logs(int level) const;
    /** Sleeps of the module in seconds; they take no time. */
    std::vector<unsigned int> sleeps() const;
    /** Calls that had no answer, and handles or arguments that make no sense. */
    std::vector<std::string> problems() const;
    /** Forgets the recorded calls, log lines and sleeps; the script and the handles stay. */
    void clearRecord();

    // For the functions of the library.
    Outcome perform(const std::string &function, const std::string &recorded, std::size_t outputs);
    bool discover(const std::string &service, std::vector<std::string> &ids);
    void *open(const std::string &name);
    void close(void *handle);
    std::string nameOf(void *handle) const;
    void log(void *handle, int level, const char *format, va_list arguments);
    void problem(const std::string &text);
    void sleep(unsigned int seconds);

private:
    void act(const std::string &function);

    mutable std::mutex mutex_;
    std::map<std::string, Targets> targets_;
    std::map<std::string, std::deque<Targets>> targetsOnce_;
    std::map<std::string, Outcome> outcomes_;
    std::map<std::string, std::deque<Outcome>> outcomesOnce_;
    std::map<std::string, std::function<void()>> actions_;
    std::map<std::uintptr_t, std::string> handles_;
    std::uintptr_t nextHandle_ = 1;
    std::vector<std::string> calls_;
    std::vector<LogLine> logs_;
    std::vector<unsigned int> sleeps_;
    std::vector<std::string> problems_;
};

/** The one scripted library of the process. */
Core &core();

} // namespace scripted

#endif
