// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Checked access to the members of a JSON object.
 */
#ifndef QUARNSNMP_CAMERA_OBJECT_READER_H
#define QUARNSNMP_CAMERA_OBJECT_READER_H

#include <string>
#include <vector>

#include <nlohmann/json.hpp>

namespace camera {

/** Reader of one JSON object from a user's file; it rejects unknown keys. */
class ObjectReader {
public:
    /**
     * @param object  must outlive the reader
     * @param path    path of the object in its file; empty for the outermost object
     * @param keys    the permitted keys
     * @throws JsonTextError when the value is not an object or has another key
     */
    ObjectReader(const nlohmann::json &object, std::string path, const std::vector<std::string> &keys);

    /**
     * Returns the value of a required key.
     * @param expected  description of a valid value, for the error message
     * @throws JsonTextError when the key is missing
     */
    const nlohmann::json &required(const std::string &key, const std::string &expected) const;

    /** Returns the text of a required key: 1 to kLongestText octets. @throws JsonTextError */
    std::string requiredText(const std::string &key) const;

    /** Returns a text of at most kLongestText octets; empty when the key is missing. @throws JsonTextError */
    std::string optionalText(const std::string &key) const;

    /** Reports an error in the value of a key. @throws JsonTextError */
    [[noreturn]] void fail(const std::string &key, const std::string &text) const;

private:
    const nlohmann::json &object_;
    std::string path_;
};

} // namespace camera

#endif
