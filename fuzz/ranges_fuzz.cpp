// SPDX-License-Identifier: GPL-2.0-or-later
// Any text as the name of a file with pages, and as a --range.
#include "fuzz/fuzz_input.h"
#include "images/depth_range.h"
#include "images/page_range.h"
#include "terminal/errors.h"

using namespace tesmor;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QString text = QString::fromUtf8(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    try {
        const apps::PagedName name = apps::pagedNameOf(text);
        fuzz::require(text.startsWith(name.file), "the file is what the name begins with");
        fuzz::require(name.pages ? text.endsWith(']') && !name.file.isEmpty() : name.file == text,
                      "and the pages are the rest");
        if (name.pages)
            fuzz::require(name.pages->first >= 1 && name.pages->last.value_or(name.pages->first) >= name.pages->first,
                          "pages count from 1, upwards");
    } catch (const apps::UserError&) {
    }
    try {
        const apps::DepthRange range = apps::rangeChoiceOf(text).given;
        fuzz::require(0 <= range.low && range.low < range.high && range.high <= 65535, "a range is within 16 bits");
    } catch (const apps::UserError&) {
    }
    return 0;
}
