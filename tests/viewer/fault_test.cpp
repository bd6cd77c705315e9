// SPDX-License-Identifier: GPL-2.0-or-later
#include "viewer/viewer_test.h"

#include "host/drive_units.h"
#include "protocol/drive_link.h"
#include "protocol/drive_request.h"
#include "protocol/drive_socket.h"
#include "viewer/widgets/live_view.h"
#include "viewer/window/message_bar.h"

#include <QFileDialog>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QSpinBox>

#include <csignal>
#include <sys/resource.h>
#include <utility>

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
    const Case cases[] = {{"refuses moves", {.refuseMoves = 5}, "does not respond"},
                          {"refuses all", {.refuseRequests = 10}, "does not respond"},
                          {"does not acknowledge", {.withholdAcknowledgements = 1}, "does not respond"},
                          {"hangs", {.hangRequests = 1}, "does not respond"},
                          {"hangs for good", {.hangRequests = 1000}, "does not answer"},
                          {"talks rubbish", {.rubbishReplies = 1}, ""},
                          {"takes its time", {.acknowledgementDelay = std::chrono::milliseconds(50)}, ""},
                          {"vanishes before a move", {.vanishAtRequest = true}, "No focus motor was found"},
                          {"vanishes before its reply", {.vanishBeforeReply = true}, "No focus motor was found"},
                          {"vanishes in a move", {.vanishInMove = true}, "No focus motor was found"}};
    openWindow();
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        microscope().setFaults(c.faults);
        click("autofocus");
        ASSERT_TRUE(awaitIdle());
        ASSERT_TRUE(await([&] { return told().contains(c.words); })) << told().toStdString();
        EXPECT_EQ(widget<QLabel>("activity").text().contains("has failed"), *c.words != 0);
        microscope().setFaults({});
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

TEST_F(ViewerTest, ADriveThatAnotherProgramHoldsIsToldUntilItIsFree)
{
    openWindow();
    {
        const DriveHolder holder(settingsOfMicroscope_.unit);
        click("autofocus");
        ASSERT_TRUE(await([&] { return told().contains("Another program is using the focus motor. Close it"); }))
            << told().toStdString();
    }
    ASSERT_TRUE(await([&] { return told().isEmpty(); }));
    press(Qt::Key_Up);
    ASSERT_TRUE(awaitIdle());
    EXPECT_EQ(told(), QString());
    EXPECT_EQ(widget<QLabel>("activity").text(), QString());
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
    widget<QSpinBox>("slices").setValue(8);
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
    QFile old(folder_.filePath("old.tif"));
    ASSERT_TRUE(old.open(QFile::WriteOnly) && old.write("old") == 3);
    old.close();
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit limit{};
    getrlimit(RLIMIT_FSIZE, &limit);
    for (const auto& [button, name] : {std::pair("saveResult", "nowhere/new.tif"),
                                       {"saveSlices", "nowhere/new.tif"},
                                       {"saveResult", "old.tif"},
                                       {"saveSlices", "old.tif"}}) {
        const rlimit full{QString("old.tif") == name ? 1000 : limit.rlim_cur,
                          limit.rlim_max}; // bytes; as on a full disk
        setrlimit(RLIMIT_FSIZE, &full);
        click(button);
        auto* dialog = window_->findChild<QFileDialog*>();
        ASSERT_NE(dialog, nullptr);
        emit dialog->fileSelected(folder_.filePath(name));
        dialog->close();
        ASSERT_TRUE(await([&] { return told().contains(name); })) << button << ": " << told().toStdString();
        setrlimit(RLIMIT_FSIZE, &limit);
        EXPECT_TRUE(window_->isWindowModified());
        ASSERT_TRUE(await([&] { return window_->findChild<QFileDialog*>() == nullptr; }));
        window_->findChild<apps::MessageBar*>()->withdraw("save");
    }
    EXPECT_EQ(QDir(folder_.path()).entryList({"*tif*"}, QDir::Files | QDir::Hidden), QStringList("old.tif"))
        << "and nothing half written";
    ASSERT_TRUE(old.open(QFile::ReadOnly));
    EXPECT_EQ(old.readAll(), "old");
    window_->close();
    EXPECT_NE(window_->findChild<QMessageBox*>("unsaved"), nullptr);
}

} // namespace

} // namespace tesmor::test
