// SPDX-License-Identifier: GPL-2.0-or-later
#include "viewer/window/unsaved_guard.h"

#include "viewer/widgets/result_view.h"
#include "viewer/window/result_pane.h"

#include <QCheckBox>
#include <QMessageBox>
#include <QSettings>

#include <utility>

namespace tesmor::apps {

namespace {

constexpr const char* ASK_FOR_SLICES = "askForSlices";

} // namespace

UnsavedGuard::UnsavedGuard(ResultPane& result, QSettings& settings) : result_(result), settings_(settings)
{
    connect(&result_, &ResultPane::notSaved, this, [this] { afterSaving_ = {}; });
    const auto goOn = [this] {
        if (const auto act = std::exchange(afterSaving_, {}))
            before(act);
    };
    connect(&result_, &ResultPane::saved, this, goOn, Qt::QueuedConnection); // once all others have heard of it
}

bool UnsavedGuard::hasUnsaved() const
{
    return result_.hasUnsavedResult() ||
           (result_.hasUnsavedSlices() && (result_.view().result().isNull() || asksForSlices()));
}

bool UnsavedGuard::asksForSlices() const
{
    return settings_.value(ASK_FOR_SLICES, true).toBool();
}

void UnsavedGuard::setAsksForSlices(bool asks)
{
    if (asks == asksForSlices())
        return;
    settings_.setValue(ASK_FOR_SLICES, asks);
    emit asksForSlicesChanged(asks);
}

void UnsavedGuard::before(const std::function<void()>& act)
{
    if (!hasUnsaved())
        return act();
    const QString text = !result_.hasUnsavedResult() ? tr("The slices have not been saved. Do you want to save them?")
                         : result_.hasUnsavedSlices()
                             ? tr("Neither the fused image nor its slices have been saved. Do "
                                  "you want to save the fused image?")
                             : tr("The fused image has not been saved. Do you want to save it?");
    auto* box = new QMessageBox(QMessageBox::Question, tr("Not saved"), text,
                                QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel, result_.window());
    box->setObjectName("unsaved");
    box->setAttribute(Qt::WA_DeleteOnClose);
    if (!result_.view().result().isNull() && !result_.hasUnsavedResult())
        box->setCheckBox(new QCheckBox(tr("Do not ask again when only slices are not saved")));
    connect(box, &QMessageBox::finished, this, [this, act, box, asked = result_.hasUnsavedResult()](int button) {
        if (box->checkBox() != nullptr && box->checkBox()->isChecked() && button != QMessageBox::Cancel)
            setAsksForSlices(false);
        if (button == QMessageBox::Discard && !asked && result_.hasUnsavedResult())
            before(act); // a fusion has ended meanwhile
        else
            answer(button, act);
    });
    box->open();
}

void UnsavedGuard::answer(int button, const std::function<void()>& act)
{
    if (button == QMessageBox::Discard) {
        result_.forgetImages();
        act();
    } else if (button == QMessageBox::Save) {
        afterSaving_ = act;
        result_.save();
    }
}

} // namespace tesmor::apps
