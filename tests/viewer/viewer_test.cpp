// SPDX-License-Identifier: GPL-2.0-or-later
#include "viewer/viewer_test.h"

#include "cameras/virtual/virtual_device.h"
#include "viewer/widgets/live_view.h"
#include "viewer/window/message_bar.h"

#include <QApplication>
#include <QMessageBox>
#include <QPushButton>
#include <QSignalSpy>

#include <thread>
#include <utility>

namespace tesmor::test {

namespace {

constexpr double FRAMES_PER_SECOND = 200;

class PluggedDevice : public cameras::VirtualDevice {
public:
    PluggedDevice(std::shared_ptr<microscope::VirtualMicroscope> microscope,
                  std::shared_ptr<std::atomic<bool>> unplugged, std::shared_ptr<std::atomic<bool>> stalled)
        : VirtualDevice(std::move(microscope), FRAMES_PER_SECOND), unplugged_(std::move(unplugged)),
          stalled_(std::move(stalled))
    {
        if (*unplugged_)
            throw cameras::CameraError("no such camera; plug it in");
    }

    bool next(std::chrono::milliseconds limit, const cameras::FrameSink& sink) override
    {
        if (*unplugged_)
            throw cameras::CameraError("the camera has been unplugged; plug it in again");
        if (!*stalled_)
            return VirtualDevice::next(limit, sink);
        std::this_thread::sleep_for(limit);
        return false;
    }

private:
    const std::shared_ptr<std::atomic<bool>> unplugged_;
    const std::shared_ptr<std::atomic<bool>> stalled_;
};

} // namespace

void ViewerTest::SetUp()
{
    settingsOfMicroscope_.width = 256;
    settingsOfMicroscope_.height = 192;
    settingsOfMicroscope_.framesPerSecond = 0;
    settingsOfMicroscope_.timeScale = 20;
    settingsOfMicroscope_.startOffset = -900;
    settings_.emplace(folder_.filePath("settings.ini"), QSettings::IniFormat);
}

void ViewerTest::TearDown()
{
    if (window_)
        closeWindow();
}

apps::Source ViewerTest::source()
{
    return {"virtual", "Test microscope", isSimulated_,
            [settings = settingsOfMicroscope_, unplugged = unplugged_,
             stalled = stalled_](std::uint16_t magnification) mutable {
                settings.magnification = magnification;
                const auto microscope = std::make_shared<microscope::VirtualMicroscope>(settings);
                return apps::Instrument{[microscope, unplugged, stalled] {
                                            return std::make_unique<PluggedDevice>(microscope, unplugged, stalled);
                                        },
                                        microscope};
            }};
}

void ViewerTest::openWindow()
{
    window_.emplace([this] { return std::vector{source()}; }, QString(), *settings_);
    window_->show();
    window_->activateWindow();
    ASSERT_TRUE(await([this] { return window_->session().frameSize().width() == settingsOfMicroscope_.width; }))
        << told().toStdString();
    ASSERT_TRUE(await([this] { return window_->session().source().microscope() != nullptr; }));
}

void ViewerTest::closeWindow()
{
    QSignalSpy closed(&*window_, &apps::MainWindow::hasClosed);
    window_->close();
    for (auto* box : window_->findChildren<QMessageBox*>("unsaved")) {
        if (box->isVisible())
            box->button(QMessageBox::Discard)->click();
    }
    EXPECT_TRUE(await([&] { return !closed.isEmpty(); }));
    window_.reset();
}

void ViewerTest::click(const char* button)
{
    auto& found = widget<QPushButton>(button);
    EXPECT_TRUE(found.isEnabled()) << button;
    QTest::mouseClick(&found, Qt::LeftButton);
}

void ViewerTest::press(Qt::Key key, Qt::KeyboardModifiers modifiers)
{
    ASSERT_NE(QApplication::focusWidget(), nullptr);
    QTest::keyClick(QApplication::focusWidget(), key, modifiers);
}

bool ViewerTest::awaitIdle()
{
    return await([this] { return !window_->session().isBusy(); });
}

QString ViewerTest::told()
{
    const auto message = window_->findChild<apps::MessageBar*>()->current();
    return message ? message->text + ' ' + message->remedy : QString();
}

double ViewerTest::distanceFromFocus()
{
    return std::abs(static_cast<double>(microscope().position()) - microscope().bestFocus());
}

} // namespace tesmor::test
