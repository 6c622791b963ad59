#include "camera_file.h"

#include "json_text.h"

#include <filesystem>
#include <fstream>
#include <utility>

namespace camera {

namespace {

/** Hands out the parts of one JSON object and complains about what nobody asked for. */
class ObjectReader {
public:
    ObjectReader(const nlohmann::json &object, std::string path, const std::vector<std::string> &keys)
        : object_(object), path_(std::move(path)) {
        if (!object.is_object()) {
            fail("", mismatch("an object with " + listed(keys), object));
        }
        for (const auto &item : object.items()) {
            if (std::find(keys.begin(), keys.end(), item.key()) == keys.end()) {
                fail(item.key(), "unknown key; expected one of: " + listed(keys));
            }
        }
    }

    const nlohmann::json &required(const std::string &key, const std::string &expected) const {
        const auto found = object_.find(key);
        if (found == object_.end()) {
            fail(key, "missing; expected " + expected);
        }
        return *found;
    }

    [[noreturn]] void fail(const std::string &key, const std::string &text) const {
        throw JsonTextError(toString({joinPath(path_, key), text}));
    }

private:
    const nlohmann::json &object_;
    std::string path_;
};

std::string readName(const ObjectReader &file) {
    const std::string expected = "a text of 1 to " + std::to_string(kLongestText) + " octets";
    const nlohmann::json &value = file.required("name", expected);
    const std::optional<std::string> name = textIn(value, kLongestText);
    if (!name || name->empty()) {
        file.fail("name", mismatch(expected, value));
    }
    return *name;
}

std::string readDescription(const ObjectReader &file, const nlohmann::json &values) {
    if (!values.contains("description")) {
        return {};
    }
    const std::optional<std::string> description = textIn(values["description"], kLongestText);
    if (!description) {
        file.fail("description",
                  mismatch("a text of at most " + std::to_string(kLongestText) + " octets", values["description"]));
    }
    return *description;
}

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
    camera.name = readName(file);
    camera.description = readDescription(file, values);
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
        throw CameraFileError(fileName + ": " + error.what());
    }
}

CameraDescription readCameraFile(const std::string &path) {
    constexpr std::uintmax_t kLargestFile = std::uintmax_t{1024} * 1024;
    std::error_code error;
    const std::filesystem::file_status status = std::filesystem::status(path, error);
    if (!std::filesystem::is_regular_file(status)) {
        throw CameraFileError(path + ": " + (error ? error.message() : "not a regular file"));
    }
    if (std::filesystem::file_size(path, error) > kLargestFile || error) {
        throw CameraFileError(path + ": larger than " + std::to_string(kLargestFile) + " octets");
    }
    std::ifstream file(path, std::ios::binary);
    const std::string text((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    if (!file) {
        throw CameraFileError(path + ": cannot be read");
    }
    return parseCamera(text, path);
}

std::vector<CameraFile> cameraFiles(const std::string &directory) {
    std::vector<CameraFile> files;
    std::error_code error;
    for (const auto &entry : std::filesystem::directory_iterator(directory, error)) {
        if (entry.path().extension() == ".json") {
            files.push_back({entry.path().stem().string(), entry.path().string()});
        }
    }
    std::sort(files.begin(), files.end(),
              [](const CameraFile &left, const CameraFile &right) { return left.name < right.name; });
    return files;
}

std::string findCamera(const std::string &nameOrPath, const std::string &directory) {
    if (nameOrPath.find('/') != std::string::npos || std::filesystem::path(nameOrPath).extension() == ".json") {
        return nameOrPath;
    }
    std::vector<std::string> names;
    for (const CameraFile &file : cameraFiles(directory)) {
        if (file.name == nameOrPath) {
            return file.path;
        }
        names.push_back(file.name);
    }
    throw CameraFileError("no camera '" + nameOrPath + "' in " + directory + "; there are: " + listed(names));
}

} // namespace camera
