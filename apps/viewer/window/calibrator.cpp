// SPDX-License-Identifier: GPL-2.0-or-later
#include "viewer/window/calibrator.h"

#include "host/focus_units.h"
#include "viewer/session/session.h"

#include <QInputDialog>

namespace tesmor::apps {

Calibrator::Calibrator(QWidget& window, Session& session, QSettings& settings)
    : window_(window), session_(session), settings_(settings)
{
}

void Calibrator::load()
{
    const Source& source = session_.source().source();
    const QSize size = session_.frameSize();
    calibration_ =
        source.isSimulated && !size.isEmpty() ? Calibration::ofVirtualMicroscope(size.width()) : Calibration();
    calibration_.load(settings_, source.name);
    emit changed();
}

void Calibrator::askForPixelSize(double rulerLength)
{
    const std::uint16_t magnification = session_.magnification();
    const double size = calibration_.micrometresPerPixel(magnification).value_or(1);
    ask(tr("Calibrate the objective"),
        tr("How long is what you measured, in micrometres?\n(%1 pixels, objective %2×)")
            .arg(rulerLength, 0, 'f', 1)
            .arg(magnification),
        rulerLength * size, [this, magnification, rulerLength](double micrometres) {
            calibration_.setMicrometresPerPixel(magnification, micrometres / rulerLength);
        });
}

void Calibrator::askForTurn()
{
    ask(tr("Calibrate the focus"), tr("How many micrometres does the focus travel in one turn of the motor?"),
        calibration_.micrometres(STEPS_PER_TURN).value_or(100),
        [this](double micrometres) { calibration_.setMicrometresPerTurn(micrometres); });
}

void Calibrator::ask(const QString& title, const QString& question, double value,
                     const std::function<void(double)>& take)
{
    auto* dialog = new QInputDialog(&window_);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setWindowTitle(title);
    dialog->setLabelText(question);
    dialog->setInputMode(QInputDialog::DoubleInput);
    dialog->setDoubleRange(0.001, 1e6);
    dialog->setDoubleDecimals(3);
    dialog->setDoubleValue(value);
    connect(dialog, &QInputDialog::doubleValueSelected, this, [this, take](double entered) {
        take(entered);
        calibration_.save(settings_, session_.source().source().name);
        emit changed();
    });
    dialog->open();
}

} // namespace tesmor::apps
