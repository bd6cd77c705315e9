// SPDX-License-Identifier: GPL-2.0-or-later
#pragma once

#include <QString>
#include <QStringList>

namespace tesmor::apps {

// The PNG, JPEG, TIFF and BMP files in a folder, told by their names and in the order of their names, slice-9 before
// slice-10. Throws UserError, which names the folder and the remedy; not for an empty folder.
QStringList pictureFiles(const QString& folder);

} // namespace tesmor::apps
