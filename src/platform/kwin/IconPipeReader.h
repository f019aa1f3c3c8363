// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#pragma once

#include <QByteArray>

#include <functional>
#include <memory>

class QSocketNotifier;

namespace stowly::kwin {

// Reads what the compositor writes into a pipe (a window icon for get_icon) on Qt's event
// loop, never blocking it: the read end is non-blocking and read only when it is ready. When
// the writer closes its end, `done` gets every byte; it gets nothing after a read error or
// past `limit` bytes, which stops the reading. Destroying the reader closes the pipe.
class IconPipeReader {
public:
    IconPipeReader(int limit, std::function<void(const QByteArray&)> done);
    ~IconPipeReader();
    IconPipeReader(const IconPipeReader&) = delete;
    IconPipeReader& operator=(const IconPipeReader&) = delete;

    // The end to hand to the writer (owned by this reader until closeWriteEnd()); -1 when the
    // pipe could not be made.
    int writeEnd() const { return m_writeFd; }
    // Once the request carrying the write end is on its way (libwayland sent its own copy).
    void closeWriteEnd();

private:
    void readAvailable();
    void finish(bool ok);

    int m_readFd = -1;
    int m_writeFd = -1;
    int m_limit;
    QByteArray m_bytes;
    std::function<void(const QByteArray&)> m_done;
    std::unique_ptr<QSocketNotifier> m_notifier;
};

} // namespace stowly::kwin
