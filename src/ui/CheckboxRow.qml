// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

import QtQuick
import Stowly
import QtQuick.Controls

// A clickable row with a check box, a title and a wrapping subtitle. It shows `isOn` and
// asks its owner to change it through `toggleRequested`; a row that is not enabled
// ignores clicks and is dimmed.
Button {
    id: row

    property string title
    property string subtitle
    property bool isOn: false
    property bool isEnabled: true
    signal toggleRequested(bool value)

    text: title
    enabled: isEnabled
    opacity: isEnabled ? 1.0 : 0.72
    padding: 16
    hoverEnabled: false
    // The button is disabled as well, but the action checks again on purpose.
    onClicked: if (row.isEnabled) row.toggleRequested(!row.isOn)
    focusPolicy: Qt.StrongFocus
    Keys.onReturnPressed: if (enabled) clicked()
    Keys.onEnterPressed: if (enabled) clicked()

    Accessible.role: Accessible.CheckBox
    Accessible.name: title
    Accessible.description: subtitle
    Accessible.checkable: true
    Accessible.checked: isOn
    Accessible.onPressAction: if (enabled) clicked()
    Accessible.onToggleAction: if (enabled) clicked()

    background: SmoothRectangle {
        radius: 16
        color: Theme.controlBackground

        // The keyboard focus ring, just outside the plate.
        SmoothRectangle {
            objectName: "focusRing"
            anchors.fill: parent
            anchors.margins: -3
            radius: 16 + 3
            color: "transparent"
            visible: row.activeFocus
            border.width: 2
            border.color: Theme.accent
        }
    }

    contentItem: Row {
        spacing: 14

        CheckboxIndicator {
            isSelected: row.isOn
        }

        Column {
            width: row.availableWidth - 24 - 14
            spacing: 4

            Text {
                objectName: "checkboxRowTitle"
                width: parent.width
                text: row.title
                color: row.isEnabled ? Theme.primary : Theme.secondary
                font.family: Theme.fontFamily
                font.pixelSize: Theme.headlineSize
                font.weight: Font.DemiBold
                wrapMode: Text.Wrap
                Accessible.ignored: true
            }
            Text {
                objectName: "checkboxRowSubtitle"
                width: parent.width
                text: row.subtitle
                color: Theme.secondary
                font.family: Theme.fontFamily
                font.pixelSize: Theme.subheadlineSize
                wrapMode: Text.Wrap
                Accessible.ignored: true
            }
        }
    }
}
