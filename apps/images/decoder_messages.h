// SPDX-License-Identifier: GPL-2.0-or-later
// What image decoders print about a damaged file: kept out of our own one-line errors, and recorded.
#pragma once

#include <QString>

namespace tesmor::apps {

// Encloses the use of decoders. The standard error of the whole process is discarded meanwhile, Qt's messages go to the
// DecoderMessages of the thread that they come from, and decoders may take as much memory as there is. One at a time.
class DecoderSession {
public:
    DecoderSession();
    ~DecoderSession();
    DecoderSession(const DecoderSession&) = delete;
    DecoderSession& operator=(const DecoderSession&) = delete;

private:
    int standardError_; // a duplicate of it; -1 if it could not be replaced
    QtMessageHandler handler_;
};

// Records the messages of one file, decoded on this thread. Within a DecoderSession, one at a time on each thread.
class DecoderMessages {
public:
    DecoderMessages();
    ~DecoderMessages();
    DecoderMessages(const DecoderMessages&) = delete;
    DecoderMessages& operator=(const DecoderMessages&) = delete;

    // The JPEG decoder pads a truncated file and merely prints a message.
    bool tellOfCutFile() const;

private:
    QString text_;
};

} // namespace tesmor::apps
