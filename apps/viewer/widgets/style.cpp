// SPDX-License-Identifier: GPL-2.0-or-later
#include "viewer/widgets/style.h"

#include <QApplication>
#include <QFile>
#include <QIconEngine>
#include <QPainter>
#include <QStyle>
#include <QStyleFactory>
#include <QSvgRenderer>

// The resources of a static library; outside any namespace.
static void initIcons()
{
    Q_INIT_RESOURCE(icons);
}

namespace tesmor::apps {

namespace {

Appearance chosen = Appearance::SYSTEM;

QPalette darkPalette()
{
    const QColor window(45, 46, 50);
    const QColor base(32, 33, 36);
    const QColor text(228, 229, 232);
    const QColor weak(140, 142, 148);
    const QColor highlight(70, 140, 230);
    QPalette palette(text, QColor(60, 62, 67), QColor(90, 92, 98), QColor(24, 25, 27), QColor(75, 77, 82), text,
                     Qt::white, base, window);
    palette.setColor(QPalette::AlternateBase, QColor(52, 53, 58));
    palette.setColor(QPalette::ToolTipBase, QColor(60, 62, 67));
    palette.setColor(QPalette::ToolTipText, text);
    palette.setColor(QPalette::Highlight, highlight);
    palette.setColor(QPalette::HighlightedText, Qt::white);
    palette.setColor(QPalette::Link, QColor(110, 170, 250));
    palette.setColor(QPalette::PlaceholderText, weak);
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, weak.darker(125));
    palette.setColor(QPalette::Disabled, QPalette::Highlight, QColor(85, 87, 92));
    return palette;
}

// Draws an SVG with the palette's text colour for each "currentColor".
class ThemedIconEngine : public QIconEngine {
public:
    explicit ThemedIconEngine(const QString& name)
    {
        initIcons();
        QFile file(":/icons/" + name + ".svg");
        if (file.open(QIODevice::ReadOnly))
            source_ = file.readAll();
    }

    void paint(QPainter* painter, const QRect& place, QIcon::Mode mode, QIcon::State) override
    {
        const auto group = mode == QIcon::Disabled ? QPalette::Disabled : QPalette::Active;
        const auto role = mode == QIcon::Selected ? QPalette::HighlightedText : QPalette::WindowText;
        QByteArray svg = source_;
        svg.replace("currentColor", QGuiApplication::palette().color(group, role).name().toLatin1());
        QSvgRenderer renderer(svg);
        if (mode == QIcon::Disabled)
            painter->setOpacity(0.6);
        renderer.render(painter, place.toRectF());
        painter->setOpacity(1);
    }

    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override
    {
        QPixmap picture(size);
        picture.fill(Qt::transparent);
        QPainter painter(&picture);
        paint(&painter, QRect(QPoint(0, 0), size), mode, state);
        return picture;
    }

    QIconEngine* clone() const override
    {
        return new ThemedIconEngine(*this);
    }

    bool isNull() override
    {
        return source_.isEmpty();
    }

private:
    QByteArray source_;
};

} // namespace

void setAppearance(Appearance appearance)
{
    static const QString systemStyle = QApplication::style()->name();
    chosen = appearance;
    if (appearance == Appearance::SYSTEM) {
        QApplication::setStyle(systemStyle);
        QApplication::setPalette(QPalette());
        return;
    }
    QStyle* style = QStyleFactory::create("Fusion"); // which keeps to a palette
    QApplication::setStyle(style);
    QApplication::setPalette(appearance == Appearance::DARK ? darkPalette() : style->standardPalette());
}

Appearance appearance()
{
    return chosen;
}

bool isDark(const QPalette& palette)
{
    return palette.color(QPalette::Window).lightnessF() < palette.color(QPalette::WindowText).lightnessF();
}

QIcon themedIcon(const QString& name)
{
    return QIcon(new ThemedIconEngine(name));
}

QIcon applicationIcon()
{
    return themedIcon("tesmor-viewer");
}

} // namespace tesmor::apps
