// SPDX-License-Identifier: GPL-2.0-or-later
// The viewer's window on a virtual microscope that is fast and can be unplugged.
#pragma once

#include "viewer/window/main_window.h"

#include <QSettings>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <optional>

namespace tesmor::test {

constexpr int LIMIT_MS = 60'000; // far above what anything here takes

class ViewerTest : public testing::Test {
protected:
    void SetUp() override;
    void TearDown() override; // closes the window as a user does who wants to keep nothing

    // Waits for the live image and its microscope.
    void openWindow();
    void closeWindow();

    apps::Source source();

    template <class WidgetType = QWidget>
    WidgetType& widget(const char* name)
    {
        auto* found = window_->findChild<WidgetType*>(name);
        EXPECT_NE(found, nullptr) << name;
        return *found;
    }

    void click(const char* button);
    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier);

    // Until the session has nothing to do.
    bool awaitIdle();

    // The bar above the image; empty when there is nothing to tell.
    QString told();

    microscope::VirtualMicroscope& microscope()
    {
        return *window_->session().source().microscope();
    }

    double distanceFromFocus(); // motor steps

    template <class Condition>
    static bool await(Condition condition)
    {
        return QTest::qWaitFor(condition, LIMIT_MS);
    }

    microscope::Settings settingsOfMicroscope_;
    bool isSimulated_ = true; // or passes for a real camera
    std::shared_ptr<std::atomic<bool>> unplugged_ = std::make_shared<std::atomic<bool>>(false);
    std::shared_ptr<std::atomic<bool>> stalled_ = std::make_shared<std::atomic<bool>>(false);
    QTemporaryDir folder_;
    std::optional<QSettings> settings_;
    std::optional<apps::MainWindow> window_;
};

} // namespace tesmor::test
