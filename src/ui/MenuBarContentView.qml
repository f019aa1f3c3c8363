import QtQuick
import QtQuick.Controls

// The panel under the tray icon: title, last result, access warning, the enabled bulk
// actions, the open apps, and Settings / Refresh / Quit, stacked 12 apart.
Rectangle {
    id: root

    objectName: "menuBarContentView"
    width: 340
    implicitHeight: stack.implicitHeight + 2 * 14
    height: implicitHeight
    color: theme.windowBackground
    border.width: 1
    border.color: theme.separator

    Accessible.role: Accessible.Pane
    Accessible.name: texts.productName

    // Keys that no control took: Escape closes the panel (an open row menu takes it first).
    focus: true
    Keys.onEscapePressed: panel.dismiss()

    // Each time the panel comes up, the keyboard starts on the default action's tile, or
    // on the first tile that can act when that one is disabled or not offered.
    readonly property bool windowActive: Window.active
    onWindowActiveChanged: if (windowActive) focusDefaultTile()
    Component.onCompleted: if (windowActive) focusDefaultTile()

    function focusDefaultTile() {
        const preferred = panel.defaultActionRawValue()
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
        onActivated: panel.quit()
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
            text: texts.productName
            color: theme.primary
            font.pixelSize: theme.headlineSize
            font.weight: Font.DemiBold
            Accessible.role: Accessible.StaticText
            Accessible.name: text
        }

        Text {
            objectName: "resultText"
            width: parent.width
            text: panel.resultMessage
            textFormat: Text.PlainText
            color: theme.secondary
            font.pixelSize: theme.subheadlineSize
            wrapMode: Text.Wrap
            Accessible.role: Accessible.StaticText
            Accessible.name: text
        }

        Row {
            objectName: "accessWarning"
            visible: panel.showsAccessWarning
            width: parent.width
            spacing: theme.labelSpacing

            Accessible.role: Accessible.StaticText
            Accessible.name: warningText.text

            SymbolImage {
                id: warningSymbol
                anchors.verticalCenter: parent.verticalCenter
                name: "exclamationmark.triangle.fill"
                tint: theme.orange
                size: 13
            }
            Text {
                id: warningText
                objectName: "accessWarningText"
                width: parent.width - warningSymbol.width - parent.spacing
                text: texts.accessWarning
                color: theme.orange
                font.pixelSize: theme.captionSize
                wrapMode: Text.Wrap
                Accessible.ignored: true
            }
        }

        Grid {
            id: actionGrid

            readonly property int columnCount: panel.columnCount
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
                model: panel.actions

                MenuActionButton {
                    required property var modelData
                    bulkAction: modelData
                    width: actionGrid.cellWidth
                    disabled: panel.disabledActions[modelData.rawValue] === true
                    onTap: panel.performAction(modelData.rawValue)
                }
            }
        }

        Rectangle {
            width: parent.width
            height: 1
            color: theme.separator
        }

        Column {
            objectName: "openAppsSection"
            width: parent.width
            spacing: 6

            Text {
                objectName: "openAppsHeading"
                text: panel.openAppsHeading
                color: theme.primary
                font.pixelSize: theme.subheadlineSize
                font.weight: Font.DemiBold
                Accessible.role: Accessible.StaticText
                Accessible.name: text
            }

            Text {
                objectName: "noAppsText"
                visible: !panel.hasOpenApps
                text: texts.noOpenApps
                color: theme.secondary
                font.pixelSize: theme.footnoteSize
                Accessible.role: Accessible.StaticText
                Accessible.name: text
            }

            ListView {
                id: appList
                objectName: "appList"
                visible: panel.hasOpenApps
                width: parent.width
                height: 220
                clip: true
                spacing: 8
                boundsBehavior: Flickable.StopAtBounds
                model: openApps
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
                        color: theme.secondary
                        opacity: appScrollBar.active ? 0.8 : 0.35
                    }
                    background: Item {}
                }
                // Tab walks into the rows' menu buttons, so the list itself takes no focus.
                activeFocusOnTab: false
                keyNavigationEnabled: false

                Accessible.role: Accessible.List
                Accessible.name: panel.openAppsHeading

                delegate: AppRowView {
                    width: appList.width
                }
            }
        }

        Rectangle {
            width: parent.width
            height: 1
            color: theme.separator
        }

        PanelButton {
            objectName: "settingsButton"
            text: texts.settings
            onClicked: panel.openSettings()
        }

        PanelButton {
            objectName: "refreshButton"
            text: texts.refresh
            onClicked: panel.refresh()
        }

        PanelButton {
            objectName: "quitButton"
            text: texts.quit
            onClicked: panel.quit()
        }
    }
}
