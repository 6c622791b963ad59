// SPDX-License-Identifier: Apache-2.0
#include "set.h"

#include <algorithm>
#include <iterator>

#include "camera_requests.h"
#include "value_text.h"

namespace ptzctl {

std::vector<ptz::Instance> instancesOf(const std::vector<ptz::Assignment> &assignments) {
    std::vector<ptz::Instance> instances;
    std::transform(assignments.begin(), assignments.end(), std::back_inserter(instances),
                   [](const ptz::Assignment &assignment) { return assignment.instance; });
    return instances;
}

void writeAndShow(Context &context, const std::vector<ptz::Assignment> &assignments,
                  const std::vector<ptz::Reading> &before) {
    const Settings &settings = context.settings;
    ptz::writeAll(context.camera, assignments);
    const std::vector<ptz::Reading> after = ptz::readAll(context.camera, instancesOf(assignments));
    std::vector<std::vector<std::string>> rows = {
        {"", settings.style.heading("before"), settings.style.heading("sent"), settings.style.heading("after")}};
    for (std::size_t i = 0; i < assignments.size(); ++i) {
        const auto &[instance, value] = assignments[i];
        rows.push_back({instance.name, readingText(before[i], settings), valueText(instance, value, settings),
                        readingText(after[i], settings)});
        context.report.data["written"][instance.name] = {{"before", readingJson(before[i], settings)},
                                                         {"sent", readingJson({instance, value, "", false}, settings)},
                                                         {"after", readingJson(after[i], settings)}};
    }
    context.report.text += alignedRows(rows);
}

void writeAndShow(Context &context, const std::vector<ptz::Assignment> &assignments) {
    writeAndShow(context, assignments, ptz::readAll(context.camera, instancesOf(assignments)));
}

} // namespace ptzctl
