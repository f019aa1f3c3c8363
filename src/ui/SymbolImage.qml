import QtQuick

// One of our symbol glyphs (icons/<name>.svg) in one colour. The provider renders it at
// the size asked for, times the screen's pixel ratio, so it stays crisp.
Image {
    property string name
    property color tint: theme.secondary
    property real size: 16

    width: size
    height: size
    sourceSize: Qt.size(size, size)
    source: name.length > 0 ? theme.symbol(name, tint) : ""
    fillMode: Image.PreserveAspectFit
    smooth: true
    Accessible.ignored: true
}
