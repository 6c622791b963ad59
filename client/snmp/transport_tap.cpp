// SPDX-License-Identifier: Apache-2.0
#include "transport_tap.h"

#include <map>
#include <utility>

namespace snmp {

namespace {

/** A transport's own functions, and the tap in front of them. */
struct Tapped {
    decltype(netsnmp_transport::f_recv) receive;
    decltype(netsnmp_transport::f_send) send;
    Tap tap;
};

/** The library passes nothing but the transport to these functions. */
std::map<const netsnmp_transport *, Tapped> &tappedTransports() {
    static std::map<const netsnmp_transport *, Tapped> all;
    return all;
}

void copy(const Tapped &tapped, Direction direction, const void *octets, int size) noexcept {
    if (size > 0) {
        tapped.tap(direction, std::string(static_cast<const char *>(octets), static_cast<std::size_t>(size)));
    }
}

int receive(netsnmp_transport *transport, void *buffer, int size, void **address, int *addressSize) noexcept {
    const Tapped &tapped = tappedTransports().at(transport);
    const int count = tapped.receive(transport, buffer, size, address, addressSize);
    copy(tapped, Direction::Received, buffer, count);
    return count;
}

int send(netsnmp_transport *transport, const void *octets, int size, void **address, int *addressSize) noexcept {
    const Tapped &tapped = tappedTransports().at(transport);
    const int count = tapped.send(transport, octets, size, address, addressSize);
    copy(tapped, Direction::Sent, octets, count);
    return count;
}

} // namespace

std::shared_ptr<void> tapTransport(netsnmp_transport &transport, Tap tap) {
    tappedTransports()[&transport] = {transport.f_recv, transport.f_send, std::move(tap)};
    transport.f_recv = receive;
    transport.f_send = send;
    return {&transport, [](void *kept) { tappedTransports().erase(static_cast<netsnmp_transport *>(kept)); }};
}

} // namespace snmp
