// SPDX-License-Identifier: GPL-2.0-or-later
// The result and its slices beside the live image, and their way into files. Files are written on a thread of their
// own.
#pragma once

#include "viewer/session/command_thread.h"
#include "viewer/session/message_queue.h"

#include <QImage>
#include <QList>
#include <QSettings>
#include <QWidget>

#include <functional>
#include <memory>

class QFileIconProvider;
class QPushButton;

namespace tesmor::apps {

class ResultView;

class ResultPane : public QWidget {
    Q_OBJECT

public:
    explicit ResultPane(QSettings& settings, QWidget* parent = nullptr);
    ~ResultPane() override;

    // What is shown and saved is chosen there, below this and the live image; it belongs to where it is put.
    QWidget* controls()
    {
        return controls_;
    }

    ResultView& view()
    {
        return *view_;
    }

    // What was not there before counts as unsaved. A null result: the slices alone.
    void setImages(const QImage& result, const QList<QImage>& slices);
    void forgetImages();

    void setMicrometresPerPixel(double micrometres); // 0: not known

    bool hasUnsavedResult() const
    {
        return result_.isUnsaved;
    }

    bool hasUnsavedSlices() const
    {
        return slices_.isUnsaved;
    }

    // Ask for the file.
    void saveResult();
    void saveSlices();
    void save();      // what is unsaved: the result first
    void saveAgain(); // what could not be saved

signals:
    void saved(const QString& file);
    void notSaved(); // the user thought better of it, or it failed
    void told(const tesmor::apps::Message& message);
    void changed(); // what there is to save
    void closed();

private:
    using Writer = std::function<void(const QString& file)>; // throws UserError

    struct Saved {
        bool isUnsaved = false;
        int version = 0; // what is saved late may not be what is shown
    };

    void askForFile(const QString& title, const QString& filters, const QString& name, Saved& what,
                    const Writer& write);
    void writeFile(const QString& file, Saved& what, int version, const Writer& write);
    void finishWriting(Saved& what, int version, const QString& file, const QString& failure);

    QSettings& settings_;
    const std::unique_ptr<QFileIconProvider> icons_; // of the file dialog
    ResultView* view_;
    QWidget* controls_;
    QPushButton* saveResult_;
    QPushButton* saveSlices_;
    double micrometresPerPixel_ = 0;
    Saved result_;
    Saved slices_;
    const Saved* failed_ = nullptr; // the last that could not be saved
    CommandThread writer_;          // the first to go
};

} // namespace tesmor::apps
