// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

import QtQuick
import Stowly

// The check box glyph: a 24-point rounded square, filled with the accent colour and
// carrying a white check mark when selected.
Item {
    id: indicator

    property bool isSelected: false

    objectName: "checkboxIndicator"
    width: 24
    height: 24
    Accessible.ignored: true

    SmoothRectangle {
        objectName: "checkboxBox"
        anchors.fill: parent
        radius: 7
        color: indicator.isSelected ? Theme.accent : Theme.windowBackground
        antialiasing: true
    }

    // A Rectangle's border lies inside it; this one is grown by half the line so that
    // the 1.5 line is centred on the 24-point square's edge.
    SmoothRectangle {
        objectName: "checkboxStroke"
        x: -border.width / 2
        y: -border.width / 2
        width: indicator.width + border.width
        height: indicator.height + border.width
        radius: 7 + border.width / 2
        color: "transparent"
        border.width: 1.5
        border.color: indicator.isSelected ? Theme.accent : Theme.separator
        antialiasing: true
    }

    SymbolImage {
        objectName: "checkboxMark"
        anchors.centerIn: parent
        visible: indicator.isSelected
        name: "checkmark"
        tint: Theme.white
        // The glyph fills 60 % of its square: 18 gives the 11-point-wide mark of a
        // 12-point bold check.
        size: 18
    }
}
