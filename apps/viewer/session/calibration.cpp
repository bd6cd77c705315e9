// SPDX-License-Identifier: GPL-2.0-or-later
#include "viewer/session/calibration.h"

#include "host/focus_units.h"
#include "microscope/camera/objective.h"
#include "microscope/specimen/specimen.h"

#include <QSettings>
#include <QUrl>

namespace tesmor::apps {

namespace {

constexpr const char* TURN = "turn";

QString keyOf(const QString& source, const QString& name)
{
    return "calibration/" + QString::fromLatin1(QUrl::toPercentEncoding(source)) + "/" + name;
}

// None unless it is a size.
std::optional<double> sizeIn(const QSettings& settings, const QString& key)
{
    const double value = settings.value(key).toDouble();
    return value > 0 ? std::optional(value) : std::nullopt;
}

} // namespace

void Calibration::load(const QSettings& settings, const QString& source)
{
    for (const FocusObjective& objective : FOCUS_OBJECTIVES) {
        if (const auto value = sizeIn(settings, keyOf(source, QString::number(objective.magnification))))
            setMicrometresPerPixel(objective.magnification, *value);
    }
    if (const auto value = sizeIn(settings, keyOf(source, TURN)))
        setMicrometresPerTurn(*value);
}

void Calibration::save(QSettings& settings, const QString& source) const
{
    for (const auto& [magnification, value] : micrometresPerPixel_)
        settings.setValue(keyOf(source, QString::number(magnification)), value);
    if (micrometresPerTurn_)
        settings.setValue(keyOf(source, TURN), *micrometresPerTurn_);
}

Calibration Calibration::ofVirtualMicroscope(int frameWidth)
{
    Calibration calibration;
    for (const microscope::Objective& objective : microscope::OBJECTIVES)
        calibration.setMicrometresPerPixel(objective.magnification, microscope::SENSOR_PIXEL_UM /
                                                                        objective.magnification *
                                                                        microscope::FIELD_WIDTH / frameWidth);
    calibration.setMicrometresPerTurn(STEPS_PER_TURN / microscope::STEPS_PER_MICROMETRE);
    return calibration;
}

std::optional<double> Calibration::micrometresPerPixel(std::uint16_t magnification) const
{
    const auto found = micrometresPerPixel_.find(magnification);
    return found == micrometresPerPixel_.end() ? std::nullopt : std::optional(found->second);
}

void Calibration::setMicrometresPerPixel(std::uint16_t magnification, double value)
{
    micrometresPerPixel_[magnification] = value;
}

std::optional<double> Calibration::micrometres(double steps) const
{
    return micrometresPerTurn_ ? std::optional(steps / STEPS_PER_TURN * *micrometresPerTurn_) : std::nullopt;
}

} // namespace tesmor::apps
