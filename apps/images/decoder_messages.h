// Keeps what image decoders print about a damaged file out of our own one-line errors, and records it.
#pragma once

#include <QString>

namespace tesmor::apps {

// During its lifetime, the standard error of the whole process is discarded and Qt's messages are recorded. One at a time.
class DecoderMessages {
public:
    DecoderMessages();
    ~DecoderMessages();
    DecoderMessages(const DecoderMessages&) = delete;
    DecoderMessages& operator=(const DecoderMessages&) = delete;

    // The JPEG decoder pads a truncated file and merely prints a message.
    bool tellOfCutFile() const;

private:
    int standardError_; // a duplicate of it; -1 if it could not be replaced
    QtMessageHandler handler_;
};

} // namespace tesmor::apps
