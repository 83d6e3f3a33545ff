import QtQuick
import QtQuick.Controls
import QtQuick.Layouts

// What is already known of the app.
GridLayout {
    id: page
    property var rows: []
    columns: 2
    columnSpacing: 16
    rowSpacing: 6

    Repeater {
        model: page.rows
        delegate: Label {
            required property var modelData
            required property int index
            Layout.row: index
            Layout.column: 0
            text: modelData.label
            color: palette.placeholderText
        }
    }
    Repeater {
        model: page.rows
        delegate: Label {
            required property var modelData
            required property int index
            Layout.row: index
            Layout.column: 1
            Layout.fillWidth: true
            text: modelData.value
            textFormat: Text.PlainText
            elide: Text.ElideRight
            Accessible.name: modelData.label + ": " + modelData.value
        }
    }
    Item {
        Layout.row: page.rows.length
        Layout.fillHeight: true
    }
}
