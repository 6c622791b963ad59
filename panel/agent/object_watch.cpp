// SPDX-License-Identifier: Apache-2.0
#include "object_watch.h"

#include <algorithm>
#include <array>
#include <utility>

#include "format_value.h"
#include "object_oids.h"
#include "octet_parts.h"
#include "oid_text.h"
#include "time_text.h"

namespace panel {

using nlohmann::ordered_json;
using std::chrono::microseconds;

namespace {

constexpr std::size_t kObjectsPerRead = 8;
constexpr std::chrono::milliseconds kPause{250};

/** A slow reading is followed by a pause of the same length within a limit, so that other managers get their turn. */
constexpr std::chrono::milliseconds kSlow{500};
constexpr std::chrono::milliseconds kLongestPause{2000};

/** Objects that the camera does not have are read in every one of so many passes only. */
constexpr std::size_t kMissingRounds = 10;

/** Age after which a value does not count as the present one. */
constexpr std::chrono::seconds kFreshValue{10};

/** Columns whose rows tell how many rows a table has. */
const std::array<const char *, 2> &keyColumns() {
    static const std::array<const char *, 2> columns = {oids::alarmStatesNumber, oids::relayStatesNumber};
    return columns;
}

const char *accessName(const ptz::Instance &instance) {
    return instance.object != nullptr && instance.object->access == ptz::Access::ReadWrite ? "read-write" : "read-only";
}

ordered_json accessJson(const ObjectAccess &access) {
    if (access.time.empty()) {
        return nullptr;
    }
    return {{"time", access.time},
            {"by", access.by},
            {"as", access.as},
            {"value", access.value},
            {"meaning", access.meaning}};
}

const char *kindName(ptz::Kind kind) {
    switch (kind) {
    case ptz::Kind::Integer:
        return "INTEGER";
    case ptz::Kind::Gauge32:
        return "Gauge32";
    default:
        return "OCTET STRING";
    }
}

} // namespace

ObjectWatch::ObjectWatch(boost::asio::io_context &io, std::shared_ptr<AgentClient> agent,
                         std::function<void(const ordered_json &rows)> onRows)
    : agent_(std::move(agent)), onRows_(std::move(onRows)), timer_(io) {
    for (const ptz::Object &object : ptz::objects()) {
        if (!object.isColumn) {
            rows_.push_back({ptz::instanceAt(object.oid), snmp::nameOnly(object.oid)});
        }
    }
}

void ObjectWatch::setActive(bool active) {
    const bool wasActive = std::exchange(isActive_, active);
    if (active && !wasActive) {
        schedule(microseconds(0));
    } else if (!active) {
        timer_.cancel();
    }
}

void ObjectWatch::forgetRows() {
    column_ = 0;
    round_ = 0;
}

void ObjectWatch::schedule(microseconds pause) {
    timer_.expires_after(pause);
    timer_.async_wait([weak = weak_from_this()](const boost::system::error_code &cancelled) {
        const std::shared_ptr<ObjectWatch> self = weak.lock();
        if (!cancelled && self && self->isActive_ && !self->isReading_) {
            self->readNext();
        }
    });
}

void ObjectWatch::readNext() {
    if (column_ < keyColumns().size()) {
        readNextColumn();
        return;
    }
    if (next_ >= rows_.size()) {
        next_ = 0;
        ++round_;
    }
    std::vector<ptz::Instance> instances;
    for (; next_ < rows_.size() && instances.size() < kObjectsPerRead; ++next_) {
        if (!rows_[next_].missing || round_ % kMissingRounds == 0) {
            instances.push_back(rows_[next_].instance);
        }
    }
    if (instances.empty()) {
        schedule(kPause);
        return;
    }
    // The agent must not keep this object alive, which keeps the agent alive.
    isReading_ = agent_->read(instances, [weak = weak_from_this()](const auto &readings, microseconds duration) {
        if (const std::shared_ptr<ObjectWatch> self = weak.lock()) {
            readings.empty() ? self->markUnread() : self->takeReadings(readings);
            self->finish(duration);
        }
    });
    if (!isReading_) {
        schedule(kPause);
    }
}

void ObjectWatch::readNextColumn() {
    const std::string column = keyColumns().at(column_);
    isReading_ = agent_->readRows(column, [weak = weak_from_this()](const auto &rows, microseconds duration) {
        if (const std::shared_ptr<ObjectWatch> self = weak.lock()) {
            self->takeColumn(rows);
            self->finish(duration);
        }
    });
    if (!isReading_) {
        schedule(kPause);
    }
}

void ObjectWatch::finish(microseconds duration) {
    isReading_ = false;
    if (isActive_) {
        schedule(duration > kSlow ? std::min(duration, microseconds(kLongestPause)) : microseconds(kPause));
    }
}

void ObjectWatch::takeColumn(const std::vector<ptz::Reading> &rows) {
    if (agent_->report().status == "silent") {
        markUnread();
        return;
    }
    takeRows(rows);
    ++column_;
}

void ObjectWatch::takeRows(const std::vector<ptz::Reading> &rows) {
    for (const ptz::Reading &row : rows) {
        const std::string number = row.instance.oid.substr(row.instance.oid.rfind('.'));
        const std::string table = snmp::parentOf(snmp::parentOf(row.instance.oid));
        for (const ptz::Object &object : ptz::objects()) {
            const std::string oid = object.oid + number;
            if (object.isColumn && snmp::parentOf(object.oid) == table && rowAt(oid) == nullptr) {
                rows_.push_back({ptz::instanceAt(oid), snmp::nameOnly(oid)});
            }
        }
    }
    std::sort(rows_.begin(), rows_.end(),
              [](const Row &a, const Row &b) { return snmp::comesBefore(a.instance.oid, b.instance.oid); });
}

void ObjectWatch::takeReadings(const std::vector<ptz::Reading> &readings) {
    ordered_json changed = ordered_json::array();
    for (const ptz::Reading &reading : readings) {
        Row *const row = rowAt(reading.instance.oid);
        if (row == nullptr) {
            continue;
        }
        row->problem = reading.problem;
        row->missing = reading.missing;
        if (reading.ok()) {
            row->value = reading.value;
            row->read = std::chrono::system_clock::now();
        }
        changed.push_back(json(*row));
    }
    onRows_(changed);
}

void ObjectWatch::markUnread() {
    for (Row &row : rows_) {
        row.problem = row.missing ? row.problem : "no answer";
    }
    onRows_(rows());
    forgetRows();
}

ObjectWatch::Row *ObjectWatch::rowAt(const std::string &oid) {
    const auto found =
        std::find_if(rows_.begin(), rows_.end(), [&](const Row &row) { return row.instance.oid == oid; });
    return found == rows_.end() ? nullptr : &*found;
}

void ObjectWatch::noteAccess(const std::string &oid, bool isWrite, const ObjectAccess &access) {
    Row *const row = rowAt(oid);
    if (row == nullptr) {
        return;
    }
    (isWrite ? row->written : row->asked) = access;
    if (isActive_) {
        onRows_(ordered_json::array({json(*row)}));
    }
}

ordered_json ObjectWatch::rows() const {
    ordered_json all = ordered_json::array();
    for (const Row &row : rows_) {
        all.push_back(json(row));
    }
    return all;
}

ordered_json ObjectWatch::json(const Row &row) const {
    const bool hasValue = snmp::hasValue(row.value.type);
    const auto age = std::chrono::system_clock::now() - row.read;
    ordered_json result = {{"oid", snmp::withoutDot(row.instance.oid)},
                           {"name", row.instance.name},
                           {"access", accessName(row.instance)},
                           {"type", kindName(row.instance.object->syntax.kind)},
                           {"value", plainValue(row.instance, row.value)},
                           {"meaning", ""},
                           {"read", nullptr},
                           {"ageMs", nullptr},
                           {"stale", !row.problem.empty() || age > kFreshValue},
                           {"problem", row.problem},
                           {"missing", row.missing},
                           {"written", accessJson(row.written)},
                           {"asked", accessJson(row.asked)}};
    if (hasValue) {
        result["meaning"] = ptz::formatValue(row.instance, row.value, ptz::ByteOrder::LowFirst);
        result["read"] = timeText(row.read);
        result["ageMs"] = std::chrono::duration_cast<std::chrono::milliseconds>(age).count();
    }
    return result;
}

} // namespace panel
