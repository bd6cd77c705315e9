// The folder that a demo writes into. All functions throw UserError, which names the culprit and the remedy.
#pragma once

#include <QByteArray>
#include <QImage>
#include <QString>

#include <optional>
#include <vector>

namespace tesmor::apps {

class DemoFolder {
public:
    // Makes the folder if need be and finds out whether one can write there. Nobody's photographs are replaced: refuses the
    // folder `planes` that they came from, and one whose slice-NN.png are no demo's.
    DemoFolder(const QString& path, const std::optional<QString>& planes);

    void writeTrace(const QByteArray& csv) const;

    // As slice-01.png and so on; an earlier demo's slices are removed. Call writeTrace before: it tells a demo's folder.
    void writeSlices(const std::vector<QImage>& slices) const;

    void writePicture(const QString& name, const QImage& picture) const;

    // With a slash at its end.
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
