// SPDX-License-Identifier: Apache-2.0
// Pans a camera to an angle. Usage: node move-camera.js HOST PORT COMMUNITY DEGREES (once: npm install)
const snmp = require("net-snmp");

const POSITION_PAN = "1.3.6.1.4.1.1206.4.2.7.4.1.0";
const ABSOLUTE = 2;
const SPEED = 64; // 1 to 127

const [host, port, community, degrees] = process.argv.slice(2);
const session = snmp.createSession(host, community, { port: Number(port), version: snmp.Version2c, timeout: 15000, retries: 0 });

function finish(error) {
  if (error) {
    console.error(`${host}: ${error.message}`);
    process.exitCode = 1;
  }
  session.close();
}

const octets = Buffer.alloc(4);
octets.writeUInt8(ABSOLUTE, 0);
octets.writeInt8(SPEED, 1);
// Low octet first; the public encoding has the high one first: writeUInt16BE.
octets.writeUInt16LE(((Math.round(degrees * 100) % 36000) + 36000) % 36000, 2);
session.set([{ oid: POSITION_PAN, type: snmp.ObjectType.OctetString, value: octets }], (error) => {
  if (error) return finish(error);
  // A GET answers the last command, not the position of the camera.
  session.get([POSITION_PAN], (error, [varbind] = []) => {
    if (error || snmp.isVarbindError(varbind)) return finish(error || new Error(snmp.varbindError(varbind)));
    const value = varbind.value;
    console.log(`mode ${value[0]}, speed ${value.readInt8(1)}, to ${(value.readUInt16LE(2) / 100).toFixed(2)} degrees`);
    finish();
  });
});
