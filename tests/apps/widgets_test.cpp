// SPDX-License-Identifier: GPL-2.0-or-later
// What a user does to the viewer's widgets, by mouse, wheel and keys, on a screen that nobody sees.
#include "terminal/errors.h"
#include "viewer/widgets/image_saver.h"
#include "viewer/widgets/live_view.h"
#include "viewer/widgets/result_view.h"
#include "viewer/widgets/scale_bar.h"
#include "viewer/window/message_bar.h"

#include <QApplication>
#include <QDir>
#include <QImageReader>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QToolButton>
#include <QWheelEvent>
#include <gtest/gtest.h>

#include <csignal>
#include <functional>
#include <memory>
#include <sys/resource.h>

namespace tesmor::apps {
namespace {

constexpr QSize FRAME(1280, 960);

QImage makeFrame(QSize size = FRAME)
{
    QImage frame(size, QImage::Format_BGR888);
    frame.fill(Qt::gray);
    return frame;
}

class WidgetsTest : public testing::Test {
protected:
    static void SetUpTestSuite()
    {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        QLocale::setDefault(QLocale::c());
        static int argumentCount = 1;
        static char name[] = "widgets";
        static char* arguments[] = {name, nullptr};
        application_ = std::make_unique<QApplication>(argumentCount, arguments);
    }

    static void TearDownTestSuite()
    {
        application_.reset();
    }

private:
    static inline std::unique_ptr<QApplication> application_;
};

void turnWheel(QWidget& widget, QPointF place, int notches)
{
    QWheelEvent event(place, widget.mapToGlobal(place), QPoint(), QPoint(0, 120 * notches), Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(&widget, &event);
}

TEST_F(WidgetsTest, ZoomingKeepsThePointUnderThePointer)
{
    const struct {
        QSize view;
        QPointF pointer;
        int notches;
    } cases[] = {{{640, 480}, {100, 50}, 3}, {{640, 480}, {639, 479}, 12}, {{900, 300}, {450, 200}, 10}};
    for (const auto& c : cases) {
        LiveView view;
        view.resize(c.view);
        view.setFrame(makeFrame());
        view.show();
        turnWheel(view, c.pointer, 8); // until it is larger than the view on every side
        const QPointF before = view.geometryOfImage().toImage(c.pointer);
        turnWheel(view, c.pointer, c.notches);
        const QPointF after = view.geometryOfImage().toImage(c.pointer);
        EXPECT_LT(QLineF(before, after).length(), 0.01) << c.pointer.x() << ", " << c.pointer.y();
        turnWheel(view, c.pointer, -40);
        EXPECT_EQ(view.geometryOfImage().imageRect().center().toPoint(), view.rect().toRectF().center().toPoint());
    }
}

TEST_F(WidgetsTest, DraggingStopsAtTheImagesEdge)
{
    LiveView view;
    view.resize(640, 480);
    view.setFrame(makeFrame());
    view.show();
    QTest::keyClick(&view, Qt::Key_1);
    EXPECT_EQ(view.geometryOfImage().scale(), 1);
    QTest::mousePress(&view, Qt::LeftButton, {}, {10, 10});
    QTest::mouseMove(&view, {110, 60});
    EXPECT_EQ(view.geometryOfImage().imageRect().topLeft(), QPointF(-220, -190));
    QTest::mouseMove(&view, {5000, 5000});
    QTest::mouseRelease(&view, Qt::LeftButton, {}, {5000, 5000});
    EXPECT_EQ(view.geometryOfImage().imageRect().topLeft(), QPointF(0, 0));
    QTest::keyClick(&view, Qt::Key_0);
    EXPECT_TRUE(view.zoom().fit);
}

TEST_F(WidgetsTest, ScaleBarHasARoundLength)
{
    const struct {
        double micrometresPerPixel;
        const char* text;
        double length; // view pixels
    } cases[] = {{0.65, "100 µm", 153.85}, {1, "100 µm", 100},  {0.0625, "10 µm", 160},
                 {0.004, "0.5 µm", 125},   {12, "1 mm", 83.33}, {2000, "200 mm", 100.0}};
    for (const auto& c : cases) {
        const ScaleBar bar = roundScaleBar(c.micrometresPerPixel, 160);
        EXPECT_EQ(bar.text.toStdString(), c.text);
        EXPECT_NEAR(bar.length, c.length, 0.01) << c.text;
    }
}

TEST_F(WidgetsTest, RulerMeasuresImagePixelsAtAnyZoom)
{
    for (const int notches : {0, 6}) {
        LiveView view;
        view.resize(640, 480);
        view.setFrame(makeFrame());
        view.show();
        turnWheel(view, {320, 240}, notches);
        view.setRulerActive(true);
        const QSignalSpy measured(&view, &LiveView::rulerMeasured);
        QTest::mouseClick(&view, Qt::LeftButton, {}, {100, 100});
        QTest::mouseClick(&view, Qt::LeftButton, {}, {400, 500});
        ASSERT_EQ(measured.size(), 1);
        EXPECT_NEAR(measured[0][0].toDouble(), 500 / view.geometryOfImage().scale(), 0.01);
        QTest::keyClick(&view, Qt::Key_Escape);
        EXPECT_FALSE(view.isRulerActive());
    }
}

TEST_F(WidgetsTest, MessageBarShowsTheWorstOfEachTopicFirst)
{
    MessageBar bar;
    bar.post({Severity::WARNING, "light", "dark", "", ""});
    bar.post({Severity::ERROR, "drive", "unplugged", "", ""});
    bar.post({Severity::INFORMATION, "save", "saved", "", ""});
    bar.post({Severity::ERROR, "drive", "refused", "", ""}); // replaces
    const QSignalSpy dismissed(&bar, &MessageBar::dismissed);
    QStringList shown;
    while (bar.current()) {
        EXPECT_TRUE(bar.isVisibleTo(nullptr));
        shown << bar.current()->text;
        bar.findChild<QToolButton*>()->click();
    }
    EXPECT_EQ(shown.join(", "), "refused, dark, saved");
    EXPECT_EQ(dismissed.size(), 3);
    EXPECT_FALSE(bar.isVisibleTo(nullptr));
    bar.post({Severity::ERROR, "camera", "gone", "", "Reconnect"});
    bar.withdraw("camera");
    EXPECT_FALSE(bar.isVisibleTo(nullptr));
}

TEST_F(WidgetsTest, ResultAndSliceShareTheirZoom)
{
    ResultView view;
    view.resize(800, 400);
    view.setImages(makeFrame(), {makeFrame(), makeFrame(), makeFrame()});
    view.setComparison(ResultView::Comparison::BESIDE);
    view.show();
    const auto views = view.findChildren<ImageView*>();
    ASSERT_EQ(views.size(), 2);
    const QSignalSpy changed(&view, &ResultView::zoomChanged);
    turnWheel(*views[1], {30, 40}, 5);
    EXPECT_EQ(changed.size(), 1);
    EXPECT_EQ(views[0]->zoom(), views[1]->zoom());
    EXPECT_FALSE(views[0]->zoom().fit);
    view.setImages({}, {makeFrame()}); // not fused
    EXPECT_EQ(view.comparison(), ResultView::Comparison::SLICE);
}

TEST_F(WidgetsTest, SavedImagesHaveTheirPixelSize)
{
    const QTemporaryDir folder;
    for (const char* name : {"result.png", "result.tif"}) {
        const QString file = folder.filePath(name);
        saveResult(file, makeFrame(), 0.65);
        const QImage read(file);
        EXPECT_EQ(read.size(), FRAME) << name;
        EXPECT_NEAR(1e6 / read.dotsPerMeterX(), 0.65, 0.0001) << name;
        EXPECT_NEAR(1e6 / read.dotsPerMeterY(), 0.65, 0.0001) << name;
    }
    const QString file = folder.filePath("slices.tif");
    saveSlices(file, {makeFrame(), makeFrame({64, 48}), makeFrame()}, 0.65);
    QImageReader pages(file);
    ASSERT_EQ(pages.imageCount(), 3);
    for (const QSize size : {FRAME, QSize(64, 48), FRAME}) {
        const QImage page = pages.read();
        EXPECT_EQ(page.size(), size);
        EXPECT_NEAR(1e6 / page.dotsPerMeterX(), 0.65, 0.0001);
        pages.jumpToNextImage();
    }
}

// What a save says when it fails.
QString failureOf(const std::function<void()>& save)
{
    try {
        save();
    } catch (const UserError& error) {
        return error.what();
    }
    return "no failure";
}

TEST_F(WidgetsTest, AFailedSaveLeavesTheOldFileAndSaysWhy)
{
    const QTemporaryDir folder;
    const QString file = folder.filePath("slices.tif");
    saveSlices(file, {makeFrame({8, 8})}, 0);
    const QString missing = folder.filePath("missing/a.png");
    EXPECT_TRUE(failureOf([&] { saveResult(missing, makeFrame(), 0); }).contains("no such folder"));
    EXPECT_TRUE(failureOf([&] { saveSlices(folder.filePath("a.png"), {makeFrame()}, 0); }).contains("only a TIFF"));

    // A disk with no room for more than a page.
    std::signal(SIGXFSZ, SIG_IGN);
    const rlimit none{1000, RLIM_INFINITY};
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &none), 0);
    const QString failure = failureOf([&] { saveSlices(file, {makeFrame(), makeFrame()}, 0); });
    const rlimit all{RLIM_INFINITY, RLIM_INFINITY};
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &all), 0);
    EXPECT_TRUE(failure.startsWith(file + ": cannot be written")) << qPrintable(failure);
    EXPECT_EQ(QImageReader(file).size(), QSize(8, 8));
    EXPECT_EQ(QDir(folder.path()).entryList(QDir::Files | QDir::Hidden).size(), 1);
}

} // namespace
} // namespace tesmor::apps
