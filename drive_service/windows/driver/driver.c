// SPDX-License-Identifier: GPL-2.0-or-later
/* braskdrv, simulated: a test driver that stands in for the camera's. See protocol.h. */
#include "irp_queue.h"
#include "protocol.h"
#include "protocol/drive_codes.h"
#include "unit.h"

static PDEVICE_OBJECT controlDevice;
static UNICODE_STRING controlTarget = RTL_CONSTANT_STRING(L"\\Device\\" BRASKDRV_CONTROL_NAME);
static UNICODE_STRING controlLink = RTL_CONSTANT_STRING(L"\\DosDevices\\Global\\" BRASKDRV_CONTROL_NAME);
static Unit* units[MAX_DRIVE_UNITS]; /* each in the extension of its device object */

static Unit* unitOfService(PFILE_OBJECT service)
{
    for (ULONG i = 0; i < MAX_DRIVE_UNITS; ++i) {
        if (units[i]->service == service)
            return units[i];
    }
    return NULL;
}

static NTSTATUS attach(PFILE_OBJECT service, const BraskdrvAttach* wish)
{
    if (wish->unit >= MAX_DRIVE_UNITS || unitOfService(service))
        return STATUS_INVALID_PARAMETER;
    return attachUnit(units[wish->unit], service, wish->opens != 0);
}

/* Never pending. */
static NTSTATUS controlFromService(PIRP irp)
{
    const PIO_STACK_LOCATION stack = IoGetCurrentIrpStackLocation(irp);
    const ULONG code = stack->Parameters.DeviceIoControl.IoControlCode;
    const ULONG length = stack->Parameters.DeviceIoControl.InputBufferLength;
    const void* const input = irp->AssociatedIrp.SystemBuffer;
    if (code == BRASKDRV_ATTACH && length == sizeof(BraskdrvAttach))
        return attach(stack->FileObject, input);
    Unit* const unit = unitOfService(stack->FileObject);
    if (!unit)
        return STATUS_INVALID_DEVICE_STATE;
    if (code == BRASKDRV_ACKNOWLEDGE && length == sizeof(BraskdrvAcknowledgement))
        return acknowledge(unit, input);
    if (code == BRASKDRV_DETACH)
        return detachUnit(unit, stack->FileObject);
    return STATUS_INVALID_DEVICE_REQUEST;
}

static NTSTATUS NTAPI dispatchCreate(PDEVICE_OBJECT device, PIRP irp)
{
    const PFILE_OBJECT file = IoGetCurrentIrpStackLocation(irp)->FileObject;
    const NTSTATUS status = device == controlDevice ? STATUS_SUCCESS : openUnit(device->DeviceExtension, file);
    return completeIrp(irp, status, 0);
}

/* The last handle is closed. Also run when the file object goes: the second time there is nothing left to do. */
static NTSTATUS NTAPI dispatchClose(PDEVICE_OBJECT device, PIRP irp)
{
    const PFILE_OBJECT file = IoGetCurrentIrpStackLocation(irp)->FileObject;
    if (device == controlDevice) {
        Unit* const unit = unitOfService(file);
        if (unit)
            detachUnit(unit, file);
    } else {
        closeUnit(device->DeviceExtension, file);
    }
    return completeIrp(irp, STATUS_SUCCESS, 0);
}

static NTSTATUS NTAPI dispatchRead(PDEVICE_OBJECT device, PIRP irp)
{
    ULONG_PTR information = 0;
    NTSTATUS status = STATUS_INVALID_DEVICE_REQUEST;
    if (device != controlDevice)
        status = readFromUnit(device->DeviceExtension, irp, &information);
    return status == STATUS_PENDING ? status : completeIrp(irp, status, information);
}

static NTSTATUS NTAPI dispatchControl(PDEVICE_OBJECT device, PIRP irp)
{
    const NTSTATUS status =
        device == controlDevice ? controlFromService(irp) : requestFromUnit(device->DeviceExtension, irp);
    return completeIrp(irp, status, 0);
}

static void NTAPI unload(PDRIVER_OBJECT driver)
{
    IoDeleteSymbolicLink(&controlLink);
    while (driver->DeviceObject)
        IoDeleteDevice(driver->DeviceObject);
}

static NTSTATUS createDevices(PDRIVER_OBJECT driver)
{
    for (ULONG i = 0; i < MAX_DRIVE_UNITS; ++i) {
        const NTSTATUS status = createUnit(driver, i, &units[i]);
        if (!NT_SUCCESS(status))
            return status;
    }
    const NTSTATUS status =
        IoCreateDevice(driver, 0, &controlTarget, FILE_DEVICE_UNKNOWN, FILE_DEVICE_SECURE_OPEN, FALSE, &controlDevice);
    return NT_SUCCESS(status) ? IoCreateSymbolicLink(&controlLink, &controlTarget) : status;
}

NTSTATUS NTAPI DriverEntry(PDRIVER_OBJECT driver, PUNICODE_STRING registryPath)
{
    UNREFERENCED_PARAMETER(registryPath);
    initialiseLock();
    driver->MajorFunction[IRP_MJ_CREATE] = dispatchCreate;
    driver->MajorFunction[IRP_MJ_CLEANUP] = dispatchClose;
    driver->MajorFunction[IRP_MJ_CLOSE] = dispatchClose;
    driver->MajorFunction[IRP_MJ_READ] = dispatchRead;
    driver->MajorFunction[IRP_MJ_DEVICE_CONTROL] = dispatchControl;
    driver->DriverUnload = unload;
    const NTSTATUS status = createDevices(driver);
    if (!NT_SUCCESS(status))
        unload(driver);
    return status;
}
