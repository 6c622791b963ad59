// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Access of the rules to one camera.
 */
#ifndef PTZCTL_CHECK_CONTEXT_H
#define PTZCTL_CHECK_CONTEXT_H

#include <deque>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "exchange.h"
#include "object_table.h"
#include "options.h"
#include "session.h"

namespace ptzctl::check {

struct MoveNotes;

/** Ends a rule that has no valid response to judge. The result is Result::Error. */
class Undecided : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/** Ends a rule, or the judgement of one object, that cannot be tried. The result is Result::Skipped. */
class NotPossible : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/** Ends the check: Ctrl-C, or a camera that does not answer any more. */
class Ended : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/** Response to a GET of one object. */
struct Value {
    snmp::Varbind varbind;
    long error = 0; ///< error status of the response

    /** Tests for a value, without an error and without an exception such as noSuchObject. */
    bool present() const;
    /** Tests for noSuchObject or noSuchInstance. */
    bool missing() const;
};

/** One camera during a check. */
class Context {
public:
    /** @throws snmp::Failure when no session can be opened */
    Context(const snmp::SessionOptions &session, const Options &options);
    ~Context();
    Context(const Context &) = delete;
    Context &operator=(const Context &) = delete;

    const Options &options() const {
        return options_;
    }
    const std::string &host() const {
        return session_.host;
    }

    /**
     * Sends a request. One that reads is repeated once without a response, a SET is not.
     * @return what came back, kept until the end of the check
     * @throws Ended
     */
    const Exchange &send(const Request &request);

    /** Sends a request that reads. @throws Undecided without a valid response, Ended */
    const snmp::Response &read(const Request &request);

    /** Reads one object now. @throws Undecided, Ended */
    Value get(const std::string &oid);

    /** Returns what the first GET of an object has answered during this check. @throws Undecided, Ended */
    const Value &value(const std::string &oid);

    /**
     * Returns the successor of an OID as the first GETNEXT during this check has answered it; endOfMibView as a missing
     * value. @throws Undecided, Ended
     */
    const Value &successor(const std::string &oid);

    /** Sends a SET of some varbinds. @throws Ended */
    const Exchange &set(const std::vector<snmp::Varbind> &varbinds, bool withReadCommunity = false);

    /** Sends a request even after an interruption, because what it undoes must not remain. */
    const Exchange &sendAnyway(const Request &request, int attempts) {
        return transmit(request, attempts);
    }

    /** What the rules that move the camera know about it. */
    MoveNotes &moveNotes() {
        return *moveNotes_;
    }

    /** Notes a value that is written at the end of the check, or by restore(). The first note of an OID counts. */
    void restoreLater(const snmp::Varbind &varbind);

    /** Writes the noted values, also after an interruption. */
    void restore() noexcept;

    /** Returns what could not be restored or stopped since the last call. */
    std::vector<std::string> takeTroubles();

    /** Returns the exchanges that the rules have used since the last call, also those with known answers. */
    std::vector<const Exchange *> takeEvidence();

    /** Adds an exchange to the evidence. */
    void addEvidence(const Exchange &exchange);

    /** All requests so far, in their order. References stay valid. */
    const std::deque<Exchange> &exchanges() const {
        return exchanges_;
    }

    /** Tests whether the camera still answers. @throws Ended when it does not */
    void requireAnswers();

private:
    struct Recorder;

    /** A value, or the reason why there is none. */
    struct Known {
        Value value;
        std::string undecided;
        const Exchange *exchange = nullptr;
    };

    const Value &known(const Request &request);
    void restoreOne(const snmp::Varbind &before);
    Exchange &transmit(const Request &request, int attempts);
    snmp::Session &sessionFor(const Request &request);

    Options options_;
    snmp::SessionOptions session_;
    std::unique_ptr<Recorder> recorder_; ///< outlives the sessions
    std::unique_ptr<snmp::Session> own_;
    std::unique_ptr<snmp::Session> reading_; ///< with the community that must not write
    std::deque<Exchange> exchanges_;
    std::map<std::pair<Verb, std::string>, Known> values_;
    std::vector<snmp::Varbind> toRestore_;
    std::vector<std::string> troubles_;
    std::string end_; ///< reason why nothing more is sent; empty at first
    std::vector<const Exchange *> evidence_;
    std::unique_ptr<MoveNotes> moveNotes_;
};

/** Makes a request that reads. */
Request getRequest(const std::vector<std::string> &oids);
Request getNextRequest(const std::vector<std::string> &oids);
Request getBulkRequest(const std::vector<std::string> &oids, int nonRepeaters, int maxRepetitions);

} // namespace ptzctl::check

#endif
