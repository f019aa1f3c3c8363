// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

import QtQuick
import Stowly
import QtQuick.Controls

// A tile that runs one bulk action: its symbol on a tinted badge above its title.
Button {
    id: tile

    // The action: {rawValue, title, systemImage}. ("action" is taken by Button itself.)
    required property var bulkAction
    property bool disabled: false
    signal tap()

    objectName: "actionTile_" + bulkAction.rawValue
    text: bulkAction.title
    enabled: !disabled
    opacity: disabled ? 0.45 : 1.0
    topPadding: 10
    bottomPadding: 10
    leftPadding: 6
    rightPadding: 6
    hoverEnabled: false
    // A disabled tile is skipped by Tab and ignores Space and Enter like it ignores clicks.
    focusPolicy: disabled ? Qt.NoFocus : Qt.StrongFocus
    activeFocusOnTab: !disabled
    onClicked: if (!tile.disabled) tile.tap()
    Keys.onReturnPressed: if (!tile.disabled) tile.tap()
    Keys.onEnterPressed: if (!tile.disabled) tile.tap()

    Accessible.name: text
    Accessible.focusable: !disabled
    Accessible.onPressAction: if (!tile.disabled) tile.tap()

    background: SmoothRectangle {
        objectName: "tileBackground"
        radius: 12
        color: Theme.controlBackground
        border.width: tile.activeFocus ? 2 : 0
        border.color: Theme.accent
    }

    contentItem: Column {
        spacing: 8

        SmoothRectangle {
            objectName: "tileSymbolBadge"
            anchors.horizontalCenter: parent.horizontalCenter
            width: 40
            height: 40
            radius: 10
            color: Qt.rgba(Theme.accent.r, Theme.accent.g, Theme.accent.b, 0.12)

            SymbolImage {
                objectName: "tileSymbol"
                anchors.centerIn: parent
                name: tile.bulkAction.systemImage
                tint: Theme.accent
                size: 21
            }
        }

        Text {
            objectName: "tileTitle"
            width: parent.width
            text: tile.text
            textFormat: Text.PlainText
            color: Theme.primary
            font.family: Theme.fontFamily
            font.pixelSize: Theme.captionSize
            horizontalAlignment: Text.AlignHCenter
            wrapMode: Text.Wrap
            maximumLineCount: 2
            elide: Text.ElideRight
            Accessible.ignored: true
        }
    }
}
