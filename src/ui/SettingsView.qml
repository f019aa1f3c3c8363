import QtQuick
import QtQuick.Controls
import QtQuick.Layouts

// The settings content: which actions the panel offers and which is the default,
// launch at startup, and the state of accessibility access.
Rectangle {
    id: root

    objectName: "settingsView"
    width: 760
    height: 560
    color: theme.windowBackground

    Accessible.role: Accessible.Pane
    Accessible.name: texts.settingsWindowTitle

    // Escape closes the window, as in the panel; Tab scrolls the focused control into view.
    focus: true
    Keys.onEscapePressed: if (Window.window) Window.window.close()
    readonly property Item focusedItem: Window.activeFocusItem
    onFocusedItemChanged: scroller.reveal(focusedItem)

    Shortcut {
        sequence: "Ctrl+Q"
        context: Qt.WindowShortcut
        onActivated: panel.quit()
    }

    Flickable {
        id: scroller
        objectName: "settingsScroller"
        anchors.fill: parent
        contentWidth: width
        contentHeight: sections.height + 2 * 28
        boundsBehavior: Flickable.StopAtBounds
        clip: true
        // Shown for as long as there is more than fits, so the window says it scrolls.
        ScrollBar.vertical: ScrollBar {
            objectName: "settingsScrollBar"
            policy: scroller.contentHeight > scroller.height ? ScrollBar.AlwaysOn : ScrollBar.AlwaysOff
        }

        function reveal(item) {
            if (!item || !sections.contains(sections.mapFromItem(item, 0, 0)))
                return
            const top = item.mapToItem(scroller.contentItem, 0, 0).y - 12
            const bottom = top + item.height + 24
            if (top < contentY)
                contentY = Math.max(0, top)
            else if (bottom > contentY + height)
                contentY = Math.min(contentHeight - height, bottom - height)
        }

        Column {
            id: sections
            x: 28
            y: 28
            width: scroller.width - 2 * 28
            spacing: 28

            // ---- Actions ------------------------------------------------------------
            Column {
                objectName: "actionSection"
                width: parent.width
                spacing: 18

                RowLayout {
                    width: parent.width
                    spacing: 10

                    Text {
                        objectName: "primaryActionHeading"
                        text: texts.primaryAction
                        color: theme.primary
                        font.pixelSize: theme.titleSize
                        font.weight: Font.DemiBold
                        Accessible.role: Accessible.Heading
                        Accessible.name: text
                    }
                    Item {
                        Layout.fillWidth: true
                    }
                    Row {
                        objectName: "appliedFromMenuBarLabel"
                        spacing: theme.labelSpacing

                        SymbolImage {
                            objectName: "appliedFromMenuBarSymbol"
                            anchors.verticalCenter: parent.verticalCenter
                            name: "menubar.rectangle"
                            tint: theme.secondary
                            size: 14
                        }
                        Text {
                            objectName: "appliedFromMenuBar"
                            anchors.verticalCenter: parent.verticalCenter
                            text: texts.appliedFromMenuBar
                            color: theme.secondary
                            font.pixelSize: theme.footnoteSize
                            Accessible.role: Accessible.StaticText
                            Accessible.name: text
                        }
                    }
                }

                Text {
                    objectName: "actionsIntro"
                    width: parent.width
                    text: texts.actionsIntro
                    color: theme.secondary
                    font.pixelSize: theme.subheadlineSize
                    wrapMode: Text.Wrap
                    Accessible.role: Accessible.StaticText
                    Accessible.name: text
                }

                Row {
                    id: cardRow
                    objectName: "actionCards"
                    width: parent.width
                    spacing: 16

                    Repeater {
                        model: settings.cards

                        ActionOptionCard {
                            required property var modelData
                            option: modelData
                            isSelected: settings.selection[modelData.rawValue] === true
                            width: (cardRow.width - 3 * cardRow.spacing) / 4
                            anchors.verticalCenter: parent.verticalCenter
                            onSelect: settings.toggleAction(modelData.rawValue, isSelected)
                        }
                    }
                }

                Column {
                    spacing: 8

                    ComboBox {
                        id: picker
                        objectName: "defaultActionPicker"
                        width: 240
                        model: settings.pickerItems
                        currentIndex: settings.pickerIndex
                        onActivated: index => {
                            settings.choosePickerItem(index);
                            // A choice must not cut the selection loose from the stored default.
                            picker.currentIndex = Qt.binding(() => settings.pickerIndex);
                        }
                        Accessible.name: texts.defaultActionPicker
                        Accessible.onPressAction: if (enabled) picker.popup.open()

                        // The style's own item, plus a name and a press action for
                        // assistive technology (a press chooses the item).
                        delegate: MenuItem {
                            required property int index
                            required property string modelData

                            objectName: "defaultActionPickerItem"
                            width: ListView.view.width
                            text: modelData
                            font.weight: picker.currentIndex === index ? Font.DemiBold : Font.Normal
                            highlighted: picker.highlightedIndex === index
                            hoverEnabled: picker.hoverEnabled
                            Accessible.name: text
                            Accessible.onPressAction: if (enabled) clicked()
                        }
                    }
                }

                Rectangle {
                    objectName: "summaryBox"
                    width: summaryContent.implicitWidth + 2 * 16
                    height: summaryContent.implicitHeight + 2 * 16
                    radius: 16
                    color: theme.controlBackground

                    Row {
                        id: summaryContent
                        x: 16
                        y: 16
                        spacing: 12

                        SymbolImage {
                            name: "checkmark.circle.fill"
                            tint: theme.green
                            size: 18
                        }
                        Column {
                            spacing: 4

                            Text {
                                objectName: "defaultSummaryTitle"
                                text: settings.summaryTitle
                                color: theme.primary
                                font.pixelSize: theme.headlineSize
                                font.weight: Font.DemiBold
                                Accessible.role: Accessible.StaticText
                                Accessible.name: text
                            }
                            Text {
                                objectName: "defaultSummaryText"
                                text: settings.summaryText
                                color: theme.secondary
                                font.pixelSize: theme.subheadlineSize
                                Accessible.role: Accessible.StaticText
                                Accessible.name: text
                            }
                        }
                    }
                }
            }

            Rectangle {
                width: parent.width
                height: 1
                color: theme.separator
            }

            // ---- Startup ------------------------------------------------------------
            Column {
                objectName: "startupSection"
                width: parent.width
                spacing: 18

                Text {
                    objectName: "startupHeading"
                    text: texts.startup
                    color: theme.primary
                    font.pixelSize: theme.titleSize
                    font.weight: Font.DemiBold
                    Accessible.role: Accessible.Heading
                    Accessible.name: text
                }

                Column {
                    width: parent.width
                    spacing: 16

                    CheckboxRow {
                        objectName: "launchAtLoginRow"
                        width: parent.width
                        title: texts.launchAtStartupTitle
                        subtitle: texts.launchAtStartupSubtitle
                        isOn: settings.launchesAtLogin
                        onToggleRequested: value => settings.setLaunchAtLogin(value)
                    }
                    CheckboxRow {
                        objectName: "mainShortcutRow"
                        width: parent.width
                        title: texts.mainShortcutTitle
                        subtitle: texts.mainShortcutSubtitle
                        isOn: true
                        isEnabled: false
                    }
                }
            }

            Rectangle {
                width: parent.width
                height: 1
                color: theme.separator
            }

            // ---- Accessibility ------------------------------------------------------
            Column {
                objectName: "accessibilitySection"
                width: parent.width
                spacing: 18

                Text {
                    objectName: "accessibilityHeading"
                    text: texts.accessibility
                    color: theme.primary
                    font.pixelSize: theme.titleSize
                    font.weight: Font.DemiBold
                    Accessible.role: Accessible.Heading
                    Accessible.name: text
                }

                Rectangle {
                    objectName: "accessStatusBox"
                    width: accessContent.implicitWidth + 2 * 16
                    height: accessContent.implicitHeight + 2 * 16
                    radius: 16
                    color: theme.controlBackground

                    Row {
                        id: accessContent
                        x: 16
                        y: 16
                        spacing: 12

                        SymbolImage {
                            objectName: "accessSymbol"
                            name: settings.accessSymbol
                            tint: settings.accessGranted ? theme.green : theme.orange
                            size: 18
                        }
                        Column {
                            spacing: 4

                            Text {
                                objectName: "accessTitle"
                                text: settings.accessTitle
                                color: theme.primary
                                font.pixelSize: theme.headlineSize
                                font.weight: Font.DemiBold
                                Accessible.role: Accessible.StaticText
                                Accessible.name: text
                            }
                            Text {
                                objectName: "accessDetail"
                                text: settings.accessDetail
                                color: theme.secondary
                                font.pixelSize: theme.subheadlineSize
                                Accessible.role: Accessible.StaticText
                                Accessible.name: text
                            }
                        }
                    }
                }

                Row {
                    objectName: "accessButtons"
                    visible: !settings.accessGranted
                    spacing: 12

                    Button {
                        id: grantButton
                        objectName: "grantAccessButton"
                        text: texts.grantAccess
                        palette.buttonText: theme.white
                        // The prominent look: a solid accent fill (the style's own panel
                        // would wash the accent out into a pale gradient).
                        background: Rectangle {
                            objectName: "grantAccessFill"
                            implicitWidth: 80
                            implicitHeight: 24
                            radius: 4
                            color: grantButton.down ? Qt.darker(theme.accent, 1.2) : theme.accent
                            border.width: grantButton.activeFocus ? 2 : 0
                            border.color: Qt.darker(theme.accent, 1.6)
                        }
                        focusPolicy: Qt.StrongFocus
                        Keys.onReturnPressed: if (enabled) clicked()
                        Keys.onEnterPressed: if (enabled) clicked()
                        onClicked: settings.requestAccessibilityPermission()
                        Accessible.name: text
                        Accessible.onPressAction: if (enabled) clicked()
                    }
                    PanelButton {
                        objectName: "openSystemSettingsButton"
                        visible: settings.canOpenAccessSettings
                        text: settings.openAccessSettingsTitle
                        onClicked: settings.openAccessibilitySettings()
                    }
                }
            }
        }
    }

    // A fade over the bottom edge while more content lies below it.
    Rectangle {
        objectName: "moreBelowHint"
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.bottom: parent.bottom
        height: 28
        visible: scroller.contentHeight > scroller.height && !scroller.atYEnd
        gradient: Gradient {
            GradientStop { position: 0.0; color: Qt.rgba(theme.windowBackground.r, theme.windowBackground.g, theme.windowBackground.b, 0) }
            GradientStop { position: 1.0; color: theme.windowBackground }
        }
    }
}
