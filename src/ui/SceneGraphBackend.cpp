// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#include "SceneGraphBackend.h"

#include <QQuickWindow>
#include <QtGlobal>

namespace stowly {

void chooseSceneGraphBackend()
{
#if defined(Q_OS_MACOS)
    // Metal is part of every Mac's session already; nothing to save by leaving it.
    return;
#else
    for (const char* variable : {"QT_QUICK_BACKEND", "QMLSCENE_DEVICE", "QSG_RHI_BACKEND"}) {
        if (!qEnvironmentVariableIsEmpty(variable))
            return;
    }
    // A GPU scene graph maps the whole OpenGL driver (Mesa: tens of MiB, much of it
    // private) for a panel of a few hundred points that is closed nearly all day.
    QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
#endif
}

} // namespace stowly
