// SPDX-License-Identifier: GPL-2.0-or-later
// A file that appears, or replaces an existing one, only once it is complete.
#pragma once

#include "terminal/errors.h"

#include <QIODevice>
#include <QString>

namespace tesmor::apps {

// The file gets what the device holds from its beginning on. Throws UserError, which names the file and the remedy, and
// Interrupted (see interrupt.h); then nothing has changed.
//   content   open for reading, seekable
void writeWhole(const QString& file, QIODevice& content);

// Checks in advance that writeWhole could write the file, and throws as it would. Leaves nothing behind.
void checkWritable(const QString& file);

// Why a file could not be written, after a device for it or beside it has failed.
UserError writeError(const QString& file, const QIODevice& failed);

} // namespace tesmor::apps
