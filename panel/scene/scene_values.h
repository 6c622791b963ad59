// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Values of scene files: numbers in ranges, points, colours, names of kinds.
 */
#ifndef QUARNSNMP_PANEL_SCENE_VALUES_H
#define QUARNSNMP_PANEL_SCENE_VALUES_H

#include <array>
#include <optional>
#include <utility>

#include "object_reader.h"
#include "scene.h"

namespace panel {

/** Range of a number, limits included. */
struct Range {
    double lowest;
    double highest;
};

inline constexpr Range kDegrees = {-360.0, 360.0};
inline constexpr Range kCoordinate = {-5000.0, 5000.0};
inline constexpr Range kLength = {0.0, 1000.0};
inline constexpr Range kSize = {0.05, 1000.0};
inline constexpr Range kSeconds = {0.1, 3600.0};

/** Most elements of a list, and most points of an outline. */
inline constexpr std::size_t kMostElements = 2000;
inline constexpr std::size_t kMostPoints = 200;

/** Most buildings, and most lanes or walks: they cost more than other elements. */
inline constexpr std::size_t kMostBuildings = 500;
inline constexpr std::size_t kMostWays = 64;

/** Object of a scene file. All errors are camera::JsonTextError. */
class SceneObject {
public:
    /** @param object  must outlive this @param keys  the permitted keys */
    SceneObject(const nlohmann::json &object, std::string path, const std::vector<std::string> &keys);

    const std::string &path() const {
        return path_;
    }
    bool has(const std::string &key) const {
        return object_.contains(key);
    }
    const camera::ObjectReader &reader() const {
        return reader_;
    }

    /** Returns the number of a key, which is required. */
    double number(const std::string &key, const Range &range) const;

    /** Returns the number of a key, or a default. */
    double number(const std::string &key, const Range &range, double fallback) const;

    /** Returns the integer of a key; nothing without the key. */
    std::optional<int> integer(const std::string &key, int lowest, int highest) const;

    bool flag(const std::string &key, bool fallback) const;
    Vec2 point(const std::string &key) const;
    std::vector<Vec2> points(const std::string &key, std::size_t fewest) const;
    Color color(const std::string &key) const;
    std::string text(const std::string &key) const {
        return reader_.requiredText(key);
    }
    std::string optionalText(const std::string &key) const {
        return reader_.optionalText(key);
    }
    std::vector<std::string> texts(const std::string &key) const;

    /** Returns the value with the name in a key. */
    template <typename Kind, std::size_t size>
    Kind kind(const std::string &key, const std::array<std::pair<const char *, Kind>, size> &names,
              std::optional<Kind> fallback = std::nullopt) const {
        if (fallback && !has(key)) {
            return *fallback;
        }
        std::vector<std::string> all;
        all.reserve(names.size());
        for (const auto &each : names) {
            all.emplace_back(each.first);
        }
        const std::string name = choice(key, all);
        for (const auto &each : names) {
            if (name == each.first) {
                return each.second;
            }
        }
        return names.front().second;
    }

    /** Calls a function with each element of a list and its path; no effect without the key. */
    template <typename Function>
    void forEach(const std::string &key, std::size_t most, Function function) const {
        if (!has(key)) {
            return;
        }
        const nlohmann::json &elements = list(key, 0, most);
        for (std::size_t i = 0; i < elements.size(); ++i) {
            function(elements[i], elementPath(key, i));
        }
    }

    /** Returns a list of a permitted length. */
    const nlohmann::json &list(const std::string &key, std::size_t fewest, std::size_t most) const;

private:
    std::string choice(const std::string &key, const std::vector<std::string> &names) const;
    std::string elementPath(const std::string &key, std::size_t index) const;

    const nlohmann::json &object_;
    std::string path_;
    camera::ObjectReader reader_;
};

} // namespace panel

#endif
