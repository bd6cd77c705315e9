// SPDX-License-Identifier: GPL-2.0-or-later
/* One unit: its client on one side, its service on the other. */
#ifndef BRASKDRV_UNIT_H
#define BRASKDRV_UNIT_H

#include "name.h"
#include "protocol.h"
#include "service_link.h"

#include <ntifs.h>

#define KEPT_ACKNOWLEDGEMENTS 64

typedef struct Unit {
    ULONG number;
    Name target; /* the device object */
    Name link;   /* the name that is probed and opened; it exists while a service plays the unit */

    KEVENT turn;             /* auto-reset; whoever takes the signal may use these: */
    PFILE_OBJECT service;    /*   NULL: nobody plays the unit */
    ServiceLink serviceLink; /*   open while the unit opens */

    /* Guarded by the lock of irp_queue.h: */
    BOOLEAN present;
    PFILE_OBJECT client;               /* NULL: nobody has it open, or the link is down */
    ULONG clientNumber;                /* of the last client */
    LIST_ENTRY reads;                  /* the client's, oldest first */
    LIST_ENTRY resetReads;             /* older ones that a reset is to end, once the next read waits */
    UCHAR kept[KEPT_ACKNOWLEDGEMENTS]; /* acknowledgements that no read has taken, oldest first */
    ULONG keptCount;
} Unit;

/* Makes the unit and its device object, in whose extension it lives. */
NTSTATUS createUnit(PDRIVER_OBJECT driver, ULONG number, Unit** unit);

/* For the service. */
NTSTATUS attachUnit(Unit* unit, PFILE_OBJECT service, BOOLEAN opens);
NTSTATUS detachUnit(Unit* unit, PFILE_OBJECT service);
NTSTATUS acknowledge(Unit* unit, const BraskdrvAcknowledgement* acknowledgement);

/* For the client. */
NTSTATUS openUnit(Unit* unit, PFILE_OBJECT client);
void closeUnit(Unit* unit, PFILE_OBJECT client);
NTSTATUS requestFromUnit(Unit* unit, PIRP irp); /* blocks until the service has answered */
/* STATUS_PENDING: the unit has taken over `irp`; else the caller completes it, with `information`. */
NTSTATUS readFromUnit(Unit* unit, PIRP irp, PULONG_PTR information);

/* Of a client that asks to reset the acknowledgements: none of its present reads will take one. */
void resetReads(Unit* unit);

/* Under the lock: ends the reads of the client with `status`, and takes its link down. */
void dropClient(Unit* unit, NTSTATUS status, PLIST_ENTRY ended);

void takeTurn(Unit* unit);
void endTurn(Unit* unit);

/* With the turn taken: makes the unit vanish. */
void removeUnit(Unit* unit);

#endif
