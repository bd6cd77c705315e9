// SPDX-License-Identifier: GPL-2.0-or-later
// How the window is put together; main_window_menus.cpp has its menus, main_window_events.cpp what happens in it.
#include "viewer/window/main_window.h"

#include "host/focus_units.h"
#include "viewer/widgets/live_view.h"
#include "viewer/widgets/result_view.h"
#include "viewer/widgets/slice_strip.h"
#include "viewer/widgets/style.h"
#include "viewer/window/camera_panel.h"
#include "viewer/window/focus_panel.h"
#include "viewer/window/message_bar.h"
#include "viewer/window/result_pane.h"
#include "viewer/window/stack_panel.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>
#include <QSplitter>
#include <QStatusBar>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>

namespace tesmor::apps {

namespace {

constexpr QSize USUAL_SIZE(1360, 900);
constexpr double SHARE_OF_SCREEN = 0.94; // at most; the rest is for a frame
constexpr int PROGRESS_WIDTH = 180;
constexpr int STATUS_MARGIN = 6; // pixels
constexpr int SECOND_MS = 1000;
constexpr std::uint16_t USUAL_MAGNIFICATION = 10;

std::uint16_t magnificationIn(const QSettings& settings)
{
    const auto saved = static_cast<std::uint16_t>(settings.value("magnification").toUInt());
    return std::ranges::find(FOCUS_OBJECTIVES, saved, &FocusObjective::magnification) == FOCUS_OBJECTIVES.end()
               ? USUAL_MAGNIFICATION
               : saved;
}

} // namespace

MainWindow::MainWindow(const SourceFinder& finder, const QString& wanted, QSettings& settings)
    : settings_(settings), finder_(finder), wanted_(wanted), session_(magnificationIn(settings)), live_(new LiveView),
      result_(new ResultPane(settings)), splitter_(new QSplitter), strip_(new SliceStrip), messages_(new MessageBar),
      focusPanel_(new FocusPanel(session_)), stackPanel_(new StackPanel(session_)),
      cameraPanel_(new CameraPanel(session_.source())), activity_(new QLabel), frameInfo_(new QLabel),
      progress_(new QProgressBar), calibrator_(*this, session_, settings), guard_(*result_, settings),
      keys_(*this, session_, *focusPanel_)
{
    setWindowIcon(applicationIcon());
    build();
    buildStatusBar();
    buildMenus();
    connectParts();
    if (!restoreGeometry(settings_.value("window/geometry").toByteArray()))
        resize(USUAL_SIZE.boundedTo(screen()->availableSize() * SHARE_OF_SCREEN));
    stackPanel_->setNumbers(settings_.value("stack/slices", StackPanel::USUAL_SLICES).toInt(),
                            settings_.value("stack/spacing", StackPanel::USUAL_SPACING).toInt());
    live_->setFocus();
    showState();
    findSources();
}

MainWindow::~MainWindow()
{
    disconnect(&session_, nullptr, nullptr, nullptr); // what it tells while it ends is for nobody
    disconnect(&session_.source(), nullptr, nullptr, nullptr);
}

void MainWindow::build()
{
    live_->setObjectName("live");
    live_->setAccessibleName(tr("Live image"));
    result_->setVisible(false);
    result_->controls()->setVisible(false);
    strip_->setObjectName("strip");
    strip_->setAccessibleName(tr("Slices"));
    strip_->setVisible(false);
    splitter_->addWidget(live_);
    splitter_->addWidget(result_);
    splitter_->setChildrenCollapsible(false);

    auto* middle = new QVBoxLayout;
    middle->addWidget(messages_);
    middle->addWidget(splitter_, 1);
    middle->addWidget(result_->controls());
    middle->addWidget(strip_);
    auto* centre = new QWidget;
    auto* layout = new QHBoxLayout(centre);
    layout->addLayout(middle, 1);
    layout->addWidget(makeSidePanel());
    setCentralWidget(centre);
}

QWidget* MainWindow::makeSidePanel()
{
    auto* panel = new QWidget;
    auto* layout = new QVBoxLayout(panel);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(focusPanel_, 1);
    layout->addWidget(stackPanel_);
    layout->addWidget(cameraPanel_);
    // A click leaves the keys to the live image, and so does a button that is disabled by its own click.
    for (QPushButton* button : panel->findChildren<QPushButton*>()) {
        button->setFocusPolicy(Qt::TabFocus);
        connect(button, &QPushButton::clicked, this, [this, button] {
            if (!button->hasFocus())
                live_->setFocus();
        });
    }
    auto* area = new QScrollArea;
    area->setWidget(panel);
    area->setWidgetResizable(true);
    area->setFrameShape(QFrame::NoFrame);
    area->setFocusPolicy(Qt::NoFocus); // it follows what has the keys
    area->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    area->setFixedWidth(panel->sizeHint().width() + area->verticalScrollBar()->sizeHint().width());
    return area;
}

void MainWindow::buildStatusBar()
{
    activity_->setObjectName("activity");
    frameInfo_->setObjectName("frameInfo");
    progress_->setObjectName("progress");
    progress_->setMaximumWidth(PROGRESS_WIDTH);
    progress_->setAccessibleName(tr("Progress"));
    progress_->setVisible(false);
    statusBar()->setContentsMargins(STATUS_MARGIN, 0, STATUS_MARGIN, 0);
    statusBar()->addWidget(activity_, 1);
    statusBar()->addPermanentWidget(progress_);
    statusBar()->addPermanentWidget(frameInfo_);
}

void MainWindow::connectParts()
{
    connect(&session_, &Session::changed, this, &MainWindow::showState);
    connect(&session_, &Session::frameArrived, this, &MainWindow::showFrame);
    connect(&session_, &Session::curveGrew, this, &MainWindow::showActivity);
    connect(&session_, &Session::stackBegun, this, &MainWindow::beginStack);
    connect(&session_, &Session::sliceArrived, strip_, &SliceStrip::addSlice);
    connect(&session_, &Session::sliceArrived, this, &MainWindow::showActivity);
    connect(&session_, &Session::fusionProgressed, this, &MainWindow::showActivity);
    connect(&session_, &Session::ended, this, &MainWindow::endCommand);
    connect(&session_, &Session::told, messages_, &MessageBar::post);
    connect(&session_, &Session::withdrawn, messages_, &MessageBar::withdraw);
    connect(&session_, &Session::isShutDown, this, [this] {
        mayClose_ = true;
        close();
    });
    connect(&session_.source(), &LiveSource::sourcesFound, this, &MainWindow::listSources);
    connect(&session_.source(), &LiveSource::stateChanged, &calibrator_, &Calibrator::load);
    connect(&calibrator_, &Calibrator::changed, this, &MainWindow::showCalibration);
    connect(&guard_, &UnsavedGuard::asksForSlicesChanged, this, &MainWindow::showState);

    connect(messages_, &MessageBar::actionTriggered, this, &MainWindow::obey);
    connect(stackPanel_, &StackPanel::captureAsked, this,
            [this] { guard_.before([this] { session_.whenIdle([this] { capture(); }); }); });
    connect(stackPanel_, &StackPanel::fuseAsked, this, [this] { session_.whenIdle([this] { session_.fuse(); }); });
    connect(stackPanel_, &StackPanel::allAsked, this, [this](int slices, int spacing) {
        guard_.before([=, this] { session_.focusCaptureAndFuse(slices, spacing); });
    });
    connect(strip_, &SliceStrip::sliceChosen, this, [this](int index) {
        showResult(true);
        result_->view().setComparison(result_->view().result().isNull() ? ResultView::Comparison::SLICE
                                                                        : ResultView::Comparison::BESIDE);
        result_->view().setSlice(index);
    });
    connect(&result_->view(), &ResultView::sliceChanged, strip_, &SliceStrip::setCurrentSlice);
    connect(result_, &ResultPane::closed, this, [this] { showResult(false); });
    connect(result_, &ResultPane::told, messages_, &MessageBar::post);
    connect(result_, &ResultPane::changed, this, &MainWindow::showState);
    connect(result_, &ResultPane::saved, this, [this](const QString& file) {
        messages_->withdraw("save");
        say(tr("Saved as %1.").arg(file));
    });
    connect(live_, &LiveView::zoomChanged, &result_->view(), &ResultView::setZoom);
    connect(&result_->view(), &ResultView::zoomChanged, live_, &LiveView::setZoom);
    connect(live_, &LiveView::rulerMeasured, this, [this](double length) {
        if (std::exchange(isCalibrating_, false))
            calibrator_.askForPixelSize(length);
    });
    connect(live_, &LiveView::rulerActiveChanged, this, [this] { isCalibrating_ = false; });
    connect(&second_, &QTimer::timeout, this, &MainWindow::showFrameRate);
    second_.start(SECOND_MS);
}

} // namespace tesmor::apps
