// SPDX-License-Identifier: GPL-2.0-or-later
// The window: puts the parts together.
#pragma once

#include "viewer/session/session.h"
#include "viewer/session/source.h"
#include "viewer/window/calibrator.h"
#include "viewer/window/focus_keys.h"
#include "viewer/window/unsaved_guard.h"

#include <QMainWindow>
#include <QSettings>
#include <QTimer>

#include <functional>

class QActionGroup;
class QLabel;
class QMenu;
class QProgressBar;
class QSplitter;

namespace tesmor::apps {

class CameraPanel;
class FocusPanel;
class LiveView;
class MessageBar;
class ResultPane;
class SliceStrip;
class StackPanel;

class MainWindow : public QMainWindow {
    Q_OBJECT

public:
    // The settings outlive it.
    //   wanted   the name of the source to begin with; empty: the one that was chosen last, or the first that is found
    // Throws UserError when the library cannot be started.
    MainWindow(const SourceFinder& finder, const QString& wanted, QSettings& settings);
    ~MainWindow() override;

    Session& session()
    {
        return session_;
    }

signals:
    void hasClosed(); // the motor stands, and all threads are done

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void build();
    QWidget* makeSidePanel();
    void buildStatusBar();
    void buildMenus();
    void buildFileMenu();
    void buildSourceMenu();
    void buildFocusMenu();
    void buildStackMenu();
    void buildViewMenu();
    QAction* add(QMenu* menu, const QString& name, const QString& icon, const QString& text, const QKeySequence& keys,
                 const std::function<void()>& act);
    void click(const QString& button); // does what the button of that name does, if it may
    void connectParts();

    void findSources();
    void listSources(const std::vector<Source>& sources);
    void open(const Source& source);
    void showState();
    void showFrame(const QImage& frame, double sharpness);
    void showActivity();
    void showFrameRate();
    void capture();
    void beginStack();
    void endCommand(Operation operation, bool succeeded, const QString& text);
    void say(const QString& text);
    void showResult(bool visible);
    void obey(const QString& topic);

    void showCalibration();
    void saveSettings();
    void showAbout();

    QSettings& settings_;
    SourceFinder finder_;
    QString wanted_;
    Session session_;
    LiveView* live_;
    ResultPane* result_;
    QSplitter* splitter_;
    SliceStrip* strip_;
    MessageBar* messages_;
    FocusPanel* focusPanel_;
    StackPanel* stackPanel_;
    CameraPanel* cameraPanel_;
    QLabel* activity_;
    QString outcome_; // what activity_ says when nothing runs
    QLabel* frameInfo_;
    QProgressBar* progress_;
    QMenu* sourceMenu_;
    QActionGroup* sources_;
    std::vector<Source> sourceList_;
    QTimer second_;
    QString stackSource_; // that the last stack came from
    std::uint16_t stackMagnification_ = 0;
    std::uint64_t framesBefore_ = 0; // a second ago
    bool wasOpened_ = false;         // a source, at the start
    bool isCalibrating_ = false;     // the ruler's next length is a known one
    bool isClosing_ = false;
    bool mayClose_ = false;
    Calibrator calibrator_;
    UnsavedGuard guard_;
    FocusKeys keys_;
};

} // namespace tesmor::apps
