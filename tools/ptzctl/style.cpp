// SPDX-License-Identifier: Apache-2.0
#include "style.h"

#include <algorithm>
#include <cstdlib>

#include <unistd.h>

namespace ptzctl {

namespace {

constexpr char kEscape = '\033';

std::string painted(const Style &style, const char *code, const std::string &text) {
    return style.coloured && !text.empty() ? std::string(1, kEscape) + "[" + code + "m" + text + kEscape + "[0m" : text;
}

bool continuesCharacter(char octet) {
    constexpr unsigned int kTopBits = 0xC0;
    constexpr unsigned int kContinuation = 0x80;
    return (static_cast<unsigned char>(octet) & kTopBits) == kContinuation;
}

} // namespace

std::string Style::heading(const std::string &text) const {
    return painted(*this, "1", text);
}

std::string Style::active(const std::string &text) const {
    return painted(*this, "32", text);
}

std::string Style::trouble(const std::string &text) const {
    return painted(*this, "31", text);
}

std::string Style::faint(const std::string &text) const {
    return painted(*this, "2", text);
}

bool wantsColours(int descriptor) {
    // NOLINTNEXTLINE(concurrency-mt-unsafe): the environment does not change while threads run
    const char *const refusal = std::getenv("NO_COLOR");
    return (refusal == nullptr || *refusal == '\0') && isatty(descriptor) == 1;
}

std::size_t displayWidth(const std::string &text) {
    std::size_t width = 0;
    bool inEscape = false;
    for (const char octet : text) {
        if (octet == kEscape) {
            inEscape = true;
        } else if (inEscape) {
            inEscape = octet != 'm';
        } else if (!continuesCharacter(octet)) {
            ++width;
        }
    }
    return width;
}

std::string alignedRows(const std::vector<std::vector<std::string>> &rows) {
    std::vector<std::size_t> widths;
    for (const std::vector<std::string> &row : rows) {
        widths.resize(std::max(widths.size(), row.size()));
        for (std::size_t i = 0; i < row.size(); ++i) {
            widths[i] = std::max(widths[i], displayWidth(row[i]));
        }
    }
    std::string text;
    for (const std::vector<std::string> &row : rows) {
        std::string line;
        std::size_t end = 0; // column after the cells so far and the gap
        std::size_t written = 0;
        for (std::size_t i = 0; i < row.size(); ++i) {
            if (!row[i].empty()) {
                line += std::string(end - written, ' ') + row[i];
                written = end + displayWidth(row[i]);
            }
            end += widths[i] + 2;
        }
        text += line + "\n";
    }
    return text;
}

} // namespace ptzctl
