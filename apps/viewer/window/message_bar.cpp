// SPDX-License-Identifier: GPL-2.0-or-later
#include "viewer/window/message_bar.h"

#include "viewer/widgets/style.h"

#include <QAccessible>
#include <QAccessibleEvent>
#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QToolButton>

namespace tesmor::apps {

namespace {

struct Look {
    const char* icon;
    QColor tint; // mixed into the window's background
};

Look lookOf(Severity severity)
{
    switch (severity) {
    case Severity::ERROR:
        return {"error", QColor(220, 50, 50)};
    case Severity::WARNING:
        return {"warning", QColor(230, 160, 0)};
    case Severity::INFORMATION:
        break;
    }
    return {"information", QColor(40, 120, 220)};
}

QColor mixed(const QColor& background, const QColor& tint, float share)
{
    const auto mix = [share](float from, float to) { return from + (to - from) * share; };
    return QColor::fromRgbF(mix(background.redF(), tint.redF()), mix(background.greenF(), tint.greenF()),
                            mix(background.blueF(), tint.blueF()));
}

} // namespace

MessageBar::MessageBar(QWidget* parent)
    : QFrame(parent), icon_(new QLabel), text_(new QLabel), more_(new QLabel), action_(new QPushButton),
      dismiss_(new QToolButton)
{
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(10, 6, 6, 6);
    layout->setSpacing(10);
    for (QWidget* part : {static_cast<QWidget*>(icon_), static_cast<QWidget*>(text_), static_cast<QWidget*>(more_),
                          static_cast<QWidget*>(action_), static_cast<QWidget*>(dismiss_)})
        layout->addWidget(part);
    layout->setStretchFactor(text_, 1);
    text_->setWordWrap(true);
    text_->setTextFormat(Qt::PlainText);
    text_->setTextInteractionFlags(Qt::TextSelectableByMouse);
    more_->setToolTip(tr("More messages follow when this one is closed"));
    dismiss_->setIcon(themedIcon("close"));
    dismiss_->setAutoRaise(true);
    dismiss_->setToolTip(tr("Close this message"));
    dismiss_->setAccessibleName(tr("Close this message"));
    dismiss_->setFocusPolicy(Qt::StrongFocus);
    setAutoFillBackground(true);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Maximum);
    connect(dismiss_, &QToolButton::clicked, this, [this] {
        const QString topic = queue_.current()->topic;
        withdraw(topic);
        emit dismissed(topic);
    });
    connect(action_, &QPushButton::clicked, this, [this] {
        const QString topic = queue_.current()->topic;
        withdraw(topic);
        emit actionTriggered(topic);
    });
    hide();
}

std::optional<Message> MessageBar::current() const
{
    return queue_.current();
}

void MessageBar::post(const Message& message)
{
    queue_.post(message);
    showCurrent();
}

void MessageBar::withdraw(const QString& topic)
{
    if (queue_.withdraw(topic))
        showCurrent();
}

void MessageBar::showCurrent()
{
    const auto message = queue_.current();
    setVisible(message.has_value());
    if (!message)
        return;
    text_->setText(message->remedy.isEmpty() ? message->text : message->text + "\n" + message->remedy);
    action_->setText(message->action);
    action_->setVisible(!message->action.isEmpty());
    more_->setText(tr("+%1").arg(queue_.count() - 1));
    more_->setVisible(queue_.count() > 1);
    setAccessibleName(text_->text());
    followPalette();
    QAccessibleEvent event(this, QAccessible::Alert);
    QAccessible::updateAccessibility(&event);
}

void MessageBar::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::ApplicationPaletteChange || event->type() == QEvent::StyleChange)
        followPalette();
    QFrame::changeEvent(event);
}

void MessageBar::followPalette()
{
    const auto message = queue_.current();
    if (!message)
        return;
    const Look look = lookOf(message->severity);
    const int side = fontMetrics().height() * 3 / 2;
    icon_->setPixmap(themedIcon(look.icon).pixmap(QSize(side, side), devicePixelRatioF()));
    QPalette colours;
    colours.setColor(QPalette::Window, mixed(colours.color(QPalette::Window), look.tint, 0.22F));
    setPalette(colours);
}

} // namespace tesmor::apps
