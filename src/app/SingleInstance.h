#pragma once

#include <QObject>
#include <QString>

class QLocalServer;

namespace stowly {

// One Stowly per user session. The first start listens on a local socket named after the
// user's runtime directory and the display; a later start connects, asks the first one to
// open its panel and exits. A socket left behind by a crashed instance answers no connection
// and is replaced.
class SingleInstance : public QObject {
    Q_OBJECT

public:
    explicit SingleInstance(QObject* parent = nullptr);
    ~SingleInstance() override;

    // True when another instance answered and was asked to open its panel.
    bool activateRunningInstance();
    // Starts listening; false (with a reason) when the socket cannot be made.
    bool listen(QString* error = nullptr);

    // The socket path for this user and display.
    static QString socketPath();

signals:
    void activationRequested();

private:
    QLocalServer* m_server = nullptr;
};

} // namespace stowly
