// SPDX-License-Identifier: GPL-2.0-or-later
// Where the slices of a stack go.
#pragma once

#include <QImage>
#include <QString>

#include <vector>

namespace tesmor::apps {

class SliceFolder {
public:
    // Makes it, if need be. Throws UserError when slices are there already, or nothing can be written.
    explicit SliceFolder(const QString& path);

    // As slice-001.png and so on. Throws UserError, Interrupted and std::bad_alloc.
    void write(const std::vector<QImage>& slices) const;

private:
    QString file(int number) const;

    const QString path_;
};

} // namespace tesmor::apps
