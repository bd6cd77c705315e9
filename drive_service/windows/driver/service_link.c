// SPDX-License-Identifier: GPL-2.0-or-later
#include "service_link.h"

#include "name.h"

#define PIPE_FOLDER L"\\Device\\NamedPipe\\"
#define EVENT_FOLDER L"\\BaseNamedObjects\\"

static OBJECT_ATTRIBUTES attributesOf(Name* name)
{
    OBJECT_ATTRIBUTES attributes;
    InitializeObjectAttributes(&attributes, &name->text, OBJ_KERNEL_HANDLE | OBJ_CASE_INSENSITIVE, NULL, NULL);
    return attributes;
}

static NTSTATUS openPipe(HANDLE* pipe, ULONG unit)
{
    Name name;
    setName(&name, PIPE_FOLDER BRASKDRV_PREFIX, unit, BRASKDRV_REQUESTS);
    OBJECT_ATTRIBUTES attributes = attributesOf(&name);
    IO_STATUS_BLOCK ioStatus;
    return ZwCreateFile(pipe, GENERIC_WRITE | SYNCHRONIZE, &attributes, &ioStatus, NULL, FILE_ATTRIBUTE_NORMAL, 0,
                        FILE_OPEN, FILE_SYNCHRONOUS_IO_NONALERT, NULL, 0);
}

static NTSTATUS openEvent(HANDLE* event, ULONG unit, const WCHAR* suffix)
{
    Name name;
    setName(&name, EVENT_FOLDER BRASKDRV_PREFIX, unit, suffix);
    OBJECT_ATTRIBUTES attributes = attributesOf(&name);
    return ZwOpenEvent(event, EVENT_ALL_ACCESS, &attributes);
}

NTSTATUS openServiceLink(ServiceLink* link, ULONG unit)
{
    RtlZeroMemory(link, sizeof(*link));
    NTSTATUS status = openEvent(&link->accepted, unit, BRASKDRV_ACCEPTED);
    if (NT_SUCCESS(status))
        status = openEvent(&link->refused, unit, BRASKDRV_REFUSED);
    if (NT_SUCCESS(status))
        status = openEvent(&link->vanished, unit, BRASKDRV_VANISHED);
    if (NT_SUCCESS(status))
        status = openPipe(&link->requests, unit);
    if (!NT_SUCCESS(status))
        closeServiceLink(link);
    return status;
}

void closeServiceLink(ServiceLink* link)
{
    const HANDLE handles[] = {link->requests, link->accepted, link->refused, link->vanished};
    for (ULONG i = 0; i < ARRAYSIZE(handles); ++i) {
        if (handles[i])
            ZwClose(handles[i]);
    }
    RtlZeroMemory(link, sizeof(*link));
}

static NTSTATUS awaitAnswer(ServiceLink* link)
{
    HANDLE answers[] = {link->accepted, link->refused, link->vanished};
    LARGE_INTEGER limit;
    limit.QuadPart = -10000LL * BRASKDRV_ANSWER_LIMIT_MS; /* in 100 ns; negative: from now */
    switch (ZwWaitForMultipleObjects(ARRAYSIZE(answers), answers, WaitAny, FALSE, &limit)) {
    case STATUS_WAIT_0:
        return STATUS_SUCCESS;
    case STATUS_WAIT_0 + 1:
        return STATUS_IO_DEVICE_ERROR;
    case STATUS_WAIT_0 + 2:
        return STATUS_NO_SUCH_DEVICE;
    default:
        return STATUS_IO_TIMEOUT;
    }
}

/* An answer that came too late for an earlier request must not be taken for this one's. */
NTSTATUS askService(ServiceLink* link, BraskdrvRequest* request)
{
    ZwClearEvent(link->accepted);
    ZwClearEvent(link->refused);
    ZwClearEvent(link->vanished);
    IO_STATUS_BLOCK ioStatus;
    const NTSTATUS status =
        ZwWriteFile(link->requests, NULL, NULL, NULL, &ioStatus, request, sizeof(*request), NULL, NULL);
    return NT_SUCCESS(status) ? awaitAnswer(link) : STATUS_IO_DEVICE_ERROR;
}
