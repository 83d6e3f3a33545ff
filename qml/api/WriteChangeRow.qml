pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Controls
import QtQuick.Layouts

// One field of a write: before → after, read out as one sentence.
RowLayout {
    id: row
    property string field
    property string before
    property string after
    property bool hasBefore
    property string spokenLabel
    spacing: 6
    Accessible.role: Accessible.StaticText
    Accessible.name: spokenLabel

    Label {
        text: row.field
        font.bold: true
        Accessible.ignored: true
    }
    Label {
        visible: row.hasBefore
        text: row.before
        font.strikeout: true
        color: palette.placeholderText
        elide: Text.ElideRight
        Layout.maximumWidth: 180
        Accessible.ignored: true
    }
    Label {
        visible: row.hasBefore
        text: "→"
        Accessible.ignored: true
    }
    Label {
        Layout.fillWidth: true
        text: row.after
        wrapMode: Text.Wrap
        Accessible.ignored: true
    }
}
