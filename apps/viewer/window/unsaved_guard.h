// SPDX-License-Identifier: GPL-2.0-or-later
// Keeps what is not saved from being lost without a question.
#pragma once

#include <QObject>

#include <functional>

class QSettings;

namespace tesmor::apps {

class ResultPane;

class UnsavedGuard : public QObject {
    Q_OBJECT

public:
    // Both outlive it.
    UnsavedGuard(ResultPane& result, QSettings& settings);

    // Something that the user wants to be asked about. Who has a fused image that is saved may not want to be asked
    // about its slices.
    bool hasUnsaved() const;

    bool asksForSlices() const;
    void setAsksForSlices(bool asks);

    // Does it, unless the user wants to keep what is unsaved; saves that first if he likes.
    void before(const std::function<void()>& act);

signals:
    void asksForSlicesChanged(bool asks);

private:
    void answer(int button, const std::function<void()>& act);

    ResultPane& result_;
    QSettings& settings_;
    std::function<void()> afterSaving_;
};

} // namespace tesmor::apps
