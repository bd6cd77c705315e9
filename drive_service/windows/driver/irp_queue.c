// SPDX-License-Identifier: GPL-2.0-or-later
#include "irp_queue.h"

static KSPIN_LOCK lock;

void initialiseLock(void)
{
    KeInitializeSpinLock(&lock);
}

KIRQL takeLock(void)
{
    KIRQL irql;
    KeAcquireSpinLock(&lock, &irql);
    return irql;
}

void releaseLock(KIRQL irql)
{
    KeReleaseSpinLock(&lock, irql);
}

static PIRP irpOf(PLIST_ENTRY entry)
{
    return CONTAINING_RECORD(entry, IRP, Tail.Overlay.ListEntry);
}

static void NTAPI cancelIrp(PDEVICE_OBJECT device, PIRP irp)
{
    UNREFERENCED_PARAMETER(device);
    IoReleaseCancelSpinLock(irp->CancelIrql);
    const KIRQL irql = takeLock();
    RemoveEntryList(&irp->Tail.Overlay.ListEntry);
    releaseLock(irql);
    completeIrp(irp, STATUS_CANCELLED, 0);
}

void putIrp(PLIST_ENTRY queue, PIRP irp, PLIST_ENTRY ended)
{
    InsertTailList(queue, &irp->Tail.Overlay.ListEntry);
    IoSetCancelRoutine(irp, cancelIrp);
    if (irp->Cancel && IoSetCancelRoutine(irp, NULL)) {
        RemoveEntryList(&irp->Tail.Overlay.ListEntry);
        endIrp(irp, STATUS_CANCELLED, 0, ended);
    }
}

PIRP takeIrp(PLIST_ENTRY queue)
{
    while (!IsListEmpty(queue)) {
        const PLIST_ENTRY entry = RemoveHeadList(queue);
        const PIRP irp = irpOf(entry);
        if (IoSetCancelRoutine(irp, NULL))
            return irp;
        InitializeListHead(entry); /* its cancel routine has begun and waits for the lock */
    }
    return NULL;
}

void endIrp(PIRP irp, NTSTATUS status, ULONG_PTR information, PLIST_ENTRY ended)
{
    irp->IoStatus.Status = status;
    irp->IoStatus.Information = information;
    InsertTailList(ended, &irp->Tail.Overlay.ListEntry);
}

void endQueue(PLIST_ENTRY queue, NTSTATUS status, PLIST_ENTRY ended)
{
    PIRP irp;
    while ((irp = takeIrp(queue)) != NULL)
        endIrp(irp, status, 0, ended);
}

void completeAll(PLIST_ENTRY ended)
{
    while (!IsListEmpty(ended))
        IoCompleteRequest(irpOf(RemoveHeadList(ended)), IO_NO_INCREMENT);
}

NTSTATUS completeIrp(PIRP irp, NTSTATUS status, ULONG_PTR information)
{
    irp->IoStatus.Status = status;
    irp->IoStatus.Information = information;
    IoCompleteRequest(irp, IO_NO_INCREMENT);
    return status;
}
