// SPDX-License-Identifier: GPL-2.0-or-later
#include "viewer/window/stack_panel.h"

#include "host/focus_units.h"
#include "host/fusion_job.h"
#include "terminal/text.h"
#include "viewer/widgets/scale_bar.h"
#include "viewer/widgets/style.h"
#include "viewer/window/why_not.h"

#include <QGridLayout>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QSpinBox>

#include <cmath>

namespace tesmor::apps {

namespace {

constexpr int NUMBER_SPACE = 12; // pixels

QPushButton* makeButton(const QString& name, const QString& icon, const QString& text)
{
    auto* button = new QPushButton(themedIcon(icon), text);
    button->setObjectName(name);
    return button;
}

} // namespace

StackPanel::StackPanel(Session& session, QWidget* parent)
    : QGroupBox(tr("Stack"), parent), session_(session), around_(new QRadioButton(tr("&Around the focus"))),
      between_(new QRadioButton(tr("Fro&m first to last"))),
      setFirst_(makeButton("setFirst", "set-first", tr("Set first"))),
      setLast_(makeButton("setLast", "set-last", tr("Set last"))), first_(new QLabel), last_(new QLabel),
      slices_(new QSpinBox), spacing_(new QSpinBox), planText_(new QLabel),
      capture_(makeButton("capture", "stack", tr("Capture stack"))), fuse_(makeButton("fuse", "fuse", tr("Fuse"))),
      all_(makeButton("all", "chain", tr("Focus, capture and fuse")))
{
    build();
    connectSession();
    showState();
}

void StackPanel::build()
{
    slices_->setObjectName("slices");
    slices_->setRange(1, MOST_FUSED_IMAGES);
    slices_->setValue(USUAL_SLICES);
    slices_->setAccessibleName(tr("Number of slices"));
    spacing_->setObjectName("spacing");
    spacing_->setRange(1, LARGEST_MOVE);
    spacing_->setValue(USUAL_SPACING);
    spacing_->setAccessibleName(tr("Spacing"));
    spacing_->setToolTip(tr("From one slice to the next, in the smallest steps that the objective needs"));
    around_->setObjectName("around");
    around_->setChecked(true);
    between_->setObjectName("between");
    planText_->setObjectName("plan");
    planText_->setWordWrap(true);
    planText_->setTextFormat(Qt::PlainText);

    auto* ends = new QGridLayout;
    ends->addWidget(around_, 0, 0);
    ends->addWidget(between_, 0, 1);
    ends->addWidget(setFirst_, 1, 0);
    ends->addWidget(setLast_, 1, 1);
    ends->addWidget(first_, 2, 0);
    ends->addWidget(last_, 2, 1);
    auto* slicesLabel = new QLabel(tr("Sl&ices:"));
    slicesLabel->setBuddy(slices_);
    auto* spacingLabel = new QLabel(tr("Spaci&ng:"));
    spacingLabel->setBuddy(spacing_);
    auto* numbers = new QHBoxLayout;
    numbers->addWidget(slicesLabel);
    numbers->addWidget(slices_, 1);
    numbers->addSpacing(NUMBER_SPACE);
    numbers->addWidget(spacingLabel);
    numbers->addWidget(spacing_, 2);
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(capture_, 1);
    buttons->addWidget(fuse_, 1);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(ends);
    layout->addLayout(numbers);
    layout->addWidget(planText_);
    layout->addLayout(buttons);
    layout->addWidget(all_);
}

void StackPanel::connectSession()
{
    connect(setFirst_, &QPushButton::clicked, &session_, &Session::setFirst);
    connect(setLast_, &QPushButton::clicked, &session_, &Session::setLast);
    connect(setFirst_, &QPushButton::clicked, between_, [this] { between_->setChecked(true); });
    connect(setLast_, &QPushButton::clicked, between_, [this] { between_->setChecked(true); });
    connect(&session_, &Session::changed, this, &StackPanel::showState);
    connect(&session_, &Session::sliceArrived, this, &StackPanel::showState);
    connect(between_, &QRadioButton::toggled, this, &StackPanel::showState);
    connect(slices_, &QSpinBox::valueChanged, this, &StackPanel::showState);
    connect(spacing_, &QSpinBox::valueChanged, this, &StackPanel::showState);
    connect(capture_, &QPushButton::clicked, this, &StackPanel::captureAsked);
    connect(fuse_, &QPushButton::clicked, this, &StackPanel::fuseAsked);
    connect(all_, &QPushButton::clicked, this, [this] { emit allAsked(slices(), spacing()); });
}

void StackPanel::setCalibration(const Calibration& calibration)
{
    calibration_ = calibration;
    showState();
}

void StackPanel::setNumbers(int slices, int spacing)
{
    slices_->setValue(slices);
    spacing_->setValue(spacing);
}

int StackPanel::slices() const
{
    return slices_->value();
}

int StackPanel::spacing() const
{
    return spacing_->value();
}

std::optional<StackPlan> StackPanel::plan() const
{
    const std::uint16_t magnification = session_.magnification();
    if (!between_->isChecked())
        return planAround(slices(), spacing(), magnification);
    if (!session_.first() || !session_.last())
        return std::nullopt;
    const std::int64_t position = session_.position();
    return planBetween(*session_.first() - position, *session_.last() - position, spacing(), magnification);
}

void StackPanel::showState()
{
    const int unit = stepsPerUnit(session_.magnification());
    spacing_->setRange(1, LARGEST_MOVE / unit);
    const auto length = calibration_.micrometres(unit);
    spacing_->setSuffix(tr(" × %1").arg(length ? apps::lengthText(*length) : tr("%n steps", nullptr, unit)));
    const bool isBetween = between_->isChecked();
    slices_->setEnabled(!isBetween);
    slices_->setToolTip(isBetween ? tr("Follows from the ends and the spacing") : QString());
    const bool isReady = session_.isFree() && session_.canFocus();
    setFirst_->setEnabled(isReady);
    setLast_->setEnabled(isReady);
    showEnd(first_, session_.first());
    showEnd(last_, session_.last());
    planText_->setText(textOfPlan());
    capture_->setEnabled(isReady && plan());
    fuse_->setEnabled(session_.isFree() && !session_.slices().isEmpty());
    all_->setEnabled(isReady);
    showTips();
}

void StackPanel::showTips()
{
    const QString reason = whyNot(session_);
    const auto setTip = [](QPushButton* button, const QString& what, const QString& why) {
        button->setToolTip(withReason(what, button->isEnabled() ? QString() : why));
    };
    setTip(setFirst_, tr("The stack begins where the focus is now ([)"), reason);
    setTip(setLast_, tr("The stack ends where the focus is now (])"), reason);
    setTip(capture_, tr("Capture the slices (K)"), reason.isEmpty() ? textOfPlan() : reason);
    setTip(fuse_, tr("Merge the slices into one image that is sharp throughout (M)"),
           session_.isFree() ? tr("Capture a stack first.") : reason);
    setTip(all_, tr("Focus, capture a stack around the focus and fuse it (A)"), reason);
}

void StackPanel::showEnd(QLabel* label, std::optional<std::int64_t> end)
{
    label->setVisible(session_.first() || session_.last());
    label->setText(end ? tr("at %1°").arg(static_cast<double>(*end) * DEGREES_PER_STEP, 0, 'f', 1) : tr("not set"));
    label->setEnabled(end.has_value());
}

QString StackPanel::textOfPlan() const
{
    const auto stack = plan();
    if (!stack && session_.first() && session_.last())
        return tr("That takes more than %1 slices: choose a larger spacing, or ends that are closer to each other.")
            .arg(MOST_FUSED_IMAGES);
    if (!stack)
        return tr("Drive to one end of the specimen and press “Set first”, then to the other and press “Set last”.");
    QString text = tr("%n slices", nullptr, stack->slices) + ", " +
                   tr("%1 deep").arg(lengthText(static_cast<double>(stack->depth()))) + ", " +
                   tr("%1 apart").arg(lengthText(static_cast<double>(std::abs(stack->stepsPerSlice())))) + "; " +
                   timeText(session_.pace().secondsFor(*stack));
    if (!session_.frameSize().isEmpty())
        text += ", " + memoryText(memoryOf(*stack, session_.frameSize()));
    return text;
}

QString StackPanel::timeText(double seconds)
{
    return seconds < 1 ? tr("less than a second")
                       : tr("about %1").arg(durationText(std::chrono::duration<double>(seconds)));
}

QString StackPanel::lengthText(double steps) const
{
    const auto length = calibration_.micrometres(steps);
    return length ? apps::lengthText(*length) : tr("%n steps", nullptr, static_cast<int>(steps));
}

} // namespace tesmor::apps
