// SPDX-License-Identifier: Apache-2.0
#include "event_log.h"

namespace panel {

const EventLog::Entry &EventLog::add(const nlohmann::ordered_json &entry) {
    nlohmann::ordered_json numbered = {{"id", ++lastId_}};
    numbered.update(entry);
    if (entries_.size() >= kLimit) {
        entries_.pop_front();
    }
    entries_.push_back({lastId_, shared(jsonText(numbered))});
    return entries_.back();
}

const std::deque<EventLog::Entry> &EventLog::entries() const {
    return entries_;
}

} // namespace panel
