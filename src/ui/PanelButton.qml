// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

import QtQuick
import Stowly
import QtQuick.Controls

// A text button drawn like the panel's tiles: a rounded control-coloured plate, the accent
// ring while it holds the keyboard focus, and Enter as well as Space to press it.
Button {
    id: button

    focusPolicy: Qt.StrongFocus
    hoverEnabled: true
    topPadding: 5
    bottomPadding: 5
    leftPadding: 12
    rightPadding: 12
    Keys.onReturnPressed: if (enabled) clicked()
    Keys.onEnterPressed: if (enabled) clicked()

    Accessible.name: text
    Accessible.onPressAction: if (enabled) clicked()

    background: SmoothRectangle {
        objectName: "buttonBackground"
        implicitHeight: 26
        radius: 7
        color: button.down ? Qt.darker(Theme.control, 1.08)
             : button.hovered ? Qt.darker(Theme.control, 1.03) : Theme.controlBackground
        border.width: button.activeFocus ? 2 : 1
        border.color: button.activeFocus ? Theme.accent : Theme.separator
    }

    contentItem: Text {
        text: button.text
        textFormat: Text.PlainText
        color: Theme.primary
        font.family: Theme.fontFamily
        font.pixelSize: Theme.subheadlineSize
        horizontalAlignment: Text.AlignHCenter
        verticalAlignment: Text.AlignVCenter
        Accessible.ignored: true
    }
}
