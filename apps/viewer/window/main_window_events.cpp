// SPDX-License-Identifier: GPL-2.0-or-later
#include "viewer/window/main_window.h"

#include "terminal/text.h"
#include "viewer/widgets/live_view.h"
#include "viewer/widgets/result_view.h"
#include "viewer/widgets/slice_strip.h"
#include "viewer/window/focus_panel.h"
#include "viewer/window/message_bar.h"
#include "viewer/window/result_pane.h"
#include "viewer/window/stack_panel.h"

#include <QActionGroup>
#include <QCloseEvent>
#include <QCoreApplication>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QProgressBar>
#include <QSplitter>

#include <algorithm>
#include <utility>

namespace tesmor::apps {

void MainWindow::findSources()
{
    session_.source().findSources(finder_);
    showState();
}

void MainWindow::listSources(const std::vector<Source>& sources)
{
    sourceList_ = sources;
    qDeleteAll(sources_->actions());
    QAction* const before = sourceMenu_->actions().first();
    for (const Source& source : sourceList_) {
        auto* action = new QAction(source.title, sources_);
        action->setCheckable(true);
        action->setData(source.name);
        action->setChecked(wasOpened_ && source.name == session_.source().source().name);
        connect(action, &QAction::triggered, this, [this, source] {
            settings_.setValue("source", source.name);
            open(source);
        });
        sourceMenu_->insertAction(before, action);
    }
    if (wasOpened_ || sources.empty())
        return;
    const QString name = wanted_.isEmpty() ? settings_.value("source").toString() : wanted_;
    const auto found = std::ranges::find(sourceList_, name, &Source::name);
    if (found != sourceList_.end())
        open(*found);
    else
        open(wanted_.isEmpty() ? sourceList_.front() : cameraSource(wanted_, wanted_));
}

void MainWindow::open(const Source& source)
{
    wasOpened_ = true;
    for (QAction* action : sources_->actions())
        action->setChecked(action->data() == source.name);
    session_.open(source);
}

void MainWindow::showState()
{
    LiveSource& source = session_.source();
    const bool isBusy = !session_.isFree();
    using State = LiveSource::State;
    const bool isShown = source.state() == State::LIVE || source.state() == State::STALLED;
    if (!isShown)
        live_->setFrame({});
    live_->setPlaceholder(!wasOpened_                        ? tr("Looking for cameras …")
                          : source.state() == State::OPENING ? tr("Opening %1 …").arg(source.source().title)
                          : source.state() == State::LOST    ? tr("No image. Press Ctrl+R to reconnect.")
                                                             : tr("No image. Choose a camera in the menu Source."));
    live_->setSimulated(source.source().isSimulated);
    live_->setMagnification(session_.magnification());
    showCalibration();
    progress_->setVisible(isBusy);
    findChild<QAction*>("actionStop")->setEnabled(isBusy);
    findChild<QAction*>("actionSave")->setEnabled(!result_->view().result().isNull());
    findChild<QAction*>("actionSaveSlices")->setEnabled(!result_->view().slices().isEmpty());
    findChild<QAction*>("reconnect")->setEnabled(wasOpened_);
    setWindowTitle((wasOpened_ ? source.source().title : tr("tesmor")) + "[*]");
    setWindowModified(guard_.hasUnsaved());
    if (session_.isBusy())
        showActivity();
}

void MainWindow::showFrame(const QImage& frame, double sharpness)
{
    if (live_->image().size() != frame.size())
        calibrator_.load();
    live_->setFrame(frame);
    focusPanel_->addSharpness(sharpness);
}

void MainWindow::showActivity()
{
    const auto operation = session_.operation();
    if (!operation || session_.isFree())
        return;
    const auto showProgress = [this](int value, int most) {
        progress_->setRange(0, most);
        progress_->setValue(value);
    };
    QString text;
    switch (*operation) {
    case Operation::FOCUS:
        showProgress(0, 0);
        text = session_.curve().isOverTime()
                   ? tr("Focusing …")
                   : tr("Focusing: %1, move %2")
                         .arg(QCoreApplication::translate("SearchPhase", phaseName(session_.curve().phase())))
                         .arg(session_.curve().moves());
        break;
    case Operation::MOVE:
        showProgress(0, 0);
        text = tr("Moving the focus …");
        break;
    case Operation::STACK: {
        const int count = static_cast<int>(session_.slices().size());
        showProgress(count, session_.plan().slices);
        text = count < session_.plan().slices
                   ? tr("Capturing slice %1 of %2").arg(count + 1).arg(session_.plan().slices)
                   : tr("Moving back …");
        break;
    }
    case Operation::FUSION:
        showProgress(session_.fusionProgress(), 100);
        text = tr("Fusing: %1 %").arg(session_.fusionProgress());
        break;
    }
    if (isClosing_)
        text = tr("Closing as soon as the library has stopped …");
    else if (session_.isStopping())
        text = tr("Stopping …");
    activity_->setText(text);
}

void MainWindow::showFrameRate()
{
    LiveSource& source = session_.source();
    const std::uint64_t frames = source.tap().frameCount();
    const std::uint64_t rate = frames - std::exchange(framesBefore_, frames);
    if (live_->image().isNull())
        return frameInfo_->clear();
    frameInfo_->setText(tr("%1 × %2, %3 frames/s").arg(live_->image().width()).arg(live_->image().height()).arg(rate));
    source.refreshControls();
}

void MainWindow::capture()
{
    if (const auto plan = stackPanel_->plan())
        session_.capture(*plan);
}

void MainWindow::beginStack()
{
    strip_->start(session_.plan().slices);
    strip_->setVisible(true);
    result_->forgetImages();
    const Source& source = session_.source().source();
    stackSource_ = source.name;
    stackMagnification_ = session_.plan().magnification;
    result_->view().setSimulated(source.isSimulated);
    showCalibration();
    showActivity();
}

// The result, or what a stack has brought so far.
void MainWindow::endCommand(Operation operation, bool succeeded, const QString& text)
{
    if (operation == Operation::STACK || (operation == Operation::FUSION && succeeded))
        result_->setImages(session_.fused(), session_.slices());
    if (operation == Operation::FUSION && succeeded) {
        showResult(true);
        result_->view().setComparison(ResultView::Comparison::RESULT);
    }
    if (operation != Operation::MOVE && succeeded)
        outcome_ = text;
    else if (!succeeded) // which the next success takes away
        outcome_.clear();
    activity_->setText(succeeded ? outcome_ : text);
}

void MainWindow::say(const QString& text)
{
    outcome_ = text;
    activity_->setText(text);
}

void MainWindow::showResult(bool visible)
{
    const bool wasVisible = result_->isVisible();
    result_->setVisible(visible);
    result_->controls()->setVisible(visible);
    findChild<QAction*>("showResult")->setChecked(visible);
    if (visible && !wasVisible)
        splitter_->setSizes({splitter_->width() / 2, splitter_->width() / 2});
}

// What the button of a message says.
void MainWindow::obey(const QString& topic)
{
    if (topic == "camera" || topic == "drive")
        session_.reconnect();
    else if (topic == "save")
        result_->saveAgain();
}

// What was captured before keeps its size, whatever camera and objective are in use now.
void MainWindow::showCalibration()
{
    const Calibration& calibration = calibrator_.calibration();
    live_->setMicrometresPerPixel(calibration.micrometresPerPixel(session_.magnification()).value_or(0));
    if (stackSource_ == session_.source().source().name)
        result_->setMicrometresPerPixel(calibration.micrometresPerPixel(stackMagnification_).value_or(0));
    focusPanel_->setCalibration(calibration);
    stackPanel_->setCalibration(calibration);
}

void MainWindow::closeEvent(QCloseEvent* event)
{
    if (mayClose_) {
        emit hasClosed();
        return;
    }
    event->ignore();
    if (isClosing_)
        return;
    if (session_.operation() == Operation::STACK)
        result_->setImages({}, session_.slices()); // what it has brought so far
    guard_.before([this] {
        isClosing_ = true;
        saveSettings();
        centralWidget()->setEnabled(false);
        menuBar()->setEnabled(false);
        activity_->setText(tr("Closing …"));
        session_.shutDown();
    });
}

void MainWindow::saveSettings()
{
    settings_.setValue("window/geometry", saveGeometry());
    settings_.setValue("magnification", session_.magnification());
    settings_.setValue("stack/slices", stackPanel_->slices());
    settings_.setValue("stack/spacing", stackPanel_->spacing());
}

} // namespace tesmor::apps
