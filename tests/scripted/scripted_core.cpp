// SPDX-License-Identifier: Apache-2.0
#include "scripted_core.h"

#include <cstdio>
#include <ostream>

namespace scripted {

namespace {

// Status of a call without a script; no test uses it.
constexpr zorva_core_status kUnscripted = -9999;

template <typename T>
bool takeOnce(std::map<std::string, std::deque<T>> &queues, const std::string &key, T &taken) {
    const auto queue = queues.find(key);
    if (queue == queues.end() || queue->second.empty()) {
        return false;
    }
    taken = queue->second.front();
    queue->second.pop_front();
    return true;
}

} // namespace

bool operator==(const LogLine &left, const LogLine &right) {
    return left.level == right.level && left.text == right.text;
}

std::ostream &operator<<(std::ostream &stream, const LogLine &line) {
    return stream << line.level << " \"" << line.text << "\"";
}

void Core::reset() {
    const std::lock_guard<std::mutex> lock(mutex_);
    targets_.clear();
    targetsOnce_.clear();
    outcomes_.clear();
    outcomesOnce_.clear();
    actions_.clear();
    handles_.clear();
    calls_.clear();
    logs_.clear();
    sleeps_.clear();
    problems_.clear();
}

void Core::targets(const std::string &service, std::vector<std::string> ids) {
    const std::lock_guard<std::mutex> lock(mutex_);
    targets_[service] = {true, std::move(ids)};
}

void Core::loseTargets(const std::string &service) {
    const std::lock_guard<std::mutex> lock(mutex_);
    targets_.erase(service);
}

void Core::targetsOnce(const std::string &service, Targets targets) {
    const std::lock_guard<std::mutex> lock(mutex_);
    targetsOnce_[service].push_back(std::move(targets));
}

void Core::answer(const std::string &function, std::vector<Value> outputs) {
    const std::lock_guard<std::mutex> lock(mutex_);
    outcomes_[function] = {0, std::move(outputs)};
}

void Core::fail(const std::string &function, zorva_core_status status) {
    const std::lock_guard<std::mutex> lock(mutex_);
    outcomes_[function] = {status, {}};
}

void Core::once(const std::string &function, Outcome outcome) {
    const std::lock_guard<std::mutex> lock(mutex_);
    outcomesOnce_[function].push_back(std::move(outcome));
}

void Core::during(const std::string &function, std::function<void()> action) {
    const std::lock_guard<std::mutex> lock(mutex_);
    actions_[function] = std::move(action);
}

std::vector<std::string> Core::calls() const {
    const std::lock_guard<std::mutex> lock(mutex_);
    return calls_;
}

std::vector<LogLine> Core::logs() const {
    const std::lock_guard<std::mutex> lock(mutex_);
    return logs_;
}

std::vector<std::string> Core::logs(int level) const {
    std::vector<std::string> texts;
    for (LogLine &line : logs()) {
        if (line.level == level) {
            texts.push_back(std::move(line.text));
        }
    }
    return texts;
}

std::vector<unsigned int> Core::sleeps() const {
    const std::lock_guard<std::mutex> lock(mutex_);
    return sleeps_;
}

std::vector<std::string> Core::problems() const {
    const std::lock_guard<std::mutex> lock(mutex_);
    return problems_;
}

void Core::clearRecord() {
    const std::lock_guard<std::mutex> lock(mutex_);
    calls_.clear();
    logs_.clear();
    sleeps_.clear();
}

void Core::act(const std::string &function) {
    std::function<void()> action;
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        const auto found = actions_.find(function);
        if (found == actions_.end()) {
            return;
        }
        action = found->second;
    }
    action();
}

Outcome Core::perform(const std::string &function, const std::string &recorded, std::size_t outputs) {
    Outcome outcome;
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        calls_.push_back(recorded);
        const auto standing = outcomes_.find(function);
        if (takeOnce(outcomesOnce_, function, outcome)) {
        } else if (standing != outcomes_.end()) {
            outcome = standing->second;
        } else if (outputs != 0) {
            problems_.push_back("no answer for " + recorded);
            outcome.status = kUnscripted;
        }
        if (outcome.status == 0 && outcome.outputs.size() != outputs) {
            problems_.push_back("answer with " + std::to_string(outcome.outputs.size()) + " outputs for " + recorded);
            outcome.status = kUnscripted;
        }
    }
    act(function);
    return outcome;
}

bool Core::discover(const std::string &service, std::vector<std::string> &ids) {
    const std::string recorded = "getTargetIds(\"" + service + "\")";
    act(recorded);
    const std::lock_guard<std::mutex> lock(mutex_);
    calls_.push_back(recorded);
    Targets targets;
    if (!takeOnce(targetsOnce_, service, targets)) {
        targets = targets_[service];
    }
    ids.insert(ids.end(), targets.ids.begin(), targets.ids.end());
    return targets.found;
}

void *Core::open(const std::string &name) {
    const std::lock_guard<std::mutex> lock(mutex_);
    const std::uintptr_t handle = nextHandle_++;
    handles_[handle] = name;
    return reinterpret_cast<void *>(handle); // NOLINT(performance-no-int-to-ptr): a handle is a number, never a place
}

void Core::close(void *handle) {
    const std::lock_guard<std::mutex> lock(mutex_);
    handles_.erase(reinterpret_cast<std::uintptr_t>(handle));
}

std::string Core::nameOf(void *handle) const {
    if (handle == nullptr) {
        return "null";
    }
    const std::lock_guard<std::mutex> lock(mutex_);
    const auto found = handles_.find(reinterpret_cast<std::uintptr_t>(handle));
    return found != handles_.end() ? found->second : "closed";
}

void Core::log(void *handle, int level, const char *format, va_list arguments) {
    char text[4096];
    // The module's formats are checked where they are written; here the format is an argument by design.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
    vsnprintf(text, sizeof text, format, arguments);
#pragma GCC diagnostic pop
    const std::string name = nameOf(handle);
    const std::lock_guard<std::mutex> lock(mutex_);
    logs_.push_back({level, text});
    if (name != "log") {
        problems_.push_back("log line without a logging context (" + name + "): " + text);
    }
}

void Core::problem(const std::string &text) {
    const std::lock_guard<std::mutex> lock(mutex_);
    problems_.push_back(text);
}

void Core::sleep(unsigned int seconds) {
    act("sleep");
    const std::lock_guard<std::mutex> lock(mutex_);
    sleeps_.push_back(seconds);
}

Core &core() {
    // Never destroyed: the module's static objects may still call at the end of the process.
    static Core &instance = *new Core;
    return instance;
}

} // namespace scripted
