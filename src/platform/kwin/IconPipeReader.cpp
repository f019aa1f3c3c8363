// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#include "IconPipeReader.h"

#include <QSocketNotifier>

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace stowly::kwin {

IconPipeReader::IconPipeReader(int limit, std::function<void(const QByteArray&)> done)
    : m_limit(limit), m_done(std::move(done))
{
    int fds[2] = {-1, -1};
    if (pipe2(fds, O_CLOEXEC | O_NONBLOCK) != 0)
        return;
    m_readFd = fds[0];
    m_writeFd = fds[1];
    m_notifier = std::make_unique<QSocketNotifier>(m_readFd, QSocketNotifier::Read);
    QObject::connect(m_notifier.get(), &QSocketNotifier::activated, m_notifier.get(), [this] { readAvailable(); });
}

IconPipeReader::~IconPipeReader()
{
    m_notifier.reset();
    closeWriteEnd();
    if (m_readFd >= 0)
        ::close(m_readFd);
}

void IconPipeReader::closeWriteEnd()
{
    if (m_writeFd >= 0)
        ::close(m_writeFd);
    m_writeFd = -1;
}

void IconPipeReader::readAvailable()
{
    char chunk[16384];
    while (true) {
        const ssize_t n = ::read(m_readFd, chunk, sizeof chunk);
        if (n > 0) {
            if (m_bytes.size() + n > m_limit)
                return finish(false);
            m_bytes.append(chunk, qsizetype(n));
            continue;
        }
        if (n == 0)
            return finish(true); // the writer is done
        if (errno == EINTR)
            continue;
        if (errno != EAGAIN && errno != EWOULDBLOCK)
            finish(false);
        return; // more later
    }
}

void IconPipeReader::finish(bool ok)
{
    // Not deleted here (we are inside its signal): disabled, it stays quiet until we go.
    m_notifier->setEnabled(false);
    ::close(m_readFd);
    m_readFd = -1;
    const QByteArray bytes = ok ? std::exchange(m_bytes, QByteArray()) : QByteArray();
    m_bytes.clear();
    if (m_done)
        m_done(bytes);
}

} // namespace stowly::kwin
