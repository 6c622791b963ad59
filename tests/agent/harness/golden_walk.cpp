// SPDX-License-Identifier: Apache-2.0
#include "golden_walk.h"

#include <fstream>
#include <map>
#include <stdexcept>
#include <vector>

#include "settings.h"

namespace harness {

namespace {

/** A line of a recorded walk, taken apart as far as it is needed. */
struct Line {
    std::string oid;
    std::string type;
    std::string value;

    std::string text() const {
        return oid + " " + type + " " + value;
    }
    bool matches(const Varbind &varbind) const {
        return oid == varbind.oid && type == recordedType(varbind.type) &&
               (value == "*" || value == recordedValue(varbind));
    }
};

Line parseLine(const std::string &text, const std::string &path) {
    const std::size_t first = text.find(' ');
    const std::size_t second = first != std::string::npos ? text.find(' ', first + 1) : std::string::npos;
    if (second == std::string::npos) {
        throw std::runtime_error(path + ": not a line of a walk: " + text);
    }
    return {text.substr(0, first), text.substr(first + 1, second - first - 1), text.substr(second + 1)};
}

/** Reads a recorded walk; a file that does not exist is an empty one. */
std::vector<Line> readLines(const std::string &path) {
    std::vector<Line> lines;
    std::ifstream stream(path);
    for (std::string text; std::getline(stream, text);) {
        lines.push_back(parseLine(text, path));
    }
    return lines;
}

/** Writes a walk; values that were recorded as `*` stay so. */
void writeLines(const std::string &path, const std::vector<Line> &before, const std::vector<Varbind> &walk) {
    std::map<std::string, bool> starred;
    for (const Line &line : before) {
        starred[line.oid + " " + line.type] = line.value == "*";
    }
    std::ofstream stream(path, std::ios::trunc);
    for (const Varbind &varbind : walk) {
        const std::string type = recordedType(varbind.type);
        stream << varbind.oid << " " << type << " "
               << (starred[varbind.oid + " " + type] ? "*" : recordedValue(varbind)) << "\n";
    }
    stream.close();
    if (!stream) {
        throw std::runtime_error("cannot write " + path);
    }
}

/** Merges both sides by OID and returns the lines that differ. */
std::string difference(const std::vector<Line> &wanted, const std::vector<Varbind> &found) {
    std::string result;
    std::size_t w = 0;
    std::size_t f = 0;
    while (w < wanted.size() || f < found.size()) {
        if (w < wanted.size() && f < found.size() && wanted[w].oid == found[f].oid) {
            if (!wanted[w].matches(found[f])) {
                result += "- " + wanted[w].text() + "\n+ " + recordedLine(found[f]) + "\n";
            }
            ++w;
            ++f;
        } else if (f == found.size() || (w < wanted.size() && comesBefore(wanted[w].oid, found[f].oid))) {
            result += "- " + wanted[w++].text() + "\n";
        } else {
            result += "+ " + recordedLine(found[f++]) + "\n";
        }
    }
    return result;
}

std::string describe(const Result &result) {
    std::ostringstream stream;
    stream << result;
    return stream.str();
}

/** Checks the order of a recorded walk, and compares GET and GETNEXT with GETBULK. */
std::string inconsistencies(Manager &manager, const std::string &root, const std::vector<Line> &lines) {
    std::string result;
    std::string previous = root;
    for (const Line &line : lines) {
        if (!comesBefore(previous, line.oid)) {
            result += line.oid + " does not come after " + previous + "\n";
        }
        const Result next = manager.getNext(previous);
        if (!next.ok() || next.single().oid != line.oid) {
            result += "GETNEXT of " + previous + " should reach " + line.oid + " but gives " + describe(next) + "\n";
        }
        const Result same = manager.get(line.oid);
        if (!same.ok() || !line.matches(same.single())) {
            result += "GET should give " + line.text() + " but gives " + describe(same) + "\n";
        }
        previous = line.oid;
    }
    return result;
}

} // namespace

testing::AssertionResult matchesWalkFile(Manager &manager, const std::string &root, const std::string &path,
                                         bool update) {
    const std::vector<Varbind> walk = manager.bulkWalk(root);
    if (walk.empty()) {
        return testing::AssertionFailure() << "the agent serves nothing below " << root;
    }
    if (update) {
        writeLines(path, readLines(path), walk);
    }
    const std::vector<Line> wanted = readLines(path);
    const std::string problems = difference(wanted, walk) + inconsistencies(manager, root, wanted);
    if (!problems.empty()) {
        return testing::AssertionFailure() << "the walk of " << root << " differs from " << path << ":\n" << problems;
    }
    return testing::AssertionSuccess();
}

testing::AssertionResult matchesGoldenWalk(Manager &manager, const std::string &root, const std::string &name) {
    return matchesWalkFile(manager, root, goldenDirectory() + "/" + name + ".walk",
                           environmentOr("QUARNSNMP_UPDATE_GOLDEN", "") == "1");
}

} // namespace harness
