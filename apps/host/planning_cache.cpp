// SPDX-License-Identifier: GPL-2.0-or-later
#include "host/planning_cache.h"

#include <QByteArray>
#include <QCryptographicHash>
#include <QDir>
#include <QFileInfo>
#include <QSaveFile>
#include <QStandardPaths>
#include <QSysInfo>

#include <fftw3.h>

#include <cstdlib>

namespace tesmor::apps {

namespace {

constexpr qint64 MOST_BYTES = 1 << 20; // a size takes a few thousand; a larger file starts anew

QByteArray digest(const QByteArray& bytes)
{
    return QCryptographicHash::hash(bytes, QCryptographicHash::Sha256).toHex();
}

// FFTW's own text behind a digest of it: FFTW takes some damaged texts for good ones.
QByteArray sealed(const QByteArray& wisdom)
{
    return digest(wisdom) + '\n' + wisdom;
}

// A file for each machine and each FFTW: what is fast for one need not be for another.
QFileInfo cacheFile()
{
    const QByteArray owner = digest(QSysInfo::machineUniqueId() + fftw_version).left(16);
    const QDir folder(QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation) + "/tesmor");
    return QFileInfo(folder, "planning-" + owner);
}

QByteArray read(const QFileInfo& info)
{
    QFile file(info.filePath());
    return info.isFile() && file.open(QIODevice::ReadOnly) ? file.read(MOST_BYTES) : QByteArray();
}

} // namespace

void loadPlanning()
{
    const QByteArray content = read(cacheFile());
    const QByteArray wisdom = content.mid(content.indexOf('\n') + 1);
    if (content == sealed(wisdom))
        fftw_import_wisdom_from_string(wisdom.constData());
}

void savePlanning()
{
    char* const text = fftw_export_wisdom_to_string();
    if (text == nullptr)
        return;
    const QByteArray content = sealed(text);
    std::free(text);
    const QFileInfo info = cacheFile();
    if (content == read(info) || !QDir().mkpath(info.path()))
        return;
    QSaveFile file(info.filePath());
    if (file.open(QIODevice::WriteOnly) && file.write(content) == content.size())
        file.commit();
}

} // namespace tesmor::apps
