// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

import QtQuick
import Stowly
import QtQuick.Controls

// A large clickable card for one action: its symbol on a tile, a check box, its short
// title and card summary. Its look follows `isSelected` as given; a click only asks.
Button {
    id: card

    // The action: {rawValue, shortTitle, cardSummary, systemImage}.
    required property var option
    property bool isSelected: false
    signal select()

    readonly property color accentAt006: Qt.rgba(Theme.accent.r, Theme.accent.g, Theme.accent.b, 0.06)
    readonly property color accentAt014: Qt.rgba(Theme.accent.r, Theme.accent.g, Theme.accent.b, 0.14)
    readonly property color cardBackground: isSelected ? accentAt006 : Theme.controlBackground
    readonly property color iconBackground: isSelected ? accentAt014 : Theme.control
    readonly property color iconForeground: isSelected ? Theme.accent : Theme.secondary
    readonly property color borderColor: isSelected ? Theme.accent : Theme.separator
    readonly property int borderWidth: isSelected ? 2 : 1

    objectName: "actionCard_" + option.rawValue
    text: option.shortTitle
    padding: 18
    hoverEnabled: false
    implicitHeight: Math.max(180, implicitContentHeight + topPadding + bottomPadding)
    onClicked: card.select()
    focusPolicy: Qt.StrongFocus
    Keys.onReturnPressed: if (enabled) clicked()
    Keys.onEnterPressed: if (enabled) clicked()

    Accessible.name: text
    Accessible.description: option.cardSummary
    Accessible.checkable: true
    Accessible.checked: isSelected
    Accessible.onPressAction: if (enabled) clicked()

    background: SmoothRectangle {
        objectName: "cardBackground"
        radius: 18
        color: card.cardBackground
        border.color: card.borderColor
        border.width: card.borderWidth
        antialiasing: true

        // The keyboard focus ring, just outside the plate.
        SmoothRectangle {
            objectName: "focusRing"
            anchors.fill: parent
            anchors.margins: -3
            radius: 18 + 3
            color: "transparent"
            visible: card.activeFocus
            border.width: 2
            border.color: Theme.accent
        }
    }

    contentItem: Column {
        spacing: 14

        Item {
            width: parent.width
            height: 52

            SmoothRectangle {
                objectName: "cardIconTile"
                width: 52
                height: 52
                radius: 12
                color: card.iconBackground

                SymbolImage {
                    objectName: "cardSymbol"
                    anchors.centerIn: parent
                    name: card.option.systemImage
                    tint: card.iconForeground
                    size: 28
                }
            }

            CheckboxIndicator {
                anchors.right: parent.right
                anchors.verticalCenter: parent.verticalCenter
                isSelected: card.isSelected
            }
        }

        Text {
            objectName: "cardTitle"
            width: parent.width
            text: card.option.shortTitle
            color: Theme.primary
            font.family: Theme.fontFamily
            font.pixelSize: Theme.headlineSize
            font.weight: Font.DemiBold
            wrapMode: Text.Wrap
            Accessible.ignored: true
        }

        Text {
            objectName: "cardSummary"
            width: parent.width
            text: card.option.cardSummary
            color: Theme.secondary
            font.family: Theme.fontFamily
            font.pixelSize: Theme.subheadlineSize
            wrapMode: Text.Wrap
            horizontalAlignment: Text.AlignLeft
            Accessible.ignored: true
        }
    }
}
