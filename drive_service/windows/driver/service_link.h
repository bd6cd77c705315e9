// SPDX-License-Identifier: GPL-2.0-or-later
/* The driver's end of what a service answers requests with. IRQL PASSIVE_LEVEL. */
#ifndef BRASKDRV_SERVICE_LINK_H
#define BRASKDRV_SERVICE_LINK_H

#include "protocol.h"

#include <ntifs.h>

typedef struct ServiceLink {
    HANDLE requests; /* NULL in a link that is not open */
    HANDLE accepted;
    HANDLE refused;
    HANDLE vanished;
} ServiceLink;

/* Opens what the service has made. On failure the link is not open. */
NTSTATUS openServiceLink(ServiceLink* link, ULONG unit);

/* Also of a link that is not open. */
void closeServiceLink(ServiceLink* link);

/* Hands the request over and waits for its answer. STATUS_SUCCESS: accepted; STATUS_IO_DEVICE_ERROR: refused;
   STATUS_NO_SUCH_DEVICE: the unit is to vanish; STATUS_IO_TIMEOUT: no answer in time. */
NTSTATUS askService(ServiceLink* link, BraskdrvRequest* request);

#endif
