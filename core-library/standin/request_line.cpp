// SPDX-License-Identifier: Apache-2.0
#include "request_line.h"

#include <cmath>

#include "wire.h"

namespace standin {

namespace {

constexpr std::size_t kUsualLength = 200;

std::string encoded(const nlohmann::json &scalar) {
    return scalar.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

} // namespace

RequestLine::RequestLine(const char *operation) {
    line.reserve(kUsualLength);
    line += '[';
    line += encoded(operation);
}

void RequestLine::add(std::int32_t number) {
    line += ',';
    line += std::to_string(number);
}

void RequestLine::add(std::uint32_t number) {
    line += ',';
    line += std::to_string(number);
}

void RequestLine::add(std::uint8_t number) {
    add(std::uint32_t{number});
}

void RequestLine::add(double number) {
    // JSON has no word for the others.
    isValid = isValid && std::isfinite(number);
    line += ',';
    line += encoded(number);
}

void RequestLine::add(const char *text) {
    line += ',';
    line += text != nullptr ? encoded(text) : "null";
}

std::string_view RequestLine::finish() {
    line += "]\n";
    return isValid && line.size() <= wire::kMaximumLine ? std::string_view(line) : std::string_view();
}

} // namespace standin
