// SPDX-License-Identifier: Apache-2.0
#include "selection.h"

#include <algorithm>
#include <iterator>
#include <limits>
#include <set>
#include <sstream>
#include <stdexcept>

#include <fnmatch.h>

#include "command_text.h"
#include "control_client.h"
#include "numbers.h"

namespace fleet {

namespace {

bool matches(const FleetCamera &camera, const std::string &part) {
    constexpr unsigned kHighest = std::numeric_limits<unsigned>::max();
    const std::size_t hyphen = part.find('-');
    const auto first = numberIn(part.substr(0, hyphen), 0, kHighest);
    const auto last = hyphen == std::string::npos ? first : numberIn(part.substr(hyphen + 1), 0, kHighest);
    if (first && last) {
        return camera.number >= *first && camera.number <= *last;
    }
    const std::vector<const std::string *> texts = {&camera.name, &camera.kind, &camera.address};
    return std::any_of(texts.begin(), texts.end(),
                       [&part](const std::string *text) { return fnmatch(part.c_str(), text->c_str(), 0) == 0; });
}

FleetCamera cameraIn(const nlohmann::json &values) {
    const nlohmann::json &camera = values.at("camera");
    const nlohmann::json &agent = values.at("agent");
    FleetCamera read;
    read.number = values.at("number").get<unsigned>();
    read.name = values.at("name").get<std::string>();
    read.kind = values.at("kind").get<std::string>();
    read.address = values.at("address").get<std::string>();
    read.port = values.at("port").get<unsigned>();
    read.directory = values.at("directory").get<std::string>();
    read.isReady = camera.at("ready").get<bool>() && agent.at("ready").get<bool>();
    read.restarts = camera.at("restarts").get<unsigned>() + agent.at("restarts").get<unsigned>();
    read.processes[0] = camera.at("process").get<int>();
    read.processes[1] = agent.at("process").get<int>();
    return read;
}

} // namespace

std::vector<FleetCamera> camerasIn(const nlohmann::json &answer) {
    if (const std::optional<std::string> refusal = camera::refusalIn(answer)) {
        throw std::runtime_error("the directory is not that of a fleet: " + *refusal);
    }
    try {
        const nlohmann::json &values = answer.at("cameras");
        std::vector<FleetCamera> cameras;
        std::transform(values.begin(), values.end(), std::back_inserter(cameras), cameraIn);
        return cameras;
    } catch (const nlohmann::json::exception &) {
        throw std::runtime_error("the fleet sent an answer that cannot be understood");
    }
}

std::vector<FleetCamera> camerasOf(const std::string &directory) {
    return camerasIn(camera::ControlClient(directory, "fleet").execute({{"command", "status"}}));
}

std::vector<FleetCamera> selected(const std::vector<FleetCamera> &cameras, const std::string &pattern) {
    std::set<unsigned> numbers;
    std::istringstream parts(pattern);
    bool hasParts = false;
    for (std::string part; std::getline(parts, part, ',');) {
        bool selects = false;
        for (const FleetCamera &camera : cameras) {
            if (matches(camera, part)) {
                numbers.insert(camera.number);
                selects = true;
            }
        }
        if (!selects) {
            throw std::invalid_argument("'" + part + "' selects no camera");
        }
        hasParts = true;
    }
    if (!hasParts) {
        throw std::invalid_argument("an empty pattern selects no camera");
    }
    std::vector<FleetCamera> chosen;
    std::copy_if(cameras.begin(), cameras.end(), std::back_inserter(chosen),
                 [&numbers](const FleetCamera &camera) { return numbers.count(camera.number) > 0; });
    return chosen;
}

} // namespace fleet
