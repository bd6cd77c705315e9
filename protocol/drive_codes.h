// SPDX-License-Identifier: GPL-2.0-or-later
/*
 * What the camera's driver and its clients agree on: names and control codes. Plain C, for drivers too.
 */
#ifndef TESMOR_PROTOCOL_DRIVE_CODES_H
#define TESMOR_PROTOCOL_DRIVE_CODES_H

/* The name of a unit: prefix, its number in decimal, suffix. Becomes a wide string beside one. */
#define DRIVE_NAME_PREFIX "braskdrv-"
#define DRIVE_NAME_SUFFIX "-1010"
#define DRIVE_NAME_FORMAT DRIVE_NAME_PREFIX "%u" DRIVE_NAME_SUFFIX

#define MAX_DRIVE_UNITS 16U /* numbered from 0 */

#define IOCTL_DRIVE_REQUEST 0x222059U   /* input: a request packet, see drive_request.h */
#define IOCTL_DRIVE_RESET_ACK 0x222035U /* input: zeros */

#define DRIVE_REQUEST_BYTES 10U
#define DRIVE_RESET_ACK_BYTES 4U

#endif
