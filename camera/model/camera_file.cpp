// SPDX-License-Identifier: Apache-2.0
#include "camera_file.h"

#include <utility>

#include "json_text.h"
#include "object_reader.h"

namespace camera {

namespace {

std::unique_ptr<Service> readService(const std::string &name, const nlohmann::json &values) {
    const std::string path = joinPath("services", name);
    const ObjectReader reader(values, path, {"targets"});
    const std::string expected = "a list of at most " + std::to_string(kMostTargets) + " objects";
    const nlohmann::json &targets = reader.required("targets", expected);
    if (!targets.is_array() || targets.size() > kMostTargets) {
        reader.fail("targets", mismatch(expected, targets));
    }
    std::unique_ptr<Service> service = makeService(name);
    for (std::size_t i = 0; i < targets.size(); ++i) {
        if (const std::optional<Problem> problem = service->addTarget(targets[i])) {
            reader.fail(joinPath("targets[" + std::to_string(i) + "]", problem->path), problem->text);
        }
    }
    return service;
}

CameraDescription readCamera(const nlohmann::json &values) {
    const ObjectReader file(values, "", {"name", "description", "services"});
    CameraDescription camera;
    camera.name = file.requiredText("name");
    camera.description = file.optionalText("description");
    const nlohmann::json &services = file.required("services", "an object with the camera's services");
    const ObjectReader known(services, "services", knownServices());
    for (const auto &item : services.items()) {
        camera.services.emplace(item.key(), readService(item.key(), item.value()));
    }
    return camera;
}

} // namespace

CameraDescription parseCamera(const std::string &text, const std::string &fileName) {
    try {
        return readCamera(parseJsonText(text));
    } catch (const JsonTextError &error) {
        throw FileError(fileName + ": " + error.what());
    }
}

CameraDescription readCameraFile(const std::string &path) {
    return parseCamera(readTextFile(path), path);
}

} // namespace camera
