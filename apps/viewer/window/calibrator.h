// SPDX-License-Identifier: GPL-2.0-or-later
// The calibration of the session's source: loads it, asks for it, and saves it.
#pragma once

#include "viewer/session/calibration.h"

#include <QObject>

#include <functional>

class QSettings;
class QWidget;

namespace tesmor::apps {

class Session;

class Calibrator : public QObject {
    Q_OBJECT

public:
    // All of them outlive it.
    Calibrator(QWidget& window, Session& session, QSettings& settings);

    const Calibration& calibration() const
    {
        return calibration_;
    }

    void load(); // once the size of the frames is known

    // Open a dialog. The ruler's length is in pixels.
    void askForPixelSize(double rulerLength);
    void askForTurn();

signals:
    void changed();

private:
    void ask(const QString& title, const QString& question, double value, const std::function<void(double)>& take);

    QWidget& window_;
    Session& session_;
    QSettings& settings_;
    Calibration calibration_;
};

} // namespace tesmor::apps
