// SPDX-License-Identifier: GPL-2.0-or-later
// How the program looks: light, dark, icons.
#pragma once

#include <QIcon>
#include <QString>

class QApplication;
class QPalette;

namespace tesmor::apps {

enum class Appearance { SYSTEM, LIGHT, DARK };

// Any time; all widgets follow at once.
void setAppearance(Appearance appearance);
Appearance appearance();

bool isDark(const QPalette& palette);

// Of the folder icons/, by name without suffix ("focus", "stop", "save"); drawn in the palette's colours at any size,
// also after these have changed. Needs a QGuiApplication.
QIcon themedIcon(const QString& name);

// The program's own.
QIcon applicationIcon();

} // namespace tesmor::apps
