// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

pragma ComponentBehavior: Bound

import QtQuick
import Stowly
import QtQuick.Controls

// A pop-up menu button drawn like PanelButton: the plate, the accent ring while it holds
// the keyboard focus, up and down chevrons at its trailing end; its list is a plate of the
// same colours, the current entry in semibold and the highlighted one on the accent colour.
// Space and Enter open it; in the open list the arrows move and Enter chooses (on the
// closed box the arrows step through the entries, as the style's own box does).
ComboBox {
    id: box

    focusPolicy: Qt.StrongFocus
    hoverEnabled: true
    leftPadding: 12
    rightPadding: 12 + 14 + 8   // the chevrons and 8 before them
    font.family: Theme.fontFamily
    font.pixelSize: Theme.subheadlineSize
    // Enter opens the closed list too. The box itself chooses the highlighted entry when
    // Enter is released over an open list, so a closed one opens on the release as well,
    // or the same key press would open and at once close it.
    property bool openOnRelease: false
    Keys.onPressed: event => {
        if ((event.key === Qt.Key_Return || event.key === Qt.Key_Enter) && !popup.visible) {
            openOnRelease = true
            event.accepted = true
        } else {
            event.accepted = false
        }
    }
    Keys.onReleased: event => {
        if ((event.key === Qt.Key_Return || event.key === Qt.Key_Enter) && openOnRelease) {
            openOnRelease = false
            popup.open()
            event.accepted = true
        } else {
            event.accepted = false
        }
    }

    Accessible.onPressAction: if (enabled) box.popup.open()

    background: SmoothRectangle {
        objectName: "comboBoxBackground"
        implicitWidth: 120
        implicitHeight: 26
        radius: 7
        color: box.down || box.popup.visible ? Qt.darker(Theme.control, 1.08)
             : box.hovered ? Qt.darker(Theme.control, 1.03) : Theme.controlBackground
        border.width: box.activeFocus ? 2 : 1
        border.color: box.activeFocus ? Theme.accent : Theme.separator
    }

    contentItem: Text {
        objectName: "comboBoxText"
        text: box.displayText
        textFormat: Text.PlainText
        color: Theme.primary
        font: box.font
        verticalAlignment: Text.AlignVCenter
        elide: Text.ElideRight
        Accessible.ignored: true
    }

    indicator: SymbolImage {
        objectName: "comboBoxIndicator"
        x: box.width - box.rightPadding + 8
        y: (box.height - height) / 2
        name: "chevron.up.chevron.down"
        tint: Theme.secondary
        size: 14
    }

    delegate: ItemDelegate {
        id: entry
        required property int index
        required property string modelData

        objectName: box.objectName + "Item"
        width: ListView.view ? ListView.view.width : implicitWidth
        text: modelData
        highlighted: box.highlightedIndex === index
        hoverEnabled: box.hoverEnabled
        leftPadding: 10
        rightPadding: 10
        topPadding: 5
        bottomPadding: 5
        Accessible.name: text
        Accessible.onPressAction: if (enabled) clicked()

        background: SmoothRectangle {
            radius: 5
            color: entry.highlighted ? Theme.accentFill : "transparent"
        }
        contentItem: Text {
            text: entry.text
            textFormat: Text.PlainText
            color: entry.highlighted ? Theme.white : Theme.primary
            font.family: Theme.fontFamily
            font.pixelSize: Theme.subheadlineSize
            font.weight: box.currentIndex === entry.index ? Font.DemiBold : Font.Normal
            verticalAlignment: Text.AlignVCenter
            Accessible.ignored: true
        }
    }

    popup: Popup {
        objectName: "comboBoxPopup"
        y: box.height + 4
        width: box.width
        implicitHeight: contentItem.implicitHeight + topPadding + bottomPadding
        padding: 4

        contentItem: ListView {
            clip: true
            implicitHeight: contentHeight
            model: box.delegateModel
            currentIndex: box.highlightedIndex
            boundsBehavior: Flickable.StopAtBounds
        }

        background: SmoothRectangle {
            objectName: "comboBoxPopupBackground"
            radius: 8
            color: Theme.controlBackground
            border.width: 1
            border.color: Theme.separator
        }
    }
}
