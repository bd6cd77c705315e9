// SPDX-License-Identifier: GPL-2.0-or-later
/* Names with a number in them. */
#ifndef BRASKDRV_NAME_H
#define BRASKDRV_NAME_H

#include <ntifs.h>

#define NAME_CHARACTERS 64

typedef struct Name {
    UNICODE_STRING text;
    WCHAR characters[NAME_CHARACTERS];
} Name;

/* before, number in decimal, after. The name must stay where it is. */
static inline void setName(Name* name, const WCHAR* before, ULONG number, const WCHAR* after)
{
    WCHAR digits[12];
    UNICODE_STRING decimal = {0, sizeof(digits), digits};
    RtlIntegerToUnicodeString(number, 10, &decimal);
    RtlInitEmptyUnicodeString(&name->text, name->characters, sizeof(name->characters));
    RtlAppendUnicodeToString(&name->text, before);
    RtlAppendUnicodeStringToString(&name->text, &decimal);
    RtlAppendUnicodeToString(&name->text, after);
}

#endif
