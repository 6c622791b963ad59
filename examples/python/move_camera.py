#!/usr/bin/python3
# SPDX-License-Identifier: Apache-2.0
"""Pans a camera to an angle. Usage: move_camera.py HOST PORT COMMUNITY DEGREES (Debian: python3-pysnmp4)"""
import struct
import sys

from pysnmp.hlapi import (CommunityData, ContextData, ObjectIdentity, ObjectType, OctetString, SnmpEngine,
                          UdpTransportTarget, getCmd, setCmd)

POSITION_PAN = "1.3.6.1.4.1.1206.4.2.7.4.1.0"
ABSOLUTE = 2
SPEED = 64  # 1 to 127


def request(command, host, port, community, *value):
    """Sends a GET or a SET, and returns the value in the response."""
    error, status, _, varbinds = next(command(
        SnmpEngine(), CommunityData(community), UdpTransportTarget((host, port), timeout=15, retries=0), ContextData(),
        ObjectType(ObjectIdentity(POSITION_PAN), *value), lookupMib=False))
    if error or status:
        sys.exit(f"{host}: {error or status.prettyPrint()}")
    return bytes(varbinds[0][1])


def main(host, port, community, degrees):
    position = round(float(degrees) * 100) % 36000
    # Low octet first; the public encoding has the high one first: ">BbH".
    octets = struct.pack("<BbH", ABSOLUTE, SPEED, position)
    request(setCmd, host, int(port), community, OctetString(octets))
    # A GET answers the last command, not the position of the camera.
    mode, speed, position = struct.unpack("<BbH", request(getCmd, host, int(port), community))
    print(f"mode {mode}, speed {speed}, to {position / 100:.2f} degrees")


main(*sys.argv[1:]) if len(sys.argv) == 5 else sys.exit(__doc__)
