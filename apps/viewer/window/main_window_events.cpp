// SPDX-License-Identifier: GPL-2.0-or-later
#include "viewer/window/main_window.h"

#include "host/focus_units.h"
#include "terminal/text.h"
#include "viewer/widgets/live_view.h"
#include "viewer/widgets/result_view.h"
#include "viewer/widgets/slice_strip.h"
#include "viewer/window/focus_panel.h"
#include "viewer/window/message_bar.h"
#include "viewer/window/result_pane.h"
#include "viewer/window/stack_panel.h"

#include <QAbstractItemView>
#include <QAbstractSlider>
#include <QAbstractSpinBox>
#include <QActionGroup>
#include <QApplication>
#include <QCheckBox>
#include <QCloseEvent>
#include <QComboBox>
#include <QInputDialog>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QProgressBar>
#include <QSplitter>

#include <algorithm>
#include <map>
#include <utility>

namespace tesmor::apps {

namespace {

constexpr int COARSE = 10; // fine steps
constexpr const char* ASK_FOR_SLICES = "askForSlices";

// Its own keys are worth more than moving the focus.
bool usesArrows(const QWidget* widget)
{
    return qobject_cast<const QAbstractSpinBox*>(widget) != nullptr ||
           qobject_cast<const QLineEdit*>(widget) != nullptr || qobject_cast<const QComboBox*>(widget) != nullptr ||
           qobject_cast<const QAbstractItemView*>(widget) != nullptr ||
           qobject_cast<const QAbstractSlider*>(widget) != nullptr;
}

QInputDialog* askForNumber(QWidget* parent, const QString& title, const QString& label, double value)
{
    auto* dialog = new QInputDialog(parent);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setWindowTitle(title);
    dialog->setLabelText(label);
    dialog->setInputMode(QInputDialog::DoubleInput);
    dialog->setDoubleRange(0.001, 1e6);
    dialog->setDoubleDecimals(3);
    dialog->setDoubleValue(value);
    dialog->open();
    return dialog;
}

} // namespace

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
    progress_->setVisible(isBusy);
    findChild<QAction*>("actionStop")->setEnabled(isBusy);
    findChild<QAction*>("actionSave")->setEnabled(!result_->view().result().isNull());
    findChild<QAction*>("actionSaveSlices")->setEnabled(!result_->view().slices().isEmpty());
    findChild<QAction*>("reconnect")->setEnabled(wasOpened_);
    setWindowTitle((wasOpened_ ? source.source().title : tr("tesmor")) + "[*]");
    setWindowModified(hasUnsaved());
    if (session_.isBusy())
        showActivity();
}

void MainWindow::showFrame(const QImage& frame, double sharpness)
{
    if (live_->image().size() != frame.size())
        loadCalibration();
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
    if (operation != Operation::MOVE || !succeeded)
        say(text);
    else
        activity_->setText(outcome_);
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

void MainWindow::loadCalibration()
{
    const LiveSource& source = session_.source();
    const QSize size = session_.frameSize();
    calibration_ = {};
    if (source.source().isSimulated && !size.isEmpty())
        calibration_ = Calibration::ofVirtualMicroscope(size.width());
    calibration_.load(settings_, source.source().name);
    applyCalibration();
}

void MainWindow::applyCalibration()
{
    const double size = calibration_.micrometresPerPixel(session_.magnification()).value_or(0);
    live_->setMicrometresPerPixel(size);
    result_->setMicrometresPerPixel(size);
    result_->view().setSimulated(session_.source().source().isSimulated);
    focusPanel_->setCalibration(calibration_);
    stackPanel_->setCalibration(calibration_);
}

void MainWindow::calibratePixels(double rulerLength)
{
    const double size = calibration_.micrometresPerPixel(session_.magnification()).value_or(1);
    auto* dialog = askForNumber(this, tr("Calibrate the objective"),
                                tr("How long is what you measured, in micrometres?\n(%1 pixels, objective %2×)")
                                    .arg(rulerLength, 0, 'f', 1)
                                    .arg(session_.magnification()),
                                rulerLength * size);
    connect(dialog, &QInputDialog::doubleValueSelected, this, [this, rulerLength](double micrometres) {
        calibration_.setMicrometresPerPixel(session_.magnification(), micrometres / rulerLength);
        calibration_.save(settings_, session_.source().source().name);
        applyCalibration();
    });
}

void MainWindow::calibrateTurn()
{
    auto* dialog = askForNumber(this, tr("Calibrate the focus"),
                                tr("How many micrometres does the focus travel in one turn of the motor?"),
                                calibration_.micrometres(STEPS_PER_TURN).value_or(100));
    connect(dialog, &QInputDialog::doubleValueSelected, this, [this](double micrometres) {
        calibration_.setMicrometresPerTurn(micrometres);
        calibration_.save(settings_, session_.source().source().name);
        applyCalibration();
    });
}

// Who has a fused image that is saved may not want to be asked about its slices.
bool MainWindow::hasUnsaved() const
{
    return result_->hasUnsavedResult() ||
           (result_->hasUnsavedSlices() &&
            (result_->view().result().isNull() || settings_.value(ASK_FOR_SLICES, true).toBool()));
}

void MainWindow::afterUnsaved(const std::function<void()>& act)
{
    if (!hasUnsaved())
        return act();
    const bool hasResult = !result_->view().result().isNull();
    const QString text = !result_->hasUnsavedResult() ? tr("The slices have not been saved. Do you want to save them?")
                         : result_->hasUnsavedSlices()
                             ? tr("Neither the fused image nor its slices have been saved. Do "
                                  "you want to save the fused image?")
                             : tr("The fused image has not been saved. Do you want to save it?");
    auto* box = new QMessageBox(QMessageBox::Question, tr("Not saved"), text,
                                QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel, this);
    box->setObjectName("unsaved");
    box->setAttribute(Qt::WA_DeleteOnClose);
    if (hasResult && !result_->hasUnsavedResult())
        box->setCheckBox(new QCheckBox(tr("Do not ask again when only slices are not saved")));
    connect(box, &QMessageBox::finished, this, [this, act, box](int answer) {
        if (box->checkBox() != nullptr && box->checkBox()->isChecked() && answer != QMessageBox::Cancel)
            findChild<QAction*>("askForSlices")->setChecked(false);
        if (answer == QMessageBox::Discard) {
            result_->forgetImages();
            act();
        } else if (answer == QMessageBox::Save) {
            afterSaving_ = act;
            result_->save();
        }
    });
    box->open();
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
    afterUnsaved([this] {
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

bool MainWindow::eventFilter(QObject* watched, QEvent* event)
{
    const bool isKey = event->type() == QEvent::KeyPress || event->type() == QEvent::KeyRelease;
    if (event->type() == QEvent::WindowDeactivate && watched == this)
        session_.letGo();
    if (!isKey || QApplication::activeWindow() != this)
        return false;
    const QWidget* const focused = QApplication::focusWidget();
    if (watched != (focused != nullptr ? focused : this) || usesArrows(focused))
        return false;
    const auto* const key = static_cast<QKeyEvent*>(event);
    if (key->modifiers() & ~Qt::KeypadModifier)
        return false;
    return moveByKey(key->key(), event->type() == QEvent::KeyPress, key->isAutoRepeat());
}

bool MainWindow::moveByKey(int key, bool pressed, bool repeated)
{
    static const std::map<int, int> FINE_STEPS{
        {Qt::Key_Up, 1}, {Qt::Key_Down, -1}, {Qt::Key_PageUp, COARSE}, {Qt::Key_PageDown, -COARSE}};
    const auto found = FINE_STEPS.find(key);
    if (found == FINE_STEPS.end())
        return false;
    const int steps = found->second * focusPanel_->fineSteps();
    if (pressed && repeated)
        session_.moveHeld(steps);
    else if (pressed)
        session_.move(steps);
    else if (!repeated)
        session_.letGo();
    return true;
}

} // namespace tesmor::apps
