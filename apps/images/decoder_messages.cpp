#include "images/decoder_messages.h"

#include <fcntl.h>
#include <unistd.h>

namespace tesmor::apps {

namespace {

QString messages;

void remember(QtMsgType, const QMessageLogContext&, const QString& message)
{
    messages += message + '\n';
}

} // namespace

DecoderMessages::DecoderMessages()
    : standardError_(fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 0)), handler_(qInstallMessageHandler(remember))
{
    messages.clear();
    const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
    if (nowhere < 0)
        return;
    if (standardError_ >= 0)
        dup2(nowhere, STDERR_FILENO);
    close(nowhere);
}

DecoderMessages::~DecoderMessages()
{
    qInstallMessageHandler(handler_);
    if (standardError_ < 0)
        return;
    dup2(standardError_, STDERR_FILENO);
    close(standardError_);
}

bool DecoderMessages::tellOfCutFile() const
{
    return messages.contains("premature end", Qt::CaseInsensitive);
}

} // namespace tesmor::apps
