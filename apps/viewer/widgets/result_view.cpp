// SPDX-License-Identifier: GPL-2.0-or-later
#include "viewer/widgets/result_view.h"

#include "viewer/widgets/style.h"
#include "viewer/widgets/wipe_view.h"

#include <QAction>
#include <QActionGroup>
#include <QHBoxLayout>
#include <QLabel>
#include <QSlider>
#include <QToolButton>

#include <algorithm>

namespace tesmor::apps {

ResultView::ResultView(QWidget* parent)
    : QWidget(parent), resultView_(new WipeView), sliceView_(new ImageView), controls_(new QWidget),
      slider_(new QSlider(Qt::Horizontal)), sliceLabel_(new QLabel), comparisons_(new QActionGroup(this))
{
    build();
    buildControls();
    connect(slider_, &QSlider::valueChanged, this, [this](int value) {
        if (comparison_ == Comparison::RESULT && !slices_.isEmpty())
            setComparison(Comparison::SLICE); // who moves the slider wants to see slices
        showImages();
        emit sliceChanged(value);
    });
    for (ImageView* view : {static_cast<ImageView*>(resultView_), sliceView_})
        connect(view, &ImageView::zoomChanged, this, [this](const Zoom& zoom) {
            setZoom(zoom);
            emit zoomChanged(zoom);
        });
    setImages({}, {});
}

void ResultView::build()
{
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    auto* views = new QHBoxLayout;
    views->setSpacing(2);
    views->addWidget(resultView_, 1);
    views->addWidget(sliceView_, 1);
    layout->addLayout(views, 1);
    resultView_->setAccessibleName(tr("Fused image"));
    sliceView_->setAccessibleName(tr("Slice"));
}

void ResultView::buildControls()
{
    auto* bar = new QHBoxLayout(controls_);
    bar->setContentsMargins(0, 0, 0, 0);
    const struct {
        Comparison comparison;
        const char* icon;
        QString text;
        QString tip;
    } buttons[] = {
        {Comparison::RESULT, "result", tr("Result"), tr("The fused image alone")},
        {Comparison::SLICE, "slice", tr("Slice"), tr("A slice alone")},
        {Comparison::BESIDE, "beside", tr("Beside"), tr("The fused image and a slice side by side")},
        {Comparison::OVER, "over", tr("Over"),
         tr("A slice over the right part of the fused image; drag the edge, or move it with the keys , and .")},
    };
    for (const auto& button : buttons) {
        auto* action = new QAction(themedIcon(button.icon), button.text, comparisons_);
        action->setCheckable(true);
        action->setToolTip(button.tip);
        action->setData(QVariant::fromValue(button.comparison));
        auto* tool = new QToolButton;
        tool->setDefaultAction(action);
        tool->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
        tool->setAutoRaise(true);
        tool->setFocusPolicy(Qt::StrongFocus);
        bar->addWidget(tool);
    }
    connect(comparisons_, &QActionGroup::triggered, this,
            [this](const QAction* action) { setComparison(action->data().value<Comparison>()); });
    slider_->setPageStep(5);
    slider_->setTickPosition(QSlider::TicksBelow);
    slider_->setTickInterval(1);
    slider_->setAccessibleName(tr("Slice"));
    slider_->setToolTip(tr("Which slice is shown"));
    bar->addWidget(slider_, 1);
    bar->addWidget(sliceLabel_);
}

void ResultView::setImages(const QImage& result, const QList<QImage>& slices)
{
    result_ = result;
    const bool hasOtherCount = slices.size() != slices_.size();
    slices_ = slices;
    slider_->setEnabled(slices.size() > 1);
    slider_->setRange(0, std::max(0, static_cast<int>(slices.size()) - 1));
    if (hasOtherCount)
        slider_->setValue(static_cast<int>(slices.size()) / 2); // as a rule among the sharpest
    for (QAction* action : comparisons_->actions()) {
        const auto comparison = action->data().value<Comparison>();
        action->setEnabled((comparison == Comparison::SLICE || !result.isNull()) &&
                           (comparison == Comparison::RESULT || !slices.isEmpty()));
    }
    setComparison(result.isNull() ? Comparison::SLICE : slices.isEmpty() ? Comparison::RESULT : comparison_);
}

const QImage& ResultView::result() const
{
    return result_;
}

const QList<QImage>& ResultView::slices() const
{
    return slices_;
}

void ResultView::setMicrometresPerPixel(double micrometres)
{
    resultView_->setMicrometresPerPixel(micrometres);
    sliceView_->setMicrometresPerPixel(micrometres);
}

void ResultView::setSimulated(bool simulated)
{
    resultView_->setSimulated(simulated);
    sliceView_->setSimulated(simulated);
}

ResultView::Comparison ResultView::comparison() const
{
    return comparison_;
}

int ResultView::slice() const
{
    return slider_->value();
}

Zoom ResultView::zoom() const
{
    return comparison_ == Comparison::SLICE ? sliceView_->zoom() : resultView_->zoom();
}

void ResultView::setComparison(Comparison comparison)
{
    comparison_ = comparison;
    for (QAction* action : comparisons_->actions())
        action->setChecked(action->data().value<Comparison>() == comparison);
    showImages();
}

void ResultView::setSlice(int index)
{
    slider_->setValue(index);
}

void ResultView::setZoom(const Zoom& zoom)
{
    resultView_->setZoom(zoom);
    sliceView_->setZoom(zoom);
}

void ResultView::fitToView()
{
    resultView_->fitToView();
}

void ResultView::showActualSize()
{
    (comparison_ == Comparison::SLICE ? sliceView_ : resultView_)->showActualSize();
}

void ResultView::zoomIn()
{
    (comparison_ == Comparison::SLICE ? sliceView_ : resultView_)->zoomIn();
}

void ResultView::zoomOut()
{
    (comparison_ == Comparison::SLICE ? sliceView_ : resultView_)->zoomOut();
}

void ResultView::showImages()
{
    const QImage slice = slices_.value(slider_->value());
    const QString sliceText =
        slices_.isEmpty() ? QString() : tr("Slice %1 of %2").arg(slider_->value() + 1).arg(slices_.size());
    const bool isOver = comparison_ == Comparison::OVER;
    resultView_->setVisible(comparison_ != Comparison::SLICE);
    sliceView_->setVisible(comparison_ == Comparison::SLICE || comparison_ == Comparison::BESIDE);
    resultView_->setImage(result_);
    resultView_->setOverlaid(isOver ? slice : QImage(), tr("Result"), sliceText);
    resultView_->setCaption(isOver ? QString() : tr("Result"));
    sliceView_->setImage(slice);
    sliceView_->setCaption(sliceText);
    sliceLabel_->setText(sliceText);
}

} // namespace tesmor::apps
