// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

import QtQuick
import Stowly

// One of our symbol glyphs (icons/<name>.svg) in one colour. The provider renders it at
// the size asked for, times the screen's pixel ratio, so it stays crisp.
Image {
    property string name
    property color tint: Theme.secondary
    property real size: 16

    width: size
    height: size
    sourceSize.width: size
    sourceSize.height: size
    source: name.length > 0 ? Theme.symbol(name, tint) : ""
    fillMode: Image.PreserveAspectFit
    smooth: true
    Accessible.ignored: true
}
