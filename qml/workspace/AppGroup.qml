pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Controls

// A short list above all apps (favourites, recently used); hidden while empty.
Column {
    id: group
    property string title
    property var model
    visible: repeater.count > 0

    Label {
        leftPadding: 10
        topPadding: 8
        bottomPadding: 2
        text: group.title
        font.bold: true
        color: palette.placeholderText
    }
    Repeater {
        id: repeater
        model: group.model
        delegate: AppRow {
            width: group.width
        }
    }
}
