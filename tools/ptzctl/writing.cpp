// SPDX-License-Identifier: Apache-2.0
#include "writing.h"

#include "meaning.h"
#include "objects.h"
#include "requester.h"

namespace ptzctl {

namespace {

std::vector<std::string> identifiersOf(const std::vector<Variable> &values) {
    std::vector<std::string> identifiers;
    identifiers.reserve(values.size());
    for (const Variable &value : values) {
        identifiers.push_back(value.identifier);
    }
    return identifiers;
}

} // namespace

void writeAndShow(Context &context, const std::vector<Variable> &values, const std::vector<Reading> &before) {
    const Settings &settings = context.settings;
    writeAll(context.camera, values);
    const std::vector<Reading> after = readAll(context.camera, identifiersOf(values));
    std::vector<std::vector<std::string>> rows = {
        {"", settings.style.heading("before"), settings.style.heading("sent"), settings.style.heading("after")}};
    for (std::size_t i = 0; i < values.size(); ++i) {
        const std::string name = nameOf(values[i].identifier);
        rows.push_back(
            {name, meaningOf(before[i], settings), meaningOf(values[i], settings), meaningOf(after[i], settings)});
        context.report.data["written"][name] = {{"before", jsonOf(before[i], settings)},
                                                {"sent", jsonOf(values[i], settings)},
                                                {"after", jsonOf(after[i], settings)}};
    }
    context.report.text += alignedRows(rows);
}

void writeAndShow(Context &context, const std::vector<Variable> &values) {
    writeAndShow(context, values, readAll(context.camera, identifiersOf(values)));
}

} // namespace ptzctl
