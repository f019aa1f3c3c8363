// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

import QtQuick
import Stowly
import QtQuick.Controls
import QtQuick.Layouts

// One open app: icon, name, "<status> • RAM: <memory>", a status badge and a menu.
Item {
    id: row

    // The row's record, from the open-apps list model.
    required property int index
    required property int appId
    required property string name
    required property string status
    required property string statusLine
    required property color statusColor
    required property string iconUrl
    required property string menuName

    // The row menu's entries; the panel hands them to the open-apps list.
    signal openRequested()
    signal closeRequested()
    signal forceQuitRequested()
    // The row's menu button took the keyboard focus: the list shows the row whole.
    signal keyboardFocusEntered()

    objectName: "appRow_" + index
    implicitHeight: content.implicitHeight + 4

    Accessible.role: Accessible.ListItem
    // Read as "name, status, RAM: figure"; the bullet is for the eye only.
    Accessible.name: name + ", " + statusLine.replace(" \u2022 ", ", ")

    RowLayout {
        id: content
        y: 2
        width: row.width
        spacing: 10

        AppIconView {
            source: row.iconUrl
        }

        ColumnLayout {
            spacing: 2
            Layout.fillWidth: true
            Layout.minimumWidth: 0

            Text {
                objectName: "rowName"
                text: row.name
                textFormat: Text.PlainText   // another program's name, shown as it is
                color: Theme.primary
                font.family: Theme.fontFamily
                font.pixelSize: Theme.subheadlineSize
                maximumLineCount: 1
                elide: Text.ElideRight
                Layout.fillWidth: true
                Accessible.role: Accessible.StaticText
                Accessible.name: text
            }
            Text {
                objectName: "rowStatusLine"
                text: row.statusLine
                textFormat: Text.PlainText
                color: Theme.secondary
                font.family: Theme.fontFamily
                font.pixelSize: Theme.captionSize
                // No line limit: a narrow row wraps the memory text rather than cut it.
                wrapMode: Text.Wrap
                Layout.fillWidth: true
                Accessible.role: Accessible.StaticText
                Accessible.name: text
            }
        }

        // The flexible space before the badge keeps at least 8 points.
        Item {
            Layout.preferredWidth: 8
        }

        Rectangle {
            objectName: "rowBadge"
            // Whole points, so the layout does not round the padding on one side only.
            implicitWidth: Math.ceil(badgeText.implicitWidth) + 16
            implicitHeight: Math.ceil(badgeText.implicitHeight) + 8
            radius: height / 2
            // A tint of the status colour: its own alpha scaled, since "secondary" is
            // already translucent.
            color: Qt.rgba(row.statusColor.r, row.statusColor.g, row.statusColor.b,
                           row.statusColor.a * 0.14)

            Text {
                id: badgeText
                objectName: "rowBadgeText"
                anchors.centerIn: parent
                text: row.status
                color: row.statusColor
                font.family: Theme.fontFamily
                font.pixelSize: Theme.captionSize
                font.weight: Font.Medium
                Accessible.role: Accessible.StaticText
                Accessible.name: text
            }
        }

        Button {
            id: menuButton
            objectName: "rowMenuButton"
            flat: true
            padding: 2
            focusPolicy: Qt.StrongFocus
            Layout.alignment: Qt.AlignVCenter
            text: row.menuName
            display: AbstractButton.IconOnly
            onClicked: openMenu(false)
            onActiveFocusChanged: if (activeFocus) row.keyboardFocusEntered()
            Keys.onReturnPressed: openMenu(true)
            Keys.onEnterPressed: openMenu(true)
            Keys.onPressed: (event) => {
                if (event.key === Qt.Key_Menu) {
                    openMenu(true)
                    event.accepted = true
                }
            }

            // The menu hangs from the button's trailing edge, so that it stays inside the
            // panel's margins instead of being pushed against the window's edge. Opened
            // from the keyboard, its first entry is current so the arrows start there.
            property bool menuFromKeyboard: false
            function openMenu(fromKeyboard) {
                menuFromKeyboard = fromKeyboard || menuButton.visualFocus
                rowMenu.popup(menuButton, menuButton.width - rowMenu.width, menuButton.height)
            }

            Accessible.role: Accessible.ButtonMenu
            Accessible.name: row.menuName
            Accessible.onPressAction: if (enabled) clicked()

            background: Rectangle {
                objectName: "rowMenuFocusRing"
                radius: height / 2
                color: "transparent"
                border.width: menuButton.activeFocus ? 2 : 0
                border.color: Theme.accent
            }
            contentItem: SymbolImage {
                name: "ellipsis.circle"
                tint: Theme.secondary
                size: 17
            }

            Menu {
                id: rowMenu
                objectName: "rowMenu"
                onOpened: if (menuButton.menuFromKeyboard) currentIndex = 0
                // The keyboard goes back to the button, so that Escape then closes the panel.
                onClosed: if (menuButton.menuFromKeyboard) menuButton.forceActiveFocus(Qt.OtherFocusReason)
                padding: 4
                background: SmoothRectangle {
                    objectName: "rowMenuBackground"
                    implicitWidth: 150
                    radius: 8
                    color: Theme.controlBackground
                    border.width: 1
                    border.color: Theme.separator
                }

                PanelMenuItem {
                    objectName: "rowMenuOpen"
                    text: Texts.openApp
                    onTriggered: row.openRequested()
                }
                PanelMenuItem {
                    objectName: "rowMenuCloseApp"
                    text: Texts.closeApp
                    onTriggered: row.closeRequested()
                }
                PanelMenuItem {
                    objectName: "rowMenuForceQuit"
                    text: Texts.forceQuitApp
                    onTriggered: row.forceQuitRequested()
                }
            }
        }
    }
}
