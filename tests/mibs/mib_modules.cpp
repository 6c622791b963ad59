// SPDX-License-Identifier: Apache-2.0
#include "mib_modules.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <stdexcept>

#include <net-snmp/net-snmp-config.h>
#include <net-snmp/net-snmp-includes.h>

namespace mibs {

namespace {

std::string oidOf(const tree *node) {
    return (node->parent != nullptr ? oidOf(node->parent) : "") + "." + std::to_string(node->subid);
}

std::string moduleOf(const tree *node) {
    std::array<char, 256> name{};
    return module_name(node->modid, name.data());
}

std::string accessOf(const tree *node) {
    switch (node->access) {
    case MIB_ACCESS_READONLY:
        return "read-only";
    case MIB_ACCESS_READWRITE:
        return "read-write";
    case MIB_ACCESS_WRITEONLY:
        return "write-only";
    case MIB_ACCESS_CREATE:
        return "read-create";
    case MIB_ACCESS_NOTIFY:
        return "accessible-for-notify";
    default:
        return "";
    }
}

std::string typeOf(const tree *node) {
    switch (node->type) {
    case TYPE_INTEGER:
    case TYPE_INTEGER32:
        return "INTEGER";
    case TYPE_GAUGE:
        return "Gauge32";
    case TYPE_OCTETSTR:
        return "OCTET STRING";
    default:
        return "type " + std::to_string(node->type);
    }
}

/** Returns a bound of a range, of which the library keeps only 32 bits. */
std::int64_t boundOf(const tree *node, int bound) {
    return node->type == TYPE_GAUGE ? static_cast<std::int64_t>(static_cast<std::uint32_t>(bound)) : bound;
}

Object objectOf(const tree *node) {
    Object object;
    object.module = moduleOf(node);
    object.name = node->label;
    object.oid = oidOf(node);
    object.access = accessOf(node);
    object.type = typeOf(node);
    const char *convention = get_tc_descriptor(node->tc_index);
    object.convention = convention != nullptr ? convention : "";
    for (const range_list *range = node->ranges; range != nullptr; range = range->next) {
        object.ranges.emplace_back(boundOf(node, range->low), boundOf(node, range->high));
    }
    for (const enum_list *number = node->enums; number != nullptr; number = number->next) {
        object.ranges.emplace_back(number->value, number->value);
    }
    if (node->parent != nullptr && node->parent->indexes != nullptr) {
        object.table = node->parent->parent->label;
    }
    return object;
}

/** Calls a function for a node, its peers and their descendants. */
void visit(const tree *node, const std::function<void(const tree *)> &function) {
    for (; node != nullptr; node = node->next_peer) {
        function(node);
        visit(node->child_list, function);
    }
}

/** Callback of the library for log messages. */
int noteLine(int /*major*/, int /*minor*/, void *message, void *complaints) {
    static_cast<std::vector<std::string> *>(complaints)->emplace_back(static_cast<snmp_log_message *>(message)->msg);
    return 0;
}

} // namespace

std::string directory() {
    return QUARNSNMP_MIBS_DIRECTORY;
}

std::vector<std::string> shippedModules() {
    std::vector<std::string> names;
    for (const auto &file : std::filesystem::directory_iterator(directory())) {
        names.push_back(file.path().stem());
    }
    std::sort(names.begin(), names.end());
    return names;
}

bool Object::admits(std::int64_t number) const {
    return ranges.empty() || std::any_of(ranges.begin(), ranges.end(), [number](const auto &range) {
               return range.first <= number && number <= range.second;
           });
}

std::ostream &operator<<(std::ostream &stream, const Object &object) {
    return stream << object.module << "::" << object.name << " " << object.oid << " " << object.access << " "
                  << object.type << " " << object.convention;
}

LoadedModules::LoadedModules(const std::vector<std::string> &modules) {
    setenv("MIBS", "", 1);
    setenv("MIBDIRS", directory().c_str(), 1);
    snmp_disable_log();
    netsnmp_register_loghandler(NETSNMP_LOGHANDLER_CALLBACK, LOG_DEBUG);
    snmp_register_callback(SNMP_CALLBACK_LIBRARY, SNMP_CALLBACK_LOGGING, noteLine, &complaints_);
    netsnmp_ds_set_int(NETSNMP_DS_LIBRARY_ID, NETSNMP_DS_LIB_MIB_WARNINGS, 2);
    netsnmp_init_mib();
    for (const std::string &module : modules) {
        if (netsnmp_read_module(module.c_str()) == nullptr) {
            complaints_.push_back("cannot read " + module);
        }
    }
}

LoadedModules::~LoadedModules() {
    shutdown_mib();
    snmp_unregister_callback(SNMP_CALLBACK_LIBRARY, SNMP_CALLBACK_LOGGING, noteLine, &complaints_, 1);
    snmp_disable_log();
}

const std::vector<std::string> &LoadedModules::complaints() const {
    return complaints_;
}

std::vector<Object> LoadedModules::objects() const {
    std::vector<Object> result;
    visit(get_tree_head(), [&](const tree *node) {
        if (!accessOf(node).empty()) {
            result.push_back(objectOf(node));
        }
    });
    return result;
}

std::vector<Notification> LoadedModules::notifications() const {
    std::vector<Notification> result;
    visit(get_tree_head(), [&](const tree *node) {
        if (node->type != TYPE_NOTIFTYPE) {
            return;
        }
        Notification notification{node->label, oidOf(node), {}};
        for (const varbind_list *varbind = node->varbinds; varbind != nullptr; varbind = varbind->next) {
            const tree *object = find_tree_node(varbind->vblabel, -1);
            if (object == nullptr) {
                throw std::runtime_error(notification.name + " carries an unknown object: " + varbind->vblabel);
            }
            notification.objects.push_back(objectOf(object));
        }
        result.push_back(notification);
    });
    return result;
}

std::vector<std::string> LoadedModules::oidsOf(const std::string &module) const {
    std::vector<std::string> result;
    visit(get_tree_head(), [&](const tree *node) {
        if (moduleOf(node) == module) {
            result.push_back(oidOf(node));
        }
    });
    return result;
}

} // namespace mibs
