// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * A camera that answers from a table, and as wrongly as a test wants.
 */
#ifndef QUARNSNMP_SCRIPTED_CAMERA_H
#define QUARNSNMP_SCRIPTED_CAMERA_H

#include <deque>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "context.h"
#include "requester.h"

namespace scripted {

/** The exit code of a command that the camera refused. */
inline constexpr int kRefused = 1;

/** The error status genErr. */
inline constexpr long kGenErr = 5;

/** The identifier of a named object. */
std::string id(const std::string &name);

/** What was asked, as a text such as "set positionPan=00 00 00 00 positionTilt=…". */
using Log = std::vector<std::string>;

class Camera : public ptzctl::Requester {
public:
    /** A camera with every object that the program knows, with values of the right kind. */
    Camera();

    ptzctl::Reply exchange(ptzctl::Request request, const std::vector<ptzctl::Variable> &variables) override;

    /** Gives an object a value. */
    void put(const std::string &name, std::int64_t number);
    void put(const std::string &name, const std::string &octets);
    void remove(const std::string &name);

    /** Lets reading an object, or writing one, end with an error. */
    void failGet(const std::string &name, long error);
    void failSet(const std::string &name, long error);

    /** Changes an answer before it is given. */
    std::function<void(ptzctl::Request, ptzctl::Reply &)> spoil;

    /** Whether a SET changes what is read. */
    bool obeys = true;

    Log log;

private:
    ptzctl::Reply get(const std::vector<ptzctl::Variable> &variables);
    ptzctl::Reply next(const ptzctl::Variable &variable);
    ptzctl::Reply set(const std::vector<ptzctl::Variable> &variables);

    using Key = std::vector<std::uint32_t>;
    std::map<Key, ptzctl::Variable> values_;
    std::map<std::string, long> getErrors_;
    std::map<std::string, long> setErrors_;
};

/** What a command for a scripted camera reports. */
ptzctl::Report report(Camera &camera, const ptzctl::Action &action, const ptzctl::Settings &settings = {});

/** The text of the failure that a command ends with; fails the test when it does not, or with another exit code. */
std::string failure(Camera &camera, const ptzctl::Action &action, int code);

} // namespace scripted

#endif
