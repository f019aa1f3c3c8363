import QtQuick
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

    objectName: "appRow_" + index
    implicitHeight: content.implicitHeight + 4

    Accessible.role: Accessible.ListItem
    Accessible.name: name + ", " + statusLine

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
                color: theme.primary
                font.pixelSize: theme.subheadlineSize
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
                color: theme.secondary
                font.pixelSize: theme.captionSize
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
            implicitWidth: badgeText.implicitWidth + 16
            implicitHeight: badgeText.implicitHeight + 8
            radius: height / 2
            color: Qt.rgba(row.statusColor.r, row.statusColor.g, row.statusColor.b, 0.14)

            Text {
                id: badgeText
                objectName: "rowBadgeText"
                anchors.centerIn: parent
                text: row.status
                color: row.statusColor
                font.pixelSize: theme.captionSize
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
            focusPolicy: Qt.NoFocus
            Layout.alignment: Qt.AlignVCenter
            text: row.menuName
            display: AbstractButton.IconOnly
            // The menu hangs from the button's trailing edge, so that it stays inside the
            // panel's margins instead of being pushed against the window's edge.
            onClicked: rowMenu.popup(menuButton, menuButton.width - rowMenu.width, menuButton.height)

            Accessible.role: Accessible.ButtonMenu
            Accessible.name: row.menuName
            Accessible.onPressAction: if (enabled) clicked()

            background: Item {}
            contentItem: SymbolImage {
                name: "ellipsis.circle"
                tint: theme.secondary
                size: 17
            }

            Menu {
                id: rowMenu
                objectName: "rowMenu"

                MenuItem {
                    objectName: "rowMenuOpen"
                    text: texts.openApp
                    onTriggered: openApps.openApp(row.index)
                    Accessible.name: text
                    Accessible.onPressAction: if (enabled) clicked()
                }
                MenuItem {
                    objectName: "rowMenuCloseApp"
                    text: texts.closeApp
                    onTriggered: openApps.terminateApp(row.index)
                    Accessible.name: text
                    Accessible.onPressAction: if (enabled) clicked()
                }
                MenuItem {
                    objectName: "rowMenuForceQuit"
                    text: texts.forceQuitApp
                    onTriggered: openApps.forceTerminateApp(row.index)
                    Accessible.name: text
                    Accessible.onPressAction: if (enabled) clicked()
                }
            }
        }
    }
}
