// Keeps what the image decoders print of a damaged file away from our own one-line errors, and remembers it.
#pragma once

#include <QString>

namespace tesmor::apps {

// As long as it lives the standard error of the whole process goes nowhere, and Qt's messages come here. One at a time.
class DecoderMessages {
public:
    DecoderMessages();
    ~DecoderMessages();
    DecoderMessages(const DecoderMessages&) = delete;
    DecoderMessages& operator=(const DecoderMessages&) = delete;

    // The JPEG decoder fills up a file that was cut short, and only says so.
    bool tellOfCutFile() const;

private:
    int standardError_; // a duplicate of it; -1 when it could not be replaced
    QtMessageHandler handler_;
};

} // namespace tesmor::apps
