// SPDX-License-Identifier: GPL-2.0-or-later
#include "unit.h"
#include "irp_queue.h"
#include "protocol/drive_codes.h"

#define TARGET_PREFIX L"\\Device\\braskdrv-simulated-"

static UNICODE_STRING noTarget = RTL_CONSTANT_STRING(TARGET_PREFIX L"absent");

NTSTATUS createUnit(PDRIVER_OBJECT driver, ULONG number, Unit** unit)
{
    Name target;
    setName(&target, TARGET_PREFIX, number, L"");
    PDEVICE_OBJECT device;
    const NTSTATUS status = IoCreateDevice(driver, sizeof(Unit), &target.text, FILE_DEVICE_UNKNOWN,
                                           FILE_DEVICE_SECURE_OPEN, FALSE, &device);
    if (!NT_SUCCESS(status))
        return status;
    device->Flags |= DO_BUFFERED_IO;
    Unit* const created = device->DeviceExtension;
    RtlZeroMemory(created, sizeof(*created));
    created->number = number;
    setName(&created->target, TARGET_PREFIX, number, L"");
    setName(&created->link, L"\\DosDevices\\Global\\" DRIVE_NAME_PREFIX, number, L"" DRIVE_NAME_SUFFIX);
    KeInitializeEvent(&created->turn, SynchronizationEvent, TRUE);
    InitializeListHead(&created->reads);
    InitializeListHead(&created->resetReads);
    *unit = created;
    return status;
}

void takeTurn(Unit* unit)
{
    KeWaitForSingleObject(&unit->turn, Executive, KernelMode, FALSE, NULL);
}

void endTurn(Unit* unit)
{
    KeSetEvent(&unit->turn, IO_NO_INCREMENT, FALSE);
}

static void setPresent(Unit* unit, BOOLEAN present)
{
    const KIRQL irql = takeLock();
    unit->present = present;
    releaseLock(irql);
}

static NTSTATUS makeAppear(Unit* unit, BOOLEAN opens)
{
    if (opens) {
        const NTSTATUS status = openServiceLink(&unit->serviceLink, unit->number);
        if (!NT_SUCCESS(status))
            return status;
    }
    setPresent(unit, opens);
    /* A unit that does not open leads to no device: Wine does not tell the client when a driver refuses to open. */
    return IoCreateSymbolicLink(&unit->link.text, opens ? &unit->target.text : &noTarget);
}

NTSTATUS attachUnit(Unit* unit, PFILE_OBJECT service, BOOLEAN opens)
{
    NTSTATUS status = STATUS_SHARING_VIOLATION;
    takeTurn(unit);
    if (!unit->service) {
        unit->service = service;
        status = makeAppear(unit, opens);
        if (!NT_SUCCESS(status))
            removeUnit(unit);
    }
    endTurn(unit);
    return status;
}

void removeUnit(Unit* unit)
{
    IoDeleteSymbolicLink(&unit->link.text);
    LIST_ENTRY ended;
    InitializeListHead(&ended);
    const KIRQL irql = takeLock();
    unit->present = FALSE;
    dropClient(unit, STATUS_NO_SUCH_DEVICE, &ended);
    releaseLock(irql);
    completeAll(&ended);
    closeServiceLink(&unit->serviceLink);
    unit->service = NULL;
}

NTSTATUS detachUnit(Unit* unit, PFILE_OBJECT service)
{
    NTSTATUS status = STATUS_INVALID_DEVICE_STATE;
    takeTurn(unit);
    if (unit->service == service) {
        removeUnit(unit);
        status = STATUS_SUCCESS;
    }
    endTurn(unit);
    return status;
}
