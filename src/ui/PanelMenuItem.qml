// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

import QtQuick
import Stowly
import QtQuick.Controls

// An entry of the panel's menus in the scheme's colours: primary text, and white on the
// accent colour while highlighted by the pointer or the arrow keys.
MenuItem {
    id: entry

    leftPadding: 10
    rightPadding: 10
    topPadding: 5
    bottomPadding: 5
    Accessible.name: text
    Accessible.onPressAction: if (enabled) clicked()

    background: SmoothRectangle {
        implicitWidth: 140
        implicitHeight: 24
        radius: 5
        color: entry.highlighted ? Theme.accentFill : "transparent"
    }
    contentItem: Text {
        text: entry.text
        textFormat: Text.PlainText
        color: entry.highlighted ? Theme.white : Theme.primary
        font.family: Theme.fontFamily
        font.pixelSize: Theme.subheadlineSize
        verticalAlignment: Text.AlignVCenter
        Accessible.ignored: true
    }
}
