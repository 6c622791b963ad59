// SPDX-License-Identifier: Apache-2.0
#include "json_text.h"

#include <set>
#include <vector>

#include "values.h"
#include "wire.h"

namespace camera {

namespace {

/** Limit of nesting: far above that of valid messages and files, and safe for the stack. */
constexpr std::size_t kDeepestNesting = 32;

bool nestedTooDeeply(std::string_view text) {
    std::size_t depth = 0;
    bool inString = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (inString) {
            if (c == '\\') {
                ++i;
            } else if (c == '"') {
                inString = false;
            }
        } else if (c == '"') {
            inString = true;
        } else if (c == '[' || c == '{') {
            if (++depth > kDeepestNesting) {
                return true;
            }
        } else if ((c == ']' || c == '}') && depth > 0) {
            --depth;
        }
    }
    return false;
}

/** Parser callback that finds the first duplicate key of an object. */
class DuplicateKeys {
public:
    void follow(nlohmann::json::parse_event_t event, const nlohmann::json &parsed) {
        using Event = nlohmann::json::parse_event_t;
        switch (event) {
        case Event::object_start:
        case Event::array_start:
            levels_.push_back({event == Event::array_start, 0, {}, {}});
            break;
        case Event::key:
            levels_.back().key = parsed.get_ref<const std::string &>();
            if (!levels_.back().keys.insert(levels_.back().key).second && first_.empty()) {
                first_ = path();
            }
            break;
        case Event::object_end:
        case Event::array_end:
            levels_.pop_back();
            nextElement();
            break;
        case Event::value:
            nextElement();
            break;
        }
    }

    /** Returns the path of the first duplicate key; empty when all keys are unique. */
    const std::string &first() const {
        return first_;
    }

private:
    struct Level {
        bool isArray;
        std::size_t index;
        std::string key;
        std::set<std::string> keys;
    };

    void nextElement() {
        if (!levels_.empty() && levels_.back().isArray) {
            ++levels_.back().index;
        }
    }

    std::string path() const {
        std::string path;
        for (const Level &level : levels_) {
            path = joinPath(path, level.isArray ? "[" + std::to_string(level.index) + "]" : level.key);
        }
        return path;
    }

    std::vector<Level> levels_;
    std::string first_;
};

/** Returns the parser's message without the exception name in brackets at its start. */
std::string plainMessage(const std::string &message) {
    constexpr std::string_view kPlace = "parse error at ";
    const std::size_t place = message.find(kPlace);
    if (place != std::string::npos) {
        return message.substr(place + kPlace.size());
    }
    const std::size_t bracket = message.find("] ");
    return bracket == std::string::npos ? message : message.substr(bracket + 2);
}

} // namespace

nlohmann::json parseJsonText(const std::string &text) {
    if (nestedTooDeeply(text)) {
        throw JsonTextError("nested deeper than " + std::to_string(kDeepestNesting) + " levels");
    }
    DuplicateKeys duplicates;
    nlohmann::json value;
    try {
        value = nlohmann::json::parse(text,
                                      [&](int /*depth*/, nlohmann::json::parse_event_t event, nlohmann::json &parsed) {
                                          duplicates.follow(event, parsed);
                                          return true;
                                      });
    } catch (const nlohmann::json::exception &error) {
        throw JsonTextError(plainMessage(error.what()));
    }
    if (!duplicates.first().empty()) {
        throw JsonTextError(duplicates.first() + ": duplicate key");
    }
    return value;
}

nlohmann::json parseLine(std::string_view line) {
    return nestedTooDeeply(line) ? nlohmann::json(nlohmann::json::value_t::discarded) : wire::decode(line);
}

} // namespace camera
