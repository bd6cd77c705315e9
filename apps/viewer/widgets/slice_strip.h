// SPDX-License-Identifier: GPL-2.0-or-later
// The slices of a stack as a row of thumbnails, filled as they come.
#pragma once

#include <QImage>
#include <QListWidget>

namespace tesmor::apps {

class SliceStrip : public QListWidget {
    Q_OBJECT

public:
    explicit SliceStrip(QWidget* parent = nullptr);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

public slots:
    // Empties the strip and leaves room for so many slices.
    void start(int sliceCount);
    // The next slice; it scrolls to it. More than start() said are added at the end.
    void addSlice(const QImage& slice);
    void setCurrentSlice(int index); // from 0; emits nothing

public:
    int sliceCount() const; // that have come

signals:
    void sliceChosen(int index); // from 0, by mouse or keys

protected:
    void wheelEvent(QWheelEvent* event) override;

private:
    int sliceCount_ = 0;
};

} // namespace tesmor::apps
