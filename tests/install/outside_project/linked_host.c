// SPDX-License-Identifier: GPL-2.0-or-later
/* Linked to the installed library. The loader's table has the types of the header's functions, or this does not
   compile. */
#include <tesmor.h>
#include <tesmor_loader.h>

#include <stdio.h>

int main(void)
{
    const TesmorFunctions tesmor = {
        .init = tesmor_init,
        .fini = tesmor_fini,
        .video = tesmor_video,
        .doing = tesmor_doing,
        .start = tesmor_start,
        .stop = tesmor_stop,
        .startif = tesmor_startif,
        .cancelif = tesmor_cancelif,
        .capture = tesmor_capture,
        .fusion = tesmor_fusion,
        .manual = tesmor_manual,
        .reset = tesmor_reset,
    };
    char numbers[32];

    snprintf(numbers, sizeof numbers, "%d.%d.%d", TESMOR_VERSION_MAJOR, TESMOR_VERSION_MINOR, TESMOR_VERSION_PATCH);
    if (strcmp(numbers, TESMOR_VERSION) != 0 || !tesmor.init() || tesmor.doing() || !tesmor.fini())
        return 1;
    puts(TESMOR_VERSION);
    return 0;
}
