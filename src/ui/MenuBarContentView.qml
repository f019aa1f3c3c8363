// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

pragma ComponentBehavior: Bound

import QtQuick
import Stowly
import QtQuick.Controls

// The panel under the tray icon: title, last result, access warning, the enabled bulk
// actions, the open apps, and Settings / Refresh / Quit, stacked 12 apart.
Rectangle {
    id: root

    // Set by the program that makes the view.
    required property PanelViewModel panel
    required property RunningAppsListModel openApps

    objectName: "menuBarContentView"
    width: 340
    implicitHeight: stack.implicitHeight + 2 * 14
    height: implicitHeight
    color: Theme.windowBackground
    border.width: 1
    border.color: Theme.separator

    Accessible.role: Accessible.Pane
    Accessible.name: Texts.productName

    // Keys that no control took: Escape closes the panel (an open row menu takes it first).
    focus: true
    Keys.onEscapePressed: root.panel.dismiss()

    // Each time the panel comes up, the keyboard starts on the default action's tile, or
    // on the first tile that can act when that one is disabled or not offered.
    readonly property bool windowActive: Window.active
    onWindowActiveChanged: if (windowActive) focusDefaultTile()
    Component.onCompleted: if (windowActive) focusDefaultTile()

    function focusDefaultTile() {
        const preferred = root.panel.defaultActionRawValue()
        let fallback = null
        for (let i = 0; i < tiles.count; ++i) {
            const tile = tiles.itemAt(i)
            if (!tile || tile.disabled)
                continue
            if (tile.bulkAction.rawValue === preferred) {
                tile.forceActiveFocus(Qt.TabFocusReason)
                return
            }
            if (!fallback)
                fallback = tile
        }
        if (fallback)
            fallback.forceActiveFocus(Qt.TabFocusReason)
        else
            root.forceActiveFocus()
    }

    Shortcut {
        sequence: "Ctrl+Q"
        context: Qt.WindowShortcut
        onActivated: root.panel.quit()
    }

    Column {
        id: stack
        objectName: "panelStack"
        x: 14
        y: 14
        width: root.width - 2 * 14
        spacing: 12

        Text {
            objectName: "titleText"
            text: Texts.productName
            color: Theme.primary
            font.family: Theme.fontFamily
            font.pixelSize: Theme.headlineSize
            font.weight: Font.DemiBold
            Accessible.role: Accessible.StaticText
            Accessible.name: text
        }

        Text {
            objectName: "resultText"
            width: parent.width
            text: root.panel.resultMessage
            textFormat: Text.PlainText
            color: Theme.secondary
            font.family: Theme.fontFamily
            font.pixelSize: Theme.subheadlineSize
            wrapMode: Text.Wrap
            // A status bar is what AT-SPI calls a polite live region (ARIA's "status"): a
            // screen reader reads a new result when it has finished speaking. The name
            // changes, and is announced, only when the text does, never on a quiet tick.
            Accessible.role: Accessible.StatusBar
            Accessible.name: text
        }

        Row {
            objectName: "accessWarning"
            visible: root.panel.showsAccessWarning
            width: parent.width
            spacing: Theme.labelSpacing

            Accessible.role: Accessible.StaticText
            Accessible.name: warningText.text

            SymbolImage {
                id: warningSymbol
                anchors.verticalCenter: parent.verticalCenter
                name: "exclamationmark.triangle.fill"
                tint: Theme.orange
                size: 13
            }
            Text {
                id: warningText
                objectName: "accessWarningText"
                width: parent.width - warningSymbol.width - parent.spacing
                text: Texts.accessWarning
                color: Theme.orange
                font.family: Theme.fontFamily
                font.pixelSize: Theme.captionSize
                wrapMode: Text.Wrap
                Accessible.ignored: true
            }
        }

        Grid {
            id: actionGrid

            readonly property int columnCount: root.panel.columnCount
            readonly property real cellWidth:
                columnCount > 0 ? (width - (columnCount - 1) * columnSpacing) / columnCount : 0

            objectName: "actionGrid"
            width: parent.width
            columns: Math.max(columnCount, 1)
            columnSpacing: 10
            rowSpacing: 10
            // Tiles of one row that differ in height sit on the row's centre line.
            verticalItemAlignment: Grid.AlignVCenter

            Repeater {
                id: tiles
                model: root.panel.actions

                MenuActionButton {
                    required property var modelData
                    bulkAction: modelData
                    width: actionGrid.cellWidth
                    disabled: root.panel.disabledActions[modelData.rawValue] === true
                    onTap: root.panel.performAction(modelData.rawValue)
                }
            }
        }

        Rectangle {
            width: parent.width
            height: 1
            color: Theme.separator
        }

        Column {
            objectName: "openAppsSection"
            width: parent.width
            spacing: 6

            Text {
                objectName: "openAppsHeading"
                text: root.panel.openAppsHeading
                color: Theme.primary
                font.family: Theme.fontFamily
                font.pixelSize: Theme.subheadlineSize
                font.weight: Font.DemiBold
                Accessible.role: Accessible.StaticText
                Accessible.name: text
            }

            Text {
                objectName: "noAppsText"
                visible: !root.panel.hasOpenApps
                text: Texts.noOpenApps
                color: Theme.secondary
                font.family: Theme.fontFamily
                font.pixelSize: Theme.footnoteSize
                Accessible.role: Accessible.StaticText
                Accessible.name: text
            }

            ListView {
                id: appList
                objectName: "appList"
                visible: root.panel.hasOpenApps
                width: parent.width
                height: 220
                clip: true
                spacing: 8
                boundsBehavior: Flickable.StopAtBounds
                model: root.openApps
                // The bar lies over the rows instead of taking a lane from them; it is off
                // while nothing scrolls, and thin, so that it hides little of a menu button.
                ScrollBar.vertical: ScrollBar {
                    id: appScrollBar
                    objectName: "appListScrollBar"
                    policy: appList.contentHeight > appList.height ? ScrollBar.AsNeeded : ScrollBar.AlwaysOff
                    padding: 1
                    contentItem: Rectangle {
                        implicitWidth: 5
                        radius: width / 2
                        color: Theme.secondary
                        opacity: appScrollBar.active ? 0.8 : 0.35
                    }
                    background: Item {}
                }
                // Tab walks into the rows' menu buttons, so the list itself takes no focus.
                activeFocusOnTab: false
                keyNavigationEnabled: false
                // No current row: a list view hands the focus to its current row whenever
                // the rows move, which on a tick that reorders them took it away from the
                // menu button the user had tabbed to (and Enter then opened nothing).
                currentIndex: -1
                highlightFollowsCurrentItem: false

                Accessible.role: Accessible.List
                Accessible.name: root.panel.openAppsHeading

                delegate: AppRowView {
                    id: appRow
                    width: appList.width
                    onOpenRequested: root.openApps.openApp(appRow.index)
                    onCloseRequested: root.openApps.terminateApp(appRow.index)
                    onForceQuitRequested: root.openApps.forceTerminateApp(appRow.index)
                    onKeyboardFocusEntered: appList.positionViewAtIndex(appRow.index, ListView.Contain)
                }
            }
        }

        Rectangle {
            width: parent.width
            height: 1
            color: Theme.separator
        }

        PanelButton {
            objectName: "settingsButton"
            text: Texts.settings
            onClicked: root.panel.openSettings()
        }

        PanelButton {
            objectName: "refreshButton"
            text: Texts.refresh
            onClicked: root.panel.refresh()
        }

        PanelButton {
            objectName: "quitButton"
            text: Texts.quit
            onClicked: root.panel.quit()
        }
    }
}
