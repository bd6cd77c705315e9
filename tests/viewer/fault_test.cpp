// SPDX-License-Identifier: GPL-2.0-or-later
#include "viewer/viewer_test.h"

#include "host/drive_units.h"
#include "protocol/drive_link.h"
#include "protocol/drive_request.h"
#include "protocol/drive_socket.h"
#include "viewer/widgets/live_view.h"
#include "viewer/widgets/message_bar.h"

#include <QFileDialog>
#include <QPushButton>
#include <QSpinBox>

namespace tesmor::test {

namespace {

// Another program that has opened the drive.
class DriveHolder {
public:
    explicit DriveHolder(unsigned unit) : socket_(makeDriveSocket(0))
    {
        const DriveAddress address(unit);
        EXPECT_EQ(connect(socket_, address.get(), address.length()), 0);
        const auto open = makeControlPacket(IOCTL_DRIVE_REQUEST, makeDriveRequest(DRIVE_REQ_OPEN, 0, 0));
        EXPECT_EQ(send(socket_, open.bytes.data(), open.length, 0), static_cast<ssize_t>(open.length));
        DriveReply reply{};
        EXPECT_EQ(recv(socket_, reply.data(), reply.size(), 0), static_cast<ssize_t>(reply.size()));
    }

    ~DriveHolder()
    {
        close(socket_);
    }

    DriveHolder(const DriveHolder&) = delete;
    DriveHolder& operator=(const DriveHolder&) = delete;

private:
    const int socket_;
};

TEST_F(ViewerTest, ALostCameraIsToldAndComesBackWithoutARestart)
{
    openWindow();
    *unplugged_ = true;
    ASSERT_TRUE(await([&] { return told().contains("unplugged"); }));
    EXPECT_FALSE(widget("autofocus").isEnabled());
    EXPECT_TRUE(widget<apps::LiveView>("live").image().isNull());

    *unplugged_ = false;
    press(Qt::Key_R, Qt::ControlModifier);
    ASSERT_TRUE(await([&] { return widget("autofocus").isEnabled(); }));
    EXPECT_EQ(told(), QString());
    click("autofocus");
    ASSERT_TRUE(awaitIdle());
    EXPECT_LT(distanceFromFocus(), microscope().depthOfField() / 2);
}

TEST_F(ViewerTest, EachFaultOfTheDriveIsToldAndTheNextSearchWorks)
{
    struct Case {
        const char* name;
        microscope::Faults faults;
        const char* words;
    };
    const Case cases[] = {{"refuses", {.refuseMoves = 5}, "does not respond"},
                          {"vanishes before a move", {.vanishAtRequest = true}, "No focus motor was found"},
                          {"vanishes in a move", {.vanishInMove = true}, "No focus motor was found"}};
    openWindow();
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        microscope().setFaults(c.faults);
        click("autofocus");
        ASSERT_TRUE(await([&] { return told().contains(c.words); })) << told().toStdString();
        ASSERT_TRUE(awaitIdle());
        EXPECT_FALSE(widget<apps::LiveView>("live").image().isNull()) << "everything else goes on";

        if (microscope().driveHasVanished())
            press(Qt::Key_R, Qt::ControlModifier);
        ASSERT_TRUE(await([&] {
            return window_->session().canFocus() && window_->session().source().microscope() &&
                   !microscope().driveHasVanished();
        }));
        click("autofocus");
        ASSERT_TRUE(awaitIdle());
        EXPECT_EQ(told(), QString());
        EXPECT_LT(distanceFromFocus(), microscope().depthOfField() / 2);
    }
}

TEST_F(ViewerTest, ADriveThatAnotherProgramHoldsIsTold)
{
    openWindow();
    const DriveHolder holder(settingsOfMicroscope_.unit);
    click("autofocus");
    ASSERT_TRUE(await([&] { return told().contains("Another program is using the focus motor"); }))
        << told().toStdString();
}

TEST_F(ViewerTest, AViewerLetsGoOfTheDriveAfterAMove)
{
    openWindow();
    press(Qt::Key_Up);
    ASSERT_TRUE(await([&] {
        const auto units = apps::findDriveUnits();
        return !window_->session().isBusy() && units.size() == 1 && units.front().state == apps::DriveState::answers;
    }));
}

TEST_F(ViewerTest, ACameraThatSendsNothingIsTold)
{
    openWindow();
    *stalled_ = true;
    click("autofocus");
    ASSERT_TRUE(await([&] { return told().contains("not sending images"); })) << told().toStdString();
    ASSERT_TRUE(awaitIdle());
    *stalled_ = false;
    ASSERT_TRUE(await([&] { return told().isEmpty(); }));
}

TEST_F(ViewerTest, ClosesInTheMiddleOfAFusion)
{
    settingsOfMicroscope_.width = 1024;
    settingsOfMicroscope_.height = 768;
    openWindow();
    widget<QSpinBox>("slices").setValue(20);
    click("capture");
    ASSERT_TRUE(awaitIdle());
    click("fuse");
    ASSERT_TRUE(window_->session().isBusy());
    closeWindow(); // waits for the window's end
}

TEST_F(ViewerTest, AFileThatCannotBeWrittenIsToldAndNothingIsLost)
{
    openWindow();
    widget<QSpinBox>("slices").setValue(3);
    press(Qt::Key_A);
    ASSERT_TRUE(awaitIdle());
    for (const char* button : {"saveResult", "saveSlices"}) {
        click(button);
        auto* dialog = window_->findChild<QFileDialog*>();
        ASSERT_NE(dialog, nullptr);
        emit dialog->fileSelected(folder_.filePath("nowhere/result.tif"));
        dialog->close();
        ASSERT_TRUE(await([&] { return told().contains("nowhere"); })) << button;
        EXPECT_TRUE(window_->isWindowModified());
        ASSERT_TRUE(await([&] { return window_->findChild<QFileDialog*>() == nullptr; }));
        window_->findChild<apps::MessageBar*>()->withdraw("save");
    }
}

} // namespace

} // namespace tesmor::test
