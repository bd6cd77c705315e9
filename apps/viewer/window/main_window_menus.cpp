// SPDX-License-Identifier: GPL-2.0-or-later
#include "viewer/window/main_window.h"

#include "viewer/widgets/live_view.h"
#include "viewer/widgets/style.h"
#include "viewer/window/result_pane.h"

#include <QActionGroup>
#include <QCoreApplication>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QPushButton>

namespace tesmor::apps {

QAction* MainWindow::add(QMenu* menu, const QString& name, const QString& icon, const QString& text,
                         const QKeySequence& keys, const std::function<void()>& act)
{
    auto* action = menu->addAction(text);
    if (!icon.isEmpty())
        action->setIcon(themedIcon(icon));
    action->setObjectName(name);
    action->setShortcut(keys);
    connect(action, &QAction::triggered, this, act);
    return action;
}

void MainWindow::click(const QString& button)
{
    if (auto* found = findChild<QPushButton*>(button))
        found->click();
}

void MainWindow::buildMenus()
{
    buildFileMenu();
    buildSourceMenu();
    buildFocusMenu();
    buildStackMenu();
    buildViewMenu();
    auto* help = menuBar()->addMenu(tr("&Help"));
    add(help, "about", "help", tr("&About tesmor"), {}, [this] { showAbout(); });
}

void MainWindow::buildFileMenu()
{
    auto* menu = menuBar()->addMenu(tr("&File"));
    add(menu, "actionSave", "save", tr("&Save the fused image …"), QKeySequence::Save,
        [this] { result_->saveResult(); });
    add(menu, "actionSaveSlices", "save", tr("Save the s&lices …"), tr("Ctrl+Shift+S"),
        [this] { result_->saveSlices(); });
    auto* ask = add(menu, "askForSlices", {}, tr("As&k before slices are lost"), {}, [] {});
    ask->setCheckable(true);
    ask->setChecked(guard_.asksForSlices());
    connect(ask, &QAction::toggled, &guard_, &UnsavedGuard::setAsksForSlices);
    connect(&guard_, &UnsavedGuard::asksForSlicesChanged, ask, &QAction::setChecked);
    menu->addSeparator();
    add(menu, "quit", {}, tr("&Quit"), QKeySequence::Quit, [this] { close(); });
}

void MainWindow::buildSourceMenu()
{
    sourceMenu_ = menuBar()->addMenu(tr("&Source"));
    sources_ = new QActionGroup(this);
    sourceMenu_->addSeparator();
    add(sourceMenu_, "findSources", {}, tr("&Look for cameras"), tr("F5"), [this] { findSources(); });
    add(sourceMenu_, "reconnect", "reconnect", tr("&Reconnect"), tr("Ctrl+R"), [this] { session_.reconnect(); });
}

void MainWindow::buildFocusMenu()
{
    auto* menu = menuBar()->addMenu(tr("Fo&cus"));
    add(menu, "actionFocus", "focus", tr("&Autofocus"), tr("F"), [this] { click("autofocus"); });
    add(menu, "actionStop", "stop", tr("&Stop"), tr("Esc"), [this] { click("stop"); });
    menu->addSeparator();
    const auto addMove = [&](const QString& text, int key, const QString& keyText) {
        add(menu, {}, {}, text + '\t' + keyText, {}, [this, key] { keys_.press(key); });
    };
    addMove(tr("Forward, &fine"), Qt::Key_Up, tr("Up"));
    addMove(tr("Back, fi&ne"), Qt::Key_Down, tr("Down"));
    addMove(tr("Forward, &coarse"), Qt::Key_PageUp, tr("Page Up"));
    addMove(tr("Back, c&oarse"), Qt::Key_PageDown, tr("Page Down"));
}

void MainWindow::buildStackMenu()
{
    auto* menu = menuBar()->addMenu(tr("S&tack"));
    add(menu, {}, "chain", tr("Focus, capture and fuse (&all)"), tr("A"), [this] { click("all"); });
    add(menu, {}, "stack", tr("&Capture stack"), tr("K"), [this] { click("capture"); });
    add(menu, {}, "fuse", tr("F&use the slices"), tr("M"), [this] { click("fuse"); });
    menu->addSeparator();
    add(menu, {}, "set-first", tr("Set &first"), tr("["), [this] { click("setFirst"); });
    add(menu, {}, "set-last", tr("Set &last"), tr("]"), [this] { click("setLast"); });
}

void MainWindow::buildViewMenu()
{
    auto* menu = menuBar()->addMenu(tr("&View"));
    add(menu, {}, "zoom-fit", tr("&Fit to window"), tr("0"), [this] { live_->fitToView(); });
    add(menu, {}, "zoom-actual", tr("&100 %"), tr("1"), [this] { live_->showActualSize(); });
    add(menu, {}, "zoom-in", tr("Zoom &in"), tr("+"), [this] { live_->zoomIn(); });
    add(menu, {}, "zoom-out", tr("Zoom &out"), tr("-"), [this] { live_->zoomOut(); });
    menu->addSeparator();
    auto* region = add(menu, "region", "region", tr("&Measured region"), tr("R"), [] {});
    region->setCheckable(true);
    connect(region, &QAction::toggled, this, [this](bool visible) {
        live_->setRegionVisible(visible);
        settings_.setValue("view/region", visible);
    });
    region->setChecked(settings_.value("view/region").toBool());
    auto* ruler = add(menu, "ruler", "ruler", tr("&Ruler"), tr("L"), [] {});
    ruler->setCheckable(true);
    connect(ruler, &QAction::toggled, live_, &LiveView::setRulerActive);
    connect(live_, &LiveView::rulerActiveChanged, ruler, &QAction::setChecked);
    add(menu, "calibratePixels", {}, tr("Micrometres a &pixel …"), {}, [this] {
        live_->setRulerActive(true);
        isCalibrating_ = true;
        say(tr("Click on the two ends of something whose length you know."));
    });
    add(menu, "calibrateTurn", {}, tr("Micrometres a &turn …"), {}, [this] { calibrator_.askForTurn(); });
    auto* pane = add(menu, "showResult", "result", tr("R&esult"), tr("E"), [] {});
    pane->setCheckable(true);
    connect(pane, &QAction::triggered, this, &MainWindow::showResult);
    menu->addSeparator();
    auto* looks = menu->addMenu(tr("&Appearance"));
    auto* group = new QActionGroup(this);
    const auto saved = static_cast<Appearance>(settings_.value("view/appearance").toInt());
    for (const auto& [look, text] :
         {std::pair(Appearance::SYSTEM, tr("As the &system")), std::pair(Appearance::LIGHT, tr("&Light")),
          std::pair(Appearance::DARK, tr("&Dark"))}) {
        auto* action = add(looks, {}, {}, text, {}, [this, look = look] {
            setAppearance(look);
            settings_.setValue("view/appearance", static_cast<int>(look));
        });
        action->setCheckable(true);
        action->setChecked(look == saved);
        group->addAction(action);
    }
}

void MainWindow::showAbout()
{
    auto* box = new QMessageBox(QMessageBox::NoIcon, tr("About tesmor"),
                                tr("tesmor %1: a viewer for microscope cameras that focuses, captures focus stacks "
                                   "and fuses them.\n\nFree software under the GNU General Public License, version 2 "
                                   "or later.")
                                    .arg(QCoreApplication::applicationVersion()),
                                QMessageBox::Close, this);
    box->setIconPixmap(applicationIcon().pixmap(64));
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->open();
}

} // namespace tesmor::apps
