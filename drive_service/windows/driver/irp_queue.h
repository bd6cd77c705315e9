// SPDX-License-Identifier: GPL-2.0-or-later
/* Queues of requests that wait, each of which the system may cancel at any time. */
#ifndef BRASKDRV_IRP_QUEUE_H
#define BRASKDRV_IRP_QUEUE_H

#include <ntifs.h>

/* Guards all queues and units. Requests are never completed under it. */
void initialiseLock(void);
KIRQL takeLock(void);
void releaseLock(KIRQL irql);

/* The rest is called under the lock. `ended` collects the requests that completeAll is to complete after it. */

/* `irp` is marked pending. It ends as cancelled when it is so already. */
void putIrp(PLIST_ENTRY queue, PIRP irp, PLIST_ENTRY ended);
/* The oldest, out of reach of cancelling; NULL when there is none. */
PIRP takeIrp(PLIST_ENTRY queue);
void endIrp(PIRP irp, NTSTATUS status, ULONG_PTR information, PLIST_ENTRY ended);
void endQueue(PLIST_ENTRY queue, NTSTATUS status, PLIST_ENTRY ended);

/* Without the lock. */
void completeAll(PLIST_ENTRY ended);
NTSTATUS completeIrp(PIRP irp, NTSTATUS status, ULONG_PTR information);

#endif
