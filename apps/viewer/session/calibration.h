// SPDX-License-Identifier: GPL-2.0-or-later
// How large things are: micrometres a pixel for each objective, and micrometres of focus a turn. Kept for each source,
// since both depend on the camera and the stand.
#pragma once

#include <QString>

#include <cstdint>
#include <map>
#include <optional>

class QSettings;

namespace tesmor::apps {

class Calibration {
public:
    // Takes over what was saved for the source of that name.
    void load(const QSettings& settings, const QString& source);
    void save(QSettings& settings, const QString& source) const;

    // As the virtual microscope has it, for frames so many pixels wide.
    static Calibration ofVirtualMicroscope(int frameWidth);

    std::optional<double> micrometresPerPixel(std::uint16_t magnification) const;
    void setMicrometresPerPixel(std::uint16_t magnification, double value);

    std::optional<double> micrometresPerTurn() const
    {
        return micrometresPerTurn_;
    }

    void setMicrometresPerTurn(double value)
    {
        micrometresPerTurn_ = value;
    }

    // Of so many motor steps.
    std::optional<double> micrometres(double steps) const;

private:
    std::map<std::uint16_t, double> micrometresPerPixel_; // by magnification
    std::optional<double> micrometresPerTurn_;
};

} // namespace tesmor::apps
