// SPDX-License-Identifier: GPL-2.0-or-later
// What a batch has to do: which stack becomes which file.
#pragma once

#include <QString>
#include <QStringList>

#include <vector>

namespace tesmor::apps {

struct BatchJob {
    QString stack;  // as the user named it
    QString output; // the file
};

// In the order of the stacks. Throws UsageError if two would become one file, or if a stack is the folder itself.
//   format   the ending of the files
std::vector<BatchJob> batchJobs(const QStringList& stacks, const QString& folder, const QString& format);

// What a stack consists of: the pictures of a folder, or the file itself. Throws UserError.
QStringList imagesOfStack(const QString& stack);

} // namespace tesmor::apps
