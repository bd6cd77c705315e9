// SPDX-License-Identifier: GPL-2.0-or-later
#include "viewer/viewer_test.h"

#include "viewer/widgets/focus_curve_view.h"
#include "viewer/widgets/image_view.h"
#include "viewer/widgets/live_view.h"
#include "viewer/widgets/result_view.h"
#include "viewer/widgets/slice_strip.h"

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QFileDialog>
#include <QImageReader>
#include <QInputDialog>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QSpinBox>

namespace tesmor::test {

namespace {

TEST_F(ViewerTest, AutofocusShowsItsCurveAndEndsInFocus)
{
    openWindow();
    const double before = distanceFromFocus();
    auto& curve = *window_->findChild<apps::FocusCurveView*>();

    click("autofocus");
    EXPECT_FALSE(widget("autofocus").isEnabled());
    ASSERT_TRUE(await([&] { return curve.sampleCount() > 3; })); // while it runs, or at its end
    ASSERT_TRUE(awaitIdle());

    EXPECT_LT(distanceFromFocus(), microscope().depthOfField() / 2);
    EXPECT_LT(distanceFromFocus(), before);
    EXPECT_GT(curve.sampleCount(), 20);
    EXPECT_TRUE(widget<QLabel>("activity").text().startsWith("In focus"));
    EXPECT_EQ(told(), QString());
    EXPECT_TRUE(widget("autofocus").isEnabled());
}

TEST_F(ViewerTest, StopEndsASearch)
{
    settingsOfMicroscope_.timeScale = 1; // slow enough to be stopped
    openWindow();
    press(Qt::Key_F);
    ASSERT_TRUE(window_->session().isBusy());
    press(Qt::Key_Escape);
    EXPECT_TRUE(widget<QPushButton>("stop").text().startsWith("Stopping"));
    ASSERT_TRUE(awaitIdle());
    EXPECT_TRUE(widget<QLabel>("activity").text().startsWith("Cancelled"));
    EXPECT_TRUE(widget("autofocus").isEnabled());
}

TEST_F(ViewerTest, KeysMoveTheFocusAndNeverMoreThanWasAsked)
{
    openWindow();
    const std::int64_t start = microscope().position();
    const auto step = static_cast<std::int64_t>(120); // motor steps: a spacing unit of the objective
    for (int i = 0; i < 10; ++i)
        press(Qt::Key_Up);
    press(Qt::Key_PageDown);
    press(Qt::Key_PageUp);
    press(Qt::Key_Up);
    ASSERT_TRUE(await([&] { return microscope().position() == start + 11 * step; }));
    ASSERT_TRUE(awaitIdle());
    EXPECT_EQ(microscope().position(), start + 11 * step);
}

TEST_F(ViewerTest, AHeldKeyStopsTheFocusWhenItIsLetGo)
{
    openWindow();
    const std::int64_t start = microscope().position(), step = 120;
    const auto repeat = [&](QEvent::Type type = QEvent::KeyPress, bool repeated = true) {
        QKeyEvent event(type, Qt::Key_Up, {}, {}, repeated);
        QApplication::sendEvent(QApplication::focusWidget(), &event);
    };
    repeat(QEvent::KeyPress, false);
    for (int i = 0; i < 1000; ++i) // while the motor turns
        repeat();
    repeat(QEvent::KeyRelease, false);
    ASSERT_TRUE(awaitIdle());
    EXPECT_EQ(microscope().position(), start + step);

    ASSERT_TRUE(await([&] {
        repeat();
        return microscope().position() > start + 50 * step;
    }));
    const std::int64_t whenLetGo = microscope().position();
    repeat(QEvent::KeyRelease, false);
    ASSERT_TRUE(awaitIdle());
    EXPECT_LE(microscope().position(), whenLetGo + 8 * step) << "the rest of the move in hand";
}

TEST_F(ViewerTest, AStackFromFirstToLastIsFusedAndSaved)
{
    openWindow();
    const std::int64_t start = microscope().position();
    click("setFirst");
    for (int i = 0; i < 3; ++i)
        press(Qt::Key_PageUp); // 3600 motor steps
    ASSERT_TRUE(await([&] { return microscope().position() == start + 3600; }));
    click("setLast");
    widget<QSpinBox>("spacing").setValue(10);
    EXPECT_TRUE(widget<QLabel>("plan").text().startsWith("4 slices, 7.03 µm deep"))
        << widget<QLabel>("plan").text().toStdString();

    click("capture");
    ASSERT_TRUE(awaitIdle());
    EXPECT_EQ(widget<apps::SliceStrip>("strip").sliceCount(), 4);
    EXPECT_EQ(microscope().position(), start + 3600) << "the focus is back where it was";
    EXPECT_TRUE(widget<QLabel>("activity").text().startsWith("4 slices captured"));
    EXPECT_TRUE(window_->isWindowModified());

    press(Qt::Key_M);
    ASSERT_TRUE(awaitIdle());
    auto& result = *window_->findChild<apps::ResultView*>();
    EXPECT_TRUE(result.isVisible());
    EXPECT_EQ(result.slices().size(), 4);
    ASSERT_EQ(result.result().size(), QSize(256, 192));

    for (const auto& [modifier, name] : {std::pair(Qt::NoModifier, "mine.png"), {Qt::ShiftModifier, "mine.tif"}}) {
        window_->activateWindow(); // again, after the dialog
        ASSERT_TRUE(await([&] { return window_->isActiveWindow(); }));
        EXPECT_TRUE(window_->isWindowModified());
        press(Qt::Key_S, Qt::ControlModifier | modifier);
        auto* dialog = window_->findChild<QFileDialog*>();
        ASSERT_NE(dialog, nullptr);
        dialog->setDirectory(folder_.path());
        dialog->selectFile(name);
        QMetaObject::invokeMethod(dialog, "accept");
        ASSERT_TRUE(await([&] { return QFile::exists(folder_.filePath(name)); }));
        ASSERT_TRUE(await([&] { return window_->findChild<QFileDialog*>() == nullptr; }));
    }
    ASSERT_TRUE(await([&] { return !window_->isWindowModified(); }));
    QImageReader slices(folder_.filePath("mine.tif"));
    EXPECT_EQ(slices.imageCount(), 4);
    EXPECT_EQ(slices.read().convertedTo(QImage::Format_BGR888), result.slices().first());
    const QImage saved(folder_.filePath("mine.png"));
    EXPECT_EQ(saved.convertedTo(QImage::Format_BGR888), result.result());
    EXPECT_NEAR(saved.dotsPerMeterX(), 1e6 / (3.45 / 10 * 1280 / 256), 1);
}

TEST_F(ViewerTest, OneKeyFocusesCapturesAndFuses)
{
    openWindow();
    widget<QSpinBox>("slices").setValue(5);
    press(Qt::Key_A);
    ASSERT_TRUE(awaitIdle());
    auto& result = *window_->findChild<apps::ResultView*>();
    EXPECT_EQ(result.slices().size(), 5);
    EXPECT_FALSE(result.result().isNull());
    EXPECT_LT(distanceFromFocus(), microscope().depthOfField() / 2);

    press(Qt::Key_K); // would replace what is not saved
    auto* box = window_->findChild<QMessageBox*>("unsaved");
    ASSERT_NE(box, nullptr);
    box->button(QMessageBox::Cancel)->click();
    EXPECT_FALSE(window_->session().isBusy());
    EXPECT_FALSE(result.result().isNull());
}

TEST_F(ViewerTest, AnImageThatComesWhileAnOlderOneIsSavedStaysUnsaved)
{
    openWindow();
    widget<QAction>("askForSlices").setChecked(false);
    window_->session().focusCaptureAndFuse(2, 4);
    ASSERT_TRUE(awaitIdle());
    widget<QAction>("actionSave").trigger();
    auto* dialog = window_->findChild<QFileDialog*>();
    ASSERT_NE(dialog, nullptr);
    window_->session().focusCaptureAndFuse(3, 4);
    ASSERT_TRUE(awaitIdle());
    dialog->setDirectory(folder_.path());
    dialog->selectFile("old.png");
    QMetaObject::invokeMethod(dialog, "accept");
    ASSERT_TRUE(await([&] { return widget<QLabel>("activity").text().startsWith("Saved as"); }));
    EXPECT_TRUE(window_->isWindowModified());
}

TEST_F(ViewerTest, AStoppedStackKeepsItsSlices)
{
    settingsOfMicroscope_.timeScale = 1;
    openWindow();
    widget<QSpinBox>("slices").setValue(120);
    press(Qt::Key_K);
    ASSERT_TRUE(await([&] { return widget<apps::SliceStrip>("strip").sliceCount() >= 2; }));
    window_->close();
    auto* box = window_->findChild<QMessageBox*>("unsaved");
    ASSERT_NE(box, nullptr) << "lost without a question";
    box->button(QMessageBox::Cancel)->click();
    press(Qt::Key_Escape);
    ASSERT_TRUE(awaitIdle());
    const auto kept = window_->session().slices().size();
    EXPECT_GE(kept, 2);
    EXPECT_LT(kept, 120);
    EXPECT_TRUE(window_->isWindowModified());
    click("fuse");
    ASSERT_TRUE(awaitIdle());
    EXPECT_FALSE(window_->findChild<apps::ResultView*>()->result().isNull());
}

TEST_F(ViewerTest, TheRulerAsksForALengthOnlyToCalibrate)
{
    openWindow();
    auto& live = widget<apps::LiveView>("live");
    const auto measure = [&] {
        QTest::mouseClick(&live, Qt::LeftButton, {}, {100, 100});
        QTest::mouseClick(&live, Qt::LeftButton, {}, {300, 100});
        return window_->findChild<QInputDialog*>();
    };
    press(Qt::Key_L);
    EXPECT_EQ(measure(), nullptr);
    window_->findChild<QAction*>("calibratePixels")->trigger();
    QInputDialog* dialog = measure();
    ASSERT_NE(dialog, nullptr);
    dialog->setDoubleValue(50);
    dialog->accept();
    EXPECT_NEAR(live.micrometresPerPixel(), 50 / (200 / live.geometryOfImage().scale()), 1e-6);
}

TEST_F(ViewerTest, TheLiveImageHasTheSizeOfItsObjectiveAndAStackKeepsItsOwn)
{
    isSimulated_ = false;
    settings_->setValue("calibration/virtual/10", 2.0);
    settings_->setValue("calibration/virtual/40", 0.5);
    openWindow();
    auto& live = widget<apps::LiveView>("live");
    ASSERT_TRUE(await([&] { return live.micrometresPerPixel() == 2.0; }));
    widget<QSpinBox>("slices").setValue(2);
    press(Qt::Key_K);
    ASSERT_TRUE(awaitIdle());
    auto& objective = widget<QComboBox>("objective");
    objective.setCurrentIndex(objective.findData(40));
    EXPECT_EQ(live.micrometresPerPixel(), 0.5);
    EXPECT_EQ(window_->findChild<apps::ResultView*>()->findChild<apps::ImageView*>()->micrometresPerPixel(), 2.0);
}

TEST_F(ViewerTest, RemembersObjectiveAndStack)
{
    openWindow();
    widget<QComboBox>("objective").setCurrentText("40×");
    widget<QSpinBox>("slices").setValue(33);
    ASSERT_TRUE(await([&] {
        return window_->session().canFocus() && window_->session().source().microscope() &&
               microscope().settings().magnification == 40;
    }));
    closeWindow();
    openWindow();
    EXPECT_EQ(window_->session().magnification(), 40);
    EXPECT_EQ(widget<QSpinBox>("slices").value(), 33);
}

} // namespace

} // namespace tesmor::test
