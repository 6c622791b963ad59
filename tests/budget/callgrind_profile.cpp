// SPDX-License-Identifier: Apache-2.0
#include "callgrind_profile.h"

#include <filesystem>
#include <fstream>
#include <stdexcept>

#include "process.h"
#include "temporary_directory.h"

namespace budget {

namespace {

constexpr const char *kAgentLibrary = "/libnetsnmp";

/** Returns the rest of a line after a word at its start, or null if it starts otherwise. */
const char *after(const std::string &word, const std::string &line) {
    return line.rfind(word, 0) == 0 ? line.c_str() + word.size() : nullptr;
}

bool isAgentLibrary(const std::string &object) {
    return object.find(kAgentLibrary) != std::string::npos;
}

/** Cost of a line "POSITION COST". */
std::uint64_t costOf(const std::string &line) {
    const std::size_t blank = line.find(' ');
    if (blank == std::string::npos) {
        throw std::runtime_error("not a cost: " + line);
    }
    return std::stoull(line.substr(blank + 1));
}

/**
 * Reads a profile line by line. Costs of a function's own lines add up to the total. What it takes to call the agent's
 * library stands behind the line of the call, with all that the library calls in turn, and is not the module's.
 */
class Reader {
public:
    void take(const std::string &line) {
        if (const char *name = after("desc: Trigger: Client Request: ", line)) {
            subject = name;
        } else if (const char *caller = after("ob=", line)) {
            object_ = caller;
            calledObject_ = caller; // unless a line names another one
        } else if (const char *callee = after("cob=", line)) {
            calledObject_ = callee;
        } else if (after("calls=", line) != nullptr) {
            isCall_ = true;
        } else if (!line.empty() && line[0] >= '0' && line[0] <= '9') {
            takeCost(costOf(line));
        }
    }

    std::string subject; ///< empty in the profile of the program's end, which belongs to no request
    Instructions instructions;

private:
    void takeCost(std::uint64_t cost) {
        if (!isCall_) {
            instructions.own += cost;
            instructions.total += cost;
        } else if (isAgentLibrary(calledObject_) && !isAgentLibrary(object_)) {
            instructions.own -= cost;
        }
        if (isCall_) {
            isCall_ = false;
            calledObject_ = object_;
        }
    }

    std::string object_;
    std::string calledObject_;
    bool isCall_ = false;
};

void addProfile(const std::filesystem::path &path, std::map<std::string, Instructions> &result) {
    std::ifstream file(path);
    Reader reader;
    for (std::string line; std::getline(file, line);) {
        reader.take(line);
    }
    if (!reader.subject.empty()) {
        result[reader.subject] = reader.instructions;
    }
}

} // namespace

std::map<std::string, Instructions> countInstructions() {
    const support::TemporaryDirectory directory;
    const std::string program = BUDGET_REQUESTS;
    const support::CommandResult run = support::runCommand(
        {"valgrind", "--tool=callgrind", "--collect-atstart=no", "--toggle-collect=*CallHandler*",
         "--compress-strings=no", "--compress-pos=no", "--callgrind-out-file=" + directory.file("profile"), program},
        {{"LD_BIND_NOW", "1"}}, std::chrono::seconds(120));
    if (!run.status.clean()) {
        throw std::runtime_error(program + " under callgrind: " + run.status.describe() + "\n" + run.errors);
    }
    std::map<std::string, Instructions> result;
    for (const auto &entry : std::filesystem::directory_iterator(directory.path())) {
        addProfile(entry.path(), result);
    }
    return result;
}

} // namespace budget
