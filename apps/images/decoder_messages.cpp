// SPDX-License-Identifier: GPL-2.0-or-later
#include "images/decoder_messages.h"

#include <QImageReader>

#include <fcntl.h>
#include <unistd.h>

namespace tesmor::apps {

namespace {

thread_local QString* record = nullptr;

void remember(QtMsgType, const QMessageLogContext&, const QString& message)
{
    if (record != nullptr)
        *record += message + '\n';
}

} // namespace

DecoderSession::DecoderSession()
    : standardError_(fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 0)), handler_(qInstallMessageHandler(remember))
{
    QImageReader::setAllocationLimit(0); // the caller checks against the available memory
    const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
    if (nowhere < 0)
        return;
    if (standardError_ >= 0)
        dup2(nowhere, STDERR_FILENO);
    close(nowhere);
}

DecoderSession::~DecoderSession()
{
    qInstallMessageHandler(handler_);
    if (standardError_ < 0)
        return;
    dup2(standardError_, STDERR_FILENO);
    close(standardError_);
}

DecoderMessages::DecoderMessages()
{
    record = &text_;
}

DecoderMessages::~DecoderMessages()
{
    record = nullptr;
}

bool DecoderMessages::tellOfCutFile() const
{
    return text_.contains("premature end", Qt::CaseInsensitive);
}

} // namespace tesmor::apps
