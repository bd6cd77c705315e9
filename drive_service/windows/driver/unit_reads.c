// SPDX-License-Identifier: GPL-2.0-or-later
/* The client's reads and the acknowledgements that end them. */
#include "irp_queue.h"
#include "unit.h"

static UCHAR takeKeptAcknowledgement(Unit* unit)
{
    const UCHAR byte = unit->kept[0];
    --unit->keptCount;
    for (ULONG i = 0; i < unit->keptCount; ++i)
        unit->kept[i] = unit->kept[i + 1];
    return byte;
}

NTSTATUS readFromUnit(Unit* unit, PIRP irp, PULONG_PTR information)
{
    const PIO_STACK_LOCATION stack = IoGetCurrentIrpStackLocation(irp);
    if (stack->Parameters.Read.Length < 1)
        return STATUS_INVALID_BUFFER_SIZE;
    LIST_ENTRY ended;
    InitializeListHead(&ended);
    NTSTATUS status = STATUS_SUCCESS;
    const KIRQL irql = takeLock();
    if (unit->client != stack->FileObject) {
        status = STATUS_NO_SUCH_DEVICE;
    } else if (unit->keptCount > 0) {
        *(UCHAR*)irp->AssociatedIrp.SystemBuffer = takeKeptAcknowledgement(unit);
        *information = 1;
    } else {
        status = STATUS_PENDING;
        IoMarkIrpPending(irp);
        putIrp(&unit->reads, irp, &ended);
        endQueue(&unit->resetReads, STATUS_CANCELLED, &ended);
    }
    releaseLock(irql);
    completeAll(&ended);
    return status;
}

NTSTATUS acknowledge(Unit* unit, const BraskdrvAcknowledgement* acknowledgement)
{
    LIST_ENTRY ended;
    InitializeListHead(&ended);
    NTSTATUS status = STATUS_SUCCESS;
    const KIRQL irql = takeLock();
    if (unit->client && unit->clientNumber == acknowledgement->client) {
        const PIRP read = takeIrp(&unit->reads);
        if (read) {
            *(UCHAR*)read->AssociatedIrp.SystemBuffer = acknowledgement->byte;
            endIrp(read, STATUS_SUCCESS, 1, &ended);
        } else if (unit->keptCount < KEPT_ACKNOWLEDGEMENTS) {
            unit->kept[unit->keptCount++] = acknowledgement->byte;
        } else {
            status = STATUS_INSUFFICIENT_RESOURCES;
        }
    }
    releaseLock(irql);
    completeAll(&ended);
    return status;
}

void resetReads(Unit* unit)
{
    const KIRQL irql = takeLock();
    while (!IsListEmpty(&unit->reads))
        InsertTailList(&unit->resetReads, RemoveHeadList(&unit->reads));
    releaseLock(irql);
}

void dropClient(Unit* unit, NTSTATUS status, PLIST_ENTRY ended)
{
    unit->client = NULL;
    unit->keptCount = 0;
    endQueue(&unit->reads, status, ended);
    endQueue(&unit->resetReads, status, ended);
}
