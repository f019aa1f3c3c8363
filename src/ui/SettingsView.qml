// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

pragma ComponentBehavior: Bound

import QtQuick
import Stowly
import QtQuick.Controls
import QtQuick.Layouts

// The settings content: which actions the panel offers and which is the default,
// launch at startup, and the state of accessibility access.
Rectangle {
    id: root

    // Set by the program that makes the view.
    required property SettingsViewModel settings

    objectName: "settingsView"
    width: 760
    height: 560
    color: Theme.windowBackground

    Accessible.role: Accessible.Pane
    Accessible.name: Texts.settingsWindowTitle

    // Escape closes the window, as in the panel; Tab scrolls the focused control into view.
    focus: true
    Keys.onEscapePressed: if (Window.window) Window.window.close()
    readonly property Item focusedItem: Window.activeFocusItem
    onFocusedItemChanged: scroller.reveal(focusedItem)

    Shortcut {
        sequence: "Ctrl+Q"
        context: Qt.WindowShortcut
        onActivated: root.settings.quit()
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
        // Drawn like the panel's list bar, in the scheme's own colours, over a faint lane.
        ScrollBar.vertical: ScrollBar {
            id: settingsScrollBar
            objectName: "settingsScrollBar"
            policy: scroller.contentHeight > scroller.height ? ScrollBar.AlwaysOn : ScrollBar.AlwaysOff
            padding: 2
            contentItem: Rectangle {
                objectName: "settingsScrollBarHandle"
                implicitWidth: 7
                radius: width / 2
                color: Theme.secondary
                opacity: settingsScrollBar.active ? 0.8 : 0.5
            }
            background: Rectangle {
                objectName: "settingsScrollBarLane"
                color: Theme.separator
                opacity: 0.5
            }
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
                        text: Texts.primaryAction
                        color: Theme.primary
                        font.family: Theme.fontFamily
                        font.pixelSize: Theme.titleSize
                        font.weight: Font.DemiBold
                        Accessible.role: Accessible.Heading
                        Accessible.name: text
                    }
                    Item {
                        Layout.fillWidth: true
                    }
                    Row {
                        objectName: "appliedFromMenuBarLabel"
                        spacing: Theme.labelSpacing

                        SymbolImage {
                            objectName: "appliedFromMenuBarSymbol"
                            anchors.verticalCenter: parent.verticalCenter
                            name: "menubar.rectangle"
                            tint: Theme.secondary
                            size: 14
                        }
                        Text {
                            objectName: "appliedFromMenuBar"
                            anchors.verticalCenter: parent.verticalCenter
                            text: Texts.appliedFromMenuBar
                            color: Theme.secondary
                            font.family: Theme.fontFamily
                            font.pixelSize: Theme.footnoteSize
                            Accessible.role: Accessible.StaticText
                            Accessible.name: text
                        }
                    }
                }

                Text {
                    objectName: "actionsIntro"
                    width: parent.width
                    text: Texts.actionsIntro
                    color: Theme.secondary
                    font.family: Theme.fontFamily
                    font.pixelSize: Theme.subheadlineSize
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
                        model: root.settings.cards

                        ActionOptionCard {
                            required property var modelData
                            option: modelData
                            isSelected: root.settings.selection[modelData.rawValue] === true
                            width: (cardRow.width - 3 * cardRow.spacing) / 4
                            anchors.verticalCenter: parent.verticalCenter
                            onSelect: root.settings.toggleAction(modelData.rawValue, isSelected)
                        }
                    }
                }

                Column {
                    spacing: 8

                    PanelComboBox {
                        id: picker
                        objectName: "defaultActionPicker"
                        width: 240
                        model: root.settings.pickerItems
                        currentIndex: root.settings.pickerIndex
                        onActivated: index => {
                            root.settings.choosePickerItem(index);
                            // A choice must not cut the selection loose from the stored default.
                            picker.currentIndex = Qt.binding(() => root.settings.pickerIndex);
                        }
                        Accessible.name: Texts.defaultActionPicker
                    }
                }

                SmoothRectangle {
                    objectName: "summaryBox"
                    width: summaryContent.implicitWidth + 2 * 16
                    height: summaryContent.implicitHeight + 2 * 16
                    radius: 16
                    color: Theme.controlBackground

                    Row {
                        id: summaryContent
                        x: 16
                        y: 16
                        spacing: 12

                        SymbolImage {
                            name: "checkmark.circle.fill"
                            tint: Theme.green
                            size: 18
                        }
                        Column {
                            spacing: 4

                            Text {
                                objectName: "defaultSummaryTitle"
                                text: root.settings.summaryTitle
                                color: Theme.primary
                                font.family: Theme.fontFamily
                                font.pixelSize: Theme.headlineSize
                                font.weight: Font.DemiBold
                                Accessible.role: Accessible.StaticText
                                Accessible.name: text
                            }
                            Text {
                                objectName: "defaultSummaryText"
                                text: root.settings.summaryText
                                color: Theme.secondary
                                font.family: Theme.fontFamily
                                font.pixelSize: Theme.subheadlineSize
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
                color: Theme.separator
            }

            // ---- Startup ------------------------------------------------------------
            Column {
                objectName: "startupSection"
                width: parent.width
                spacing: 18

                Text {
                    objectName: "startupHeading"
                    text: Texts.startup
                    color: Theme.primary
                    font.family: Theme.fontFamily
                    font.pixelSize: Theme.titleSize
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
                        title: Texts.launchAtStartupTitle
                        subtitle: Texts.launchAtStartupSubtitle
                        isOn: root.settings.launchesAtLogin
                        onToggleRequested: value => root.settings.setLaunchAtLogin(value)
                    }
                    CheckboxRow {
                        objectName: "mainShortcutRow"
                        width: parent.width
                        title: Texts.mainShortcutTitle
                        subtitle: Texts.mainShortcutSubtitle
                        isOn: true
                        isEnabled: false
                    }
                }
            }

            Rectangle {
                width: parent.width
                height: 1
                color: Theme.separator
            }

            // ---- Accessibility ------------------------------------------------------
            Column {
                objectName: "accessibilitySection"
                width: parent.width
                spacing: 18

                Text {
                    objectName: "accessibilityHeading"
                    text: Texts.accessibility
                    color: Theme.primary
                    font.family: Theme.fontFamily
                    font.pixelSize: Theme.titleSize
                    font.weight: Font.DemiBold
                    Accessible.role: Accessible.Heading
                    Accessible.name: text
                }

                SmoothRectangle {
                    objectName: "accessStatusBox"
                    width: accessContent.implicitWidth + 2 * 16
                    height: accessContent.implicitHeight + 2 * 16
                    radius: 16
                    color: Theme.controlBackground

                    Row {
                        id: accessContent
                        x: 16
                        y: 16
                        spacing: 12

                        SymbolImage {
                            objectName: "accessSymbol"
                            name: root.settings.accessSymbol
                            tint: root.settings.accessComplete ? Theme.green : Theme.orange
                            size: 18
                        }
                        Column {
                            spacing: 4

                            Text {
                                objectName: "accessTitle"
                                text: root.settings.accessTitle
                                color: Theme.primary
                                font.family: Theme.fontFamily
                                font.pixelSize: Theme.headlineSize
                                font.weight: Font.DemiBold
                                Accessible.role: Accessible.StaticText
                                Accessible.name: text
                            }
                            Text {
                                objectName: "accessDetail"
                                text: root.settings.accessDetail
                                // A longer detail (windows out of reach) wraps inside the box.
                                width: Math.min(implicitWidth, 600)
                                wrapMode: Text.WordWrap
                                color: Theme.secondary
                                font.family: Theme.fontFamily
                                font.pixelSize: Theme.subheadlineSize
                                Accessible.role: Accessible.StaticText
                                Accessible.name: text
                            }
                        }
                    }
                }

                Row {
                    objectName: "accessButtons"
                    visible: !root.settings.accessGranted
                    spacing: 12

                    Button {
                        id: grantButton
                        objectName: "grantAccessButton"
                        text: Texts.grantAccess
                        topPadding: 5
                        bottomPadding: 5
                        leftPadding: 12
                        rightPadding: 12
                        // The prominent look: a solid accent fill (the style's own panel
                        // would wash the accent out into a pale gradient).
                        background: SmoothRectangle {
                            objectName: "grantAccessFill"
                            implicitWidth: 80
                            implicitHeight: 26
                            radius: 7
                            color: grantButton.down ? Qt.darker(Theme.accentFill, 1.2) : Theme.accentFill
                            border.width: grantButton.activeFocus ? 2 : 0
                            border.color: Qt.darker(Theme.accentFill, 1.6)
                        }
                        contentItem: Text {
                            objectName: "grantAccessText"
                            text: grantButton.text
                            textFormat: Text.PlainText
                            color: Theme.white
                            font.family: Theme.fontFamily
                            font.pixelSize: Theme.subheadlineSize
                            font.weight: Font.Medium
                            horizontalAlignment: Text.AlignHCenter
                            verticalAlignment: Text.AlignVCenter
                            Accessible.ignored: true
                        }
                        focusPolicy: Qt.StrongFocus
                        Keys.onReturnPressed: if (enabled) clicked()
                        Keys.onEnterPressed: if (enabled) clicked()
                        onClicked: root.settings.requestAccessibilityPermission()
                        Accessible.name: text
                        Accessible.onPressAction: if (enabled) clicked()
                    }
                    PanelButton {
                        objectName: "openSystemSettingsButton"
                        visible: root.settings.canOpenAccessSettings
                        text: root.settings.openAccessSettingsTitle
                        onClicked: root.settings.openAccessibilitySettings()
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
            GradientStop { position: 0.0; color: Qt.rgba(Theme.windowBackground.r, Theme.windowBackground.g, Theme.windowBackground.b, 0) }
            GradientStop { position: 1.0; color: Theme.windowBackground }
        }
    }
}
