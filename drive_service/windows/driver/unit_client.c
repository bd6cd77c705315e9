// SPDX-License-Identifier: GPL-2.0-or-later
#include "irp_queue.h"
#include "protocol/drive_codes.h"
#include "unit.h"

/* Wine lets a second client open the unit all the same; it then gets nothing done. */
NTSTATUS openUnit(Unit* unit, PFILE_OBJECT client)
{
    NTSTATUS status = STATUS_SUCCESS;
    const KIRQL irql = takeLock();
    if (!unit->present)
        status = STATUS_NO_SUCH_DEVICE;
    else if (unit->client)
        status = STATUS_SHARING_VIOLATION;
    if (NT_SUCCESS(status)) {
        unit->client = client;
        ++unit->clientNumber;
    }
    releaseLock(irql);
    return status;
}

static void dropThisClient(Unit* unit, PFILE_OBJECT client, NTSTATUS status)
{
    LIST_ENTRY ended;
    InitializeListHead(&ended);
    const KIRQL irql = takeLock();
    if (unit->client == client)
        dropClient(unit, status, &ended);
    releaseLock(irql);
    completeAll(&ended);
}

void closeUnit(Unit* unit, PFILE_OBJECT client)
{
    dropThisClient(unit, client, STATUS_CANCELLED);
}

static NTSTATUS checkRequest(PIO_STACK_LOCATION stack)
{
    const ULONG length = stack->Parameters.DeviceIoControl.InputBufferLength;
    switch (stack->Parameters.DeviceIoControl.IoControlCode) {
    case IOCTL_DRIVE_REQUEST:
        return length == DRIVE_REQUEST_BYTES ? STATUS_SUCCESS : STATUS_INVALID_BUFFER_SIZE;
    case IOCTL_DRIVE_RESET_ACK:
        return length == DRIVE_RESET_ACK_BYTES ? STATUS_SUCCESS : STATUS_INVALID_BUFFER_SIZE;
    default:
        return STATUS_INVALID_DEVICE_REQUEST;
    }
}

/* The number of this client; 0 when the unit is not, or no longer, its. */
static ULONG clientNumberOf(Unit* unit, PFILE_OBJECT client)
{
    const KIRQL irql = takeLock();
    const ULONG number = unit->client == client ? unit->clientNumber : 0;
    releaseLock(irql);
    return number;
}

static NTSTATUS handOver(Unit* unit, PIRP irp)
{
    const PIO_STACK_LOCATION stack = IoGetCurrentIrpStackLocation(irp);
    BraskdrvRequest request;
    RtlZeroMemory(&request, sizeof(request));
    request.client = clientNumberOf(unit, stack->FileObject);
    if (request.client == 0)
        return STATUS_NO_SUCH_DEVICE;
    request.code = stack->Parameters.DeviceIoControl.IoControlCode;
    request.length = stack->Parameters.DeviceIoControl.InputBufferLength;
    RtlCopyMemory(request.input, irp->AssociatedIrp.SystemBuffer, request.length);
    if (request.code == IOCTL_DRIVE_RESET_ACK)
        resetReads(unit);
    const NTSTATUS status = askService(&unit->serviceLink, &request);
    if (status == STATUS_NO_SUCH_DEVICE)
        removeUnit(unit);
    if (status == STATUS_IO_TIMEOUT)
        dropThisClient(unit, stack->FileObject, status);
    return status;
}

NTSTATUS requestFromUnit(Unit* unit, PIRP irp)
{
    NTSTATUS status = checkRequest(IoGetCurrentIrpStackLocation(irp));
    if (!NT_SUCCESS(status))
        return status;
    takeTurn(unit);
    status = handOver(unit, irp);
    endTurn(unit);
    return status;
}
