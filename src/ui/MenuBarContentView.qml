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
                ScrollBar.vertical: ScrollBar {
                    id: appScrollBar
                    objectName: "appListScrollBar"
                    // Off while nothing scrolls: the style's bar would still take presses
                    // over the rows' menu buttons.
                    policy: appList.contentHeight > appList.height ? ScrollBar.AsNeeded : ScrollBar.AlwaysOff
                }

                Accessible.role: Accessible.List
                Accessible.name: panel.openAppsHeading

                // Rows take the full width; only a list that scrolls leaves a lane for its
                // scroll bar, so that the bar never lies over a row's menu button.
                delegate: AppRowView {
                    width: appList.width - (appList.contentHeight > appList.height ? appScrollBar.width : 0)
                }
            }
        }

        Rectangle {
            width: parent.width
            height: 1
            color: theme.separator
        }

        Button {
            objectName: "settingsButton"
            text: texts.settings
            onClicked: panel.openSettings()
            Accessible.name: text
            Accessible.onPressAction: if (enabled) clicked()
        }

        Button {
            objectName: "refreshButton"
            text: texts.refresh
            onClicked: panel.refresh()
            Accessible.name: text
            Accessible.onPressAction: if (enabled) clicked()
        }

        Button {
            objectName: "quitButton"
            text: texts.quit
            onClicked: panel.quit()
            Accessible.name: text
            Accessible.onPressAction: if (enabled) clicked()
        }
    }
}
