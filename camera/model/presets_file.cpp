// SPDX-License-Identifier: Apache-2.0
#include "presets_file.h"

#include <filesystem>
#include <utility>

#include "json_text.h"
#include "object_reader.h"
#include "presets.h"
#include "text_file.h"

namespace camera {

namespace {

constexpr const char *kPresets = "presets";

/** Resolves symbolic links, so that a replacement of the file keeps them. The file need not exist. */
std::string withoutLinks(const std::string &path) {
    namespace fs = std::filesystem;
    constexpr int kMostLinks = 40; // as many as the kernel follows
    std::error_code error;
    fs::path file = fs::weakly_canonical(path, error);
    for (int i = 0; i < kMostLinks && !error && fs::is_symlink(fs::symlink_status(file, error)); ++i) {
        file = fs::weakly_canonical(file.parent_path() / fs::read_symlink(file, error), error);
    }
    return file.empty() ? path : file.string();
}

bool fileExists(const std::string &path) {
    std::error_code ignored;
    return std::filesystem::exists(std::filesystem::status(path, ignored));
}

} // namespace

PresetsFile::PresetsFile(CameraModel &model, const std::string &path, WarningHandler warn)
    : model_(model), path_(withoutLinks(path)), warn_(std::move(warn)),
      targets_(model.targetIds(Presets::definition().service)) {
    if (fileExists(path_)) {
        load(readTextFile(path_));
    } else {
        // Reports a directory without write permission now rather than at the first preset.
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
                // The model reports the target and the field; in the file, the target alone is the key.
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
        warn_(error.what());
        model_.report(target, model_.now(), "presets_not_kept", {{"error", error.what()}});
    }
}

} // namespace camera
