// SPDX-License-Identifier: Apache-2.0
#include "presets_file.h"

#include <filesystem>
#include <utility>

#include "json_text.h"
#include "presets.h"

namespace camera {

namespace {

constexpr const char *kPresets = "presets";

/** The file itself where links point to it, so that replacing the file leaves the links. It need not be there. */
std::string withoutLinks(const std::string &path) {
    namespace fs = std::filesystem;
    constexpr int kMostLinks = 40; // more are a circle
    std::error_code error;
    fs::path file = fs::weakly_canonical(path, error);
    for (int i = 0; i < kMostLinks && !error && fs::is_symlink(fs::symlink_status(file, error)); ++i) {
        file = fs::weakly_canonical(file.parent_path() / fs::read_symlink(file, error), error);
    }
    return file.empty() ? path : file.string();
}

bool isThere(const std::string &path) {
    std::error_code ignored;
    return std::filesystem::exists(std::filesystem::status(path, ignored));
}

} // namespace

PresetsFile::PresetsFile(CameraModel &model, const std::string &path, Complaint complain)
    : model_(model), path_(withoutLinks(path)), complain_(std::move(complain)),
      targets_(model.targetIds(Presets::definition().service)) {
    if (isThere(path_)) {
        load(readTextFile(path_));
    } else {
        // A place where nothing can be written shows now rather than with the first preset.
        save();
    }
    subscription_ = model.events().subscribe([this](const nlohmann::json &event) { follow(event); });
}

void PresetsFile::load(const std::string &text) {
    try {
        const nlohmann::json values = parseJsonText(text);
        const ObjectReader file(values, "", targets_);
        for (const auto &item : values.items()) {
            if (const std::optional<Problem> problem = model_.set(item.key(), kPresets, item.value())) {
                // The model names target and field, of which the file has the target only.
                const std::string place = problem->path.substr((item.key() + " " + kPresets).size());
                file.fail(item.key() + place, problem->text);
            }
            model_.keep(item.key());
        }
    } catch (const JsonTextError &error) {
        throw FileError(path_ + ": " + error.what());
    }
}

void PresetsFile::save() const {
    nlohmann::json values = nlohmann::json::object();
    const Service *service = model_.service(Presets::definition().service);
    for (std::size_t i = 0; i < targets_.size(); ++i) {
        values[targets_[i]] = service->values(i).at(kPresets);
    }
    constexpr int kIndent = 2;
    replaceFile(path_, values.dump(kIndent) + "\n");
}

void PresetsFile::follow(const nlohmann::json &event) {
    if (event.at("event") != "changed" || !event.at("fields").contains(kPresets)) {
        return;
    }
    const std::string target = event.at("target");
    try {
        save();
        model_.keep(target);
    } catch (const FileError &error) {
        complain_(error.what());
        model_.report(target, model_.now(), "presets_not_kept", {{"error", error.what()}});
    }
}

} // namespace camera
