// SPDX-License-Identifier: GPL-2.0-or-later
#include "images/tiff_messages.h"

#include <cstdarg>
#include <cstdio>
#include <new>

namespace tesmor::apps {

namespace {

QString textOf(const char* format, va_list arguments)
{
    char line[300] = "";
    std::vsnprintf(line, sizeof line, format, arguments);
    QString text = QString::fromUtf8(line).simplified();
    while (text.endsWith('.') || text.endsWith('!'))
        text.chop(1);
    return text;
}

int handleError(TIFF*, void* context, const char*, const char* format, va_list arguments)
{
    auto& messages = *static_cast<TiffMessages*>(context);
    if (messages.error.isEmpty())
        messages.error = textOf(format, arguments);
    return 1; // nobody else need hear of it
}

int handleWarning(TIFF*, void* context, const char*, const char* format, va_list arguments)
{
    if (textOf(format, arguments).contains("premature end", Qt::CaseInsensitive))
        static_cast<TiffMessages*>(context)->cut = true;
    return 1;
}

} // namespace

std::unique_ptr<TIFFOpenOptions, void (*)(TIFFOpenOptions*)> optionsWith(TiffMessages& messages)
{
    std::unique_ptr<TIFFOpenOptions, void (*)(TIFFOpenOptions*)> options(TIFFOpenOptionsAlloc(), TIFFOpenOptionsFree);
    if (!options)
        throw std::bad_alloc();
    TIFFOpenOptionsSetErrorHandlerExtR(options.get(), handleError, &messages);
    TIFFOpenOptionsSetWarningHandlerExtR(options.get(), handleWarning, &messages);
    return options;
}

} // namespace tesmor::apps
