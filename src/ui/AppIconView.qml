// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

import QtQuick
import Stowly

// An app's icon in a 24-point rounded square (the provider rounds the corners), or the
// dashed app symbol, inset 4, when the app has none.
Item {
    id: appIcon

    property string source   // "image://appicon/…", or empty when the app has no icon

    objectName: "appIcon"
    width: 24
    height: 24

    Image {
        objectName: "appIconImage"
        anchors.fill: parent
        visible: appIcon.source.length > 0
        source: appIcon.source
        sourceSize.width: 24
        sourceSize.height: 24
        smooth: true
    }

    SymbolImage {
        objectName: "appIconPlaceholder"
        x: 4
        y: 4
        size: 16
        visible: appIcon.source.length === 0
        name: "app.dashed"
        tint: Theme.secondary
    }
}
