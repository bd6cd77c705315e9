// SPDX-License-Identifier: GPL-2.0-or-later
#include "images/page_range.h"

#include "terminal/errors.h"

#include <QRegularExpression>

namespace tesmor::apps {

PagedName pagedNameOf(const QString& text)
{
    static const QRegularExpression pattern(R"(^(.+)\[(?:([0-9]{1,9})|([0-9]{0,9})-([0-9]{0,9}))\]\z)",
                                            QRegularExpression::DotMatchesEverythingOption);
    const auto match = pattern.match(text);
    if (!match.hasMatch())
        return {text, std::nullopt};
    PageRange pages;
    const QString only = match.captured(2);
    const QString first = only.isEmpty() ? match.captured(3) : only;
    const QString last = only.isEmpty() ? match.captured(4) : only;
    if (!first.isEmpty())
        pages.first = first.toInt();
    if (!last.isEmpty())
        pages.last = last.toInt();
    if (pages.first < 1 || pages.last.value_or(pages.first) < pages.first)
        throw UserError(text + ": no such pages; they count from 1, the first comes first, as in stack.tif[3-20]");
    return {match.captured(1), pages};
}

} // namespace tesmor::apps
