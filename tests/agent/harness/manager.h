// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * A manager of the tests, independent of the client's own.
 */
#ifndef QUARNSNMP_HARNESS_MANAGER_H
#define QUARNSNMP_HARNESS_MANAGER_H

#include <chrono>
#include <ostream>
#include <string>
#include <vector>

#include "eventually.h"
#include "recorded_values.h"
#include "secure_session.h"

namespace harness {

using namespace support;

/** Error statuses of answers. */
enum class ErrorStatus : long {
    None = 0,
    TooBig = 1,
    GenErr = 5,
    NoAccess = 6,
    WrongType = 7,
    WrongLength = 8,
    WrongEncoding = 9,
    WrongValue = 10,
    NoCreation = 11,
    InconsistentValue = 12,
    ResourceUnavailable = 13,
    CommitFailed = 14,
    UndoFailed = 15,
    AuthorizationError = 16,
    NotWritable = 17,
    InconsistentName = 18
};

/** The outcome of a request. */
struct Result {
    bool answered = false; ///< false without an answer in time; the other members are unset then
    std::string report;    ///< the library's text of an SNMPv3 report, which replaces an answer
    ErrorStatus error = ErrorStatus::None;
    long errorIndex = 0; ///< number of the varbind with the error, from 1; 0 for none
    std::vector<Varbind> varbinds;

    /** Returns true for an answer without an error. */
    bool ok() const;

    /** Returns the only varbind of an answer. @throws std::runtime_error if it has none or several */
    const Varbind &single() const;
};

/** The versions with communities. */
enum class CommunityVersion { V1, V2c };

/** Prints outcomes for the test framework. */
std::ostream &operator<<(std::ostream &stream, const Result &result);
std::ostream &operator<<(std::ostream &stream, ErrorStatus status);

/**
 * A manager's session with one agent. A request is sent once and never repeated, so the agent sees what the test sends.
 * Several managers may be used at the same time, each by one thread. Local failures, such as a malformed OID, throw
 * std::runtime_error or std::invalid_argument.
 */
class Manager {
public:
    /**
     * Opens a session.
     * @param peer       address of the agent, as HOST:PORT
     * @param community  the tests' agent knows "public" (may read) and "private" (may read and write)
     */
    explicit Manager(const std::string &peer, const std::string &community = "private",
                     CommunityVersion version = CommunityVersion::V2c);

    /**
     * Opens an SNMPv3 session, of which openSecureSession() says more.
     * @param timeout  as for setTimeout()
     */
    Manager(const std::string &peer, const User &user,
            std::chrono::microseconds timeout = patient(std::chrono::seconds(5)));
    ~Manager();
    Manager(const Manager &) = delete;
    Manager &operator=(const Manager &) = delete;

    /** Sets the time to wait for an answer. The default is 5 s, stretched with patient(). */
    void setTimeout(std::chrono::microseconds timeout);

    /** Reads objects: get(".1.3…", ".1.3…"). */
    template <typename... Oids>
    Result get(const Oids &...oids) {
        return getAll({std::string(oids)...});
    }

    /** Reads the objects of a list. */
    Result getAll(const std::vector<std::string> &oids);

    /** Reads the objects that follow: getNext(".1.3…", ".1.3…"). */
    template <typename... Oids>
    Result getNext(const Oids &...oids) {
        return getNextAll({std::string(oids)...});
    }

    /** Reads the objects that follow those of a list. */
    Result getNextAll(const std::vector<std::string> &oids);

    /** Reads many objects: one after each of the first `nonRepeaters` OIDs, `maxRepetitions` after each other one. */
    Result getBulk(long nonRepeaters, long maxRepetitions, const std::vector<std::string> &oids);

    /** Writes objects, all in one request. */
    Result set(const std::vector<Varbind> &values);

    /** Writes one object of any type that has a number. */
    Result set(const std::string &oid, Type type, std::int64_t value);

    /**
     * Reads all objects below an OID, one by one.
     * @throws std::runtime_error if the agent does not answer, answers with an error, or goes backwards
     */
    std::vector<Varbind> walk(const std::string &root);

    /** As walk(), with GETBULK requests. @param repetitions objects per request */
    std::vector<Varbind> bulkWalk(const std::string &root, long repetitions = 20);

private:
    Result request(int command, const std::vector<Varbind> &varbinds, long nonRepeaters, long maxRepetitions);
    std::vector<Varbind> collect(const std::string &root, long repetitions);

    void *session_;
};

} // namespace harness

#endif
