// SPDX-License-Identifier: GPL-2.0-or-later
// The window without a mouse, and without eyes.
#include "viewer/viewer_test.h"

#include <QAccessible>
#include <QAction>
#include <QApplication>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QRadioButton>
#include <QSpinBox>

#include <algorithm>
#include <map>
#include <vector>

namespace tesmor::test {

namespace {

std::string describe(const QWidget* widget)
{
    return QString("%1 %2 in %3 %4")
        .arg(widget->metaObject()->className(), widget->objectName(), widget->parentWidget()->metaObject()->className(),
             widget->parentWidget()->objectName())
        .toStdString();
}

QRect placeOf(const QWidget* widget)
{
    return {widget->mapTo(widget->window(), QPoint(0, 0)), widget->size()};
}

// From left to right within a row, and down; a column at the right may begin at the top.
bool isInReadingOrder(const QRect& before, const QRect& after)
{
    const bool isRight = after.left() > before.right();
    const bool isBelow = after.top() > before.bottom();
    const bool isSameRow = after.top() <= before.bottom() && before.top() <= after.bottom();
    return isBelow || (isSameRow && after.left() > before.left()) || isRight;
}

TEST_F(ViewerTest, TabReachesEverythingInReadingOrderAndAllHasAName)
{
    openWindow();
    widget<QSpinBox>("slices").setValue(3);
    press(Qt::Key_A); // so that there is a result
    ASSERT_TRUE(awaitIdle());
    ASSERT_TRUE(widget("saveResult").isVisible());

    std::vector<QWidget*> visited;
    widget("live").setFocus();
    do {
        visited.push_back(QApplication::focusWidget());
        press(Qt::Key_Tab);
        ASSERT_LT(visited.size(), 100);
    } while (QApplication::focusWidget() != visited.front());

    int wanted = 0;
    for (QWidget* each : window_->findChildren<QWidget*>()) {
        if (!each->isVisible() || !each->isEnabled() || !(each->focusPolicy() & Qt::TabFocus) ||
            each->focusProxy() != nullptr)
            continue;
        const auto* const radio = qobject_cast<QRadioButton*>(each);
        if (radio == nullptr || radio->isChecked()) { // the arrow keys reach the others
            ++wanted;
            EXPECT_NE(std::ranges::find(visited, each), visited.end()) << describe(each) << " is not reached";
        }
        const auto* const told = QAccessible::queryAccessibleInterface(each);
        ASSERT_NE(told, nullptr) << describe(each);
        EXPECT_FALSE(told->text(QAccessible::Name).isEmpty()) << describe(each) << " has no name";
    }
    EXPECT_GT(wanted, 20);
    for (std::size_t i = 1; i < visited.size(); ++i)
        EXPECT_TRUE(isInReadingOrder(placeOf(visited[i - 1]), placeOf(visited[i])))
            << describe(visited[i - 1]) << " before " << describe(visited[i]);
}

// Each menu's mnemonics are its own; those of the menu bar and of the window's parts share one alphabet.
TEST_F(ViewerTest, NoTwoThingsAnswerToOneKey)
{
    openWindow();
    using Keys = std::map<QKeySequence, QString>;
    const auto take = [](Keys& keys, const QKeySequence& key, const QString& text) {
        if (!key.isEmpty()) {
            const auto [place, isNew] = keys.emplace(key, text);
            EXPECT_TRUE(isNew) << key.toString().toStdString() << ": " << place->second.toStdString() << " and "
                               << text.toStdString();
        }
    };
    Keys shortcuts;
    Keys mnemonics;
    for (QAction* menu : window_->menuBar()->actions()) {
        take(mnemonics, QKeySequence::mnemonic(menu->text()), menu->text());
        Keys inMenu;
        for (QAction* action : menu->menu()->actions()) {
            take(inMenu, QKeySequence::mnemonic(action->text()), action->text());
            take(shortcuts, action->shortcut(), action->text());
        }
    }
    for (QAbstractButton* button : window_->findChildren<QAbstractButton*>())
        take(mnemonics, QKeySequence::mnemonic(button->text()), button->text());
    for (QLabel* label : window_->findChildren<QLabel*>()) {
        if (label->buddy() != nullptr)
            take(mnemonics, QKeySequence::mnemonic(label->text()), label->text());
    }
    EXPECT_GT(mnemonics.size(), 10);
    EXPECT_GT(shortcuts.size(), 15);
}

} // namespace

} // namespace tesmor::test
