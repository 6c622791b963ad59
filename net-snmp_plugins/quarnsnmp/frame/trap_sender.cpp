// SPDX-License-Identifier: Apache-2.0
#include "trap_sender.h"

#include <cerrno>
#include <cstdlib>
#include <exception>

#include <fcntl.h>
#include <unistd.h>

#include <boost/thread/lock_guard.hpp>

#include "core_utils.h"

namespace {

/** Reads one octet. Retries after a signal, or the octet would stay in the pipe without a trap in the queue. */
void ReadOctet(int fd) {
    char octet = 0;
    while (read(fd, &octet, sizeof octet) < 0 && errno == EINTR) {
    }
}

void WriteOctet(int fd) {
    const char octet = '1';
    while (write(fd, &octet, sizeof octet) < 0 && errno == EINTR) {
    }
}

} // namespace

QuarnSnmpTrapSend *QuarnSnmpTrapSend::_pInstance = nullptr;

QuarnSnmpTrapSend::QuarnSnmpTrapSend() : readFd(-1), writeFd(-1) {
    if (_pInstance != nullptr) {
        zorva_core_logging_log(GetLogCookie(), kLogError, "%s: Duplicate instance, exiting!", __func__);
        exit(-1); // NOLINT(concurrency-mt-unsafe): two senders would share the agent's event loop
    }
    _pInstance = this;

    int fds[2] = {-1, -1};
    if (pipe(fds) != 0) {
        zorva_core_logging_log(GetLogCookie(), kLogError, "%s: Could not create pipe!", __func__);
        return;
    }
    readFd = fds[0];
    writeFd = fds[1];
    // Programs that the agent starts (extend, pass) must not inherit the pipe.
    fcntl(readFd, F_SETFD, FD_CLOEXEC);
    fcntl(writeFd, F_SETFD, FD_CLOEXEC);

    if (register_readfd(readFd, snmpMainCallback, nullptr) != 0) {
        zorva_core_logging_log(GetLogCookie(), kLogError,
                               "%s: Couldn't register the callback function for sending traps!", __func__);
    }
}

QuarnSnmpTrapSend::~QuarnSnmpTrapSend() {
    // In this order: the agent's main loop ends if it watches a closed descriptor.
    if (readFd != -1) {
        unregister_readfd(readFd);
        close(readFd);
        readFd = -1;
    }
    if (writeFd != -1) {
        close(writeFd);
        writeFd = -1;
    }
    for (netsnmp_variable_list *vars : queue) {
        snmp_free_varbind(vars);
    }
}

QuarnSnmpTrapSend *QuarnSnmpTrapSend::GetInstance() {
    return _pInstance;
}

void QuarnSnmpTrapSend::DestroyInstance() {
    QuarnSnmpTrapSend *instance = _pInstance;
    _pInstance = nullptr;
    delete instance;
}

int QuarnSnmpTrapSend::send_v2trap(netsnmp_variable_list *vars) {
    {
        const boost::lock_guard<boost::mutex> lock(mutex);
        queue.push_back(vars);
    }
    WriteOctet(writeFd);
    return 0;
}

void QuarnSnmpTrapSend::CallSnmpSendTrap() {
    const boost::lock_guard<boost::mutex> lock(mutex);
    while (!queue.empty()) {
        ReadOctet(readFd);
        netsnmp_variable_list *vars = queue.front();
        zorva_core_logging_log(GetLogCookie(), kLogDebug, "%s: Calling into snmp code to send trap.", __func__);
        ::send_v2trap(vars);
        snmp_free_varbind(vars);
        zorva_core_logging_log(GetLogCookie(), kLogDebug, "%s: Removing from queue...", __func__);
        queue.pop_front();
    }
}

void QuarnSnmpTrapSend::snmpMainCallback(int /*fd*/, void * /*data*/) {
    try {
        if (QuarnSnmpTrapSend *instance = GetInstance()) {
            instance->CallSnmpSendTrap();
        }
    } catch (const std::exception &error) {
        zorva_core_logging_log(GetLogCookie(), kLogError, "%s: %s", __func__, error.what());
    }
}

int SendTrap(oid *trapOid, std::size_t trapOidLength, int value) {
    static const oid kSnmpTrapOid[] = {1, 3, 6, 1, 6, 3, 1, 1, 4, 1, 0};

    QuarnSnmpTrapSend *sender = QuarnSnmpTrapSend::GetInstance();
    netsnmp_variable_list *vars = nullptr;
    if (sender == nullptr ||
        snmp_varlist_add_variable(&vars, kSnmpTrapOid, OID_LENGTH(kSnmpTrapOid), ASN_OBJECT_ID, trapOid,
                                  trapOidLength * sizeof *trapOid) == nullptr ||
        snmp_varlist_add_variable(&vars, trapOid, trapOidLength, ASN_UNSIGNED, &value, sizeof value) == nullptr) {
        snmp_free_varbind(vars);
        return -1;
    }
    try {
        return sender->send_v2trap(vars);
    } catch (const std::exception &error) {
        // The list was not queued, so it is freed here. An exception must not leave the poll thread: it would end the
        // agent.
        snmp_free_varbind(vars);
        zorva_core_logging_log(GetLogCookie(), kLogError, "%s: %s", __func__, error.what());
        return -1;
    }
}
