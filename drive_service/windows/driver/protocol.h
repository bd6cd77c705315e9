// SPDX-License-Identifier: GPL-2.0-or-later
/*
 * What passes between the simulated driver braskdrv and the program that plays its drives, the service.
 *
 * The driver is a test driver: it has the device names, the control codes and the reads of the camera's driver, but no
 * camera. A service opens the control device once for each unit that it wants to play and attaches the unit. It then
 * takes each request of the unit's client, answers it, and hands over acknowledgement bytes. The unit is gone when the
 * service detaches it or closes the control device, also by dying.
 *
 * Before it attaches a unit, the service makes an inbound message pipe and three auto-reset events, named below. The
 * driver writes each request of the client into the pipe, as one BraskdrvRequest, and holds the client until one of the
 * events is set. After BRASKDRV_ANSWER_LIMIT_MS without an answer the request fails and the client's link is down for
 * good. While a request waits for its answer, Wine lets no control request through: answer on a thread that makes none.
 *
 * (Control requests that wait in the driver would be the usual way, but Wine gives a driver one request after the other
 * only, and does not wait for a client's pending control request.)
 *
 * All else is a control request on the control device, whose handle stands for the unit. Little-endian.
 */
#ifndef BRASKDRV_PROTOCOL_H
#define BRASKDRV_PROTOCOL_H

#include <stdint.h>

#define BRASKDRV_CONTROL_NAME L"braskdrv-simulated"

#define BRASKDRV_MAX_INPUT 16
#define BRASKDRV_ANSWER_LIMIT_MS 1000

/* The names of a unit's pipe and events: prefix, unit in decimal, suffix. The events are global ones. */
#define BRASKDRV_PREFIX L"braskdrv-simulated-"
#define BRASKDRV_REQUESTS L"-requests"
#define BRASKDRV_ACCEPTED L"-accepted"
#define BRASKDRV_REFUSED L"-refused"
#define BRASKDRV_VANISHED L"-vanished" /* refused, and the unit is detached before the client hears of it */

/* Makes a unit appear. Input: BraskdrvAttach. Fails when another service plays the unit, or the handle has one. */
#define BRASKDRV_ATTACH 0x222400
/* Makes it vanish: what its client has pending fails, and so does all that it asks later. */
#define BRASKDRV_DETACH 0x222404
/* Ends the client's oldest read, or is kept for its next one. Input: BraskdrvAcknowledgement. Nothing happens when the
   client has gone. */
#define BRASKDRV_ACKNOWLEDGE 0x222408

typedef struct BraskdrvAttach {
    uint32_t unit;  /* below MAX_DRIVE_UNITS */
    uint32_t opens; /* 0: the unit's name exists, but it does not open; it needs no pipe and no events */
} BraskdrvAttach;

typedef struct BraskdrvRequest {
    uint32_t client; /* which one in turn, from 1. Another number than before: that client has gone. */
    uint32_t code;   /* the control code */
    uint32_t length; /* of input */
    uint8_t input[BRASKDRV_MAX_INPUT];
} BraskdrvRequest;

typedef struct BraskdrvAcknowledgement {
    uint32_t client;
    uint8_t byte;
} BraskdrvAcknowledgement;

#endif
