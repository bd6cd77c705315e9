// SPDX-License-Identifier: GPL-2.0-or-later
// The folder that a demo writes to. All functions throw UserError, which names the culprit and the remedy.
#pragma once

#include <QByteArray>
#include <QImage>
#include <QString>

#include <optional>
#include <vector>

namespace tesmor::apps {

class DemoFolder {
public:
    // Creates the folder if necessary and checks that it is writable. So that nobody's photographs are overwritten,
    // refuses the folder `planes` that they came from, and any folder whose slice-NN.png no demo has written.
    DemoFolder(const QString& path, const std::optional<QString>& planes);

    void writeTrace(const QByteArray& csv) const;

    // As slice-01.png and so on; removes the slices of an earlier demo. Call writeTrace first: it marks the folder as a
    // demo's.
    void writeSlices(const std::vector<QImage>& slices) const;

    void writePicture(const QString& name, const QImage& picture) const;

    // With a trailing slash.
    QString path() const
    {
        return path_;
    }

private:
    QString file(const QString& name) const
    {
        return path_ + name;
    }

    QString path_;
};

} // namespace tesmor::apps
