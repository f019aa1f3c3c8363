import QtQuick

// The check box glyph: a 24-point rounded square, filled with the accent colour and
// carrying a white check mark when selected.
Item {
    id: indicator

    property bool isSelected: false

    objectName: "checkboxIndicator"
    width: 24
    height: 24
    Accessible.ignored: true

    Rectangle {
        objectName: "checkboxBox"
        anchors.fill: parent
        radius: 7
        color: indicator.isSelected ? theme.accent : theme.windowBackground
        border.width: 1.5
        border.color: indicator.isSelected ? theme.accent : theme.separator
    }

    SymbolImage {
        objectName: "checkboxMark"
        anchors.centerIn: parent
        visible: indicator.isSelected
        name: "checkmark"
        tint: theme.white
        size: 13
    }
}
