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
    line_.reserve(kUsualLength);
    line_ += '[';
    line_ += encoded(operation);
}

void RequestLine::add(std::int32_t number) {
    line_ += ',';
    line_ += std::to_string(number);
}

void RequestLine::add(std::uint32_t number) {
    line_ += ',';
    line_ += std::to_string(number);
}

void RequestLine::add(std::uint8_t number) {
    add(std::uint32_t{number});
}

void RequestLine::add(double number) {
    // JSON has no notation for infinities and NaN.
    isValid_ = isValid_ && std::isfinite(number);
    line_ += ',';
    line_ += encoded(number);
}

void RequestLine::add(const char *text) {
    line_ += ',';
    line_ += text != nullptr ? encoded(text) : "null";
}

std::string_view RequestLine::finish() {
    line_ += "]\n";
    return isValid_ && line_.size() <= wire::kMaximumLine ? std::string_view(line_) : std::string_view();
}

} // namespace standin
