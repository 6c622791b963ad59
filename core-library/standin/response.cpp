// SPDX-License-Identifier: Apache-2.0
#include "response.h"

#include <array>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <memory>
#include <utility>

#include "status.h"
#include "wire.h"

namespace standin {

namespace {

/** A value in a response. No output holds more than a signed 64-bit number. */
using Value = std::variant<std::nullptr_t, std::int64_t, std::string>;

/** Collects the values from the parser, and stops it at anything that is not allowed in a response. */
class ValueCollector {
public:
    explicit ValueCollector(std::vector<Value> &values) : values_(values) {}

    bool start_array(std::size_t /*size*/) {
        return !std::exchange(isInArray_, true);
    }
    bool end_array() {
        return true;
    }
    bool null() {
        return add(nullptr);
    }
    bool number_integer(std::int64_t number) {
        return add(number);
    }
    bool number_unsigned(std::uint64_t number) {
        return number <= std::uint64_t{std::numeric_limits<std::int64_t>::max()} &&
               add(static_cast<std::int64_t>(number));
    }
    bool string(std::string &text) {
        // A C string cannot hold a NUL.
        return text.find('\0') == std::string::npos && add(std::move(text));
    }
    bool boolean(bool /*value*/) {
        return false;
    }
    bool number_float(double /*number*/, const std::string & /*digits*/) {
        return false;
    }
    bool binary(std::vector<std::uint8_t> & /*octets*/) {
        return false;
    }
    bool start_object(std::size_t /*size*/) {
        return false;
    }
    bool key(std::string & /*name*/) {
        return false;
    }
    bool end_object() {
        return false;
    }
    bool parse_error(std::size_t /*position*/, const std::string & /*token*/, const std::exception & /*error*/) {
        return false;
    }

private:
    bool add(Value value) {
        if (!isInArray_) {
            return false;
        }
        values_.push_back(std::move(value));
        return true;
    }

    std::vector<Value> &values_;
    bool isInArray_ = false;
};

template <typename Integer>
bool isNumberFor(const Value &value) {
    const auto *const number = std::get_if<std::int64_t>(&value);
    return number != nullptr && *number >= std::int64_t{std::numeric_limits<Integer>::min()} &&
           *number <= std::int64_t{std::numeric_limits<Integer>::max()};
}

/** Parses a response. @param values output: all values, the status first @return the status, or kBadResponse */
zorva_core_status readValues(std::string_view response, std::vector<Value> &values) {
    ValueCollector collector(values);
    // The parser treats a NUL as the end of its input.
    if (response.find('\0') != std::string_view::npos ||
        !nlohmann::json::sax_parse(response.begin(), response.end(), &collector) || values.empty() ||
        !isNumberFor<zorva_core_status>(values[0])) {
        return wire::kBadResponse;
    }
    return static_cast<zorva_core_status>(std::get<std::int64_t>(values[0]));
}

struct Free {
    void operator()(char *text) const noexcept {
        std::free(text);
    }
};
using Text = std::unique_ptr<char, Free>;

/** Checks that an output can hold a value. */
struct Accepts {
    const Value &value;

    template <typename Integer>
    bool operator()(Integer * /*output*/) const {
        return isNumberFor<Integer>(value);
    }
    bool operator()(char ** /*output*/) const {
        return !std::holds_alternative<std::int64_t>(value);
    }
};

/** Writes a value, or the copied text, to an output. */
struct Store {
    const Value &value;
    Text &text;

    template <typename Integer>
    void operator()(Integer *output) const {
        *output = static_cast<Integer>(std::get<std::int64_t>(value));
    }
    void operator()(char **output) const {
        *output = text.release();
    }
};

} // namespace

zorva_core_status readResponse(std::string_view response, const Output *outputs, std::size_t count) {
    std::vector<Value> values;
    values.reserve(kMaximumOutputs + 1);
    const zorva_core_status status = readValues(response, values);
    if (status != wire::kSuccess) {
        return status;
    }
    if (values.size() != count + 1 || count > kMaximumOutputs) {
        return wire::kBadResponse;
    }
    for (std::size_t i = 0; i < count; ++i) {
        if (!std::visit(Accepts{values[i + 1]}, outputs[i])) {
            return wire::kBadResponse;
        }
    }
    // Allocation is the last step that can fail, so it precedes all writing.
    std::array<Text, kMaximumOutputs> texts;
    for (std::size_t i = 0; i < count; ++i) {
        if (const auto *const text = std::get_if<std::string>(&values[i + 1])) {
            texts[i].reset(::strdup(text->c_str()));
            if (texts[i] == nullptr) {
                return wire::kNoMemory;
            }
        }
    }
    for (std::size_t i = 0; i < count; ++i) {
        std::visit(Store{values[i + 1], texts[i]}, outputs[i]);
    }
    return wire::kSuccess;
}

zorva_core_status readTargetIds(std::string_view response, std::vector<std::string> &targetIds) {
    std::vector<Value> values;
    const zorva_core_status status = readValues(response, values);
    if (status != wire::kSuccess) {
        return status;
    }
    targetIds.clear();
    targetIds.reserve(values.size() - 1);
    for (std::size_t i = 1; i < values.size(); ++i) {
        auto *const text = std::get_if<std::string>(&values[i]);
        if (text == nullptr) {
            return wire::kBadResponse;
        }
        targetIds.push_back(std::move(*text));
    }
    return wire::kSuccess;
}

} // namespace standin
