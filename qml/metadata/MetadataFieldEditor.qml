import QtQuick
import QtQuick.Controls
import QtQuick.Layouts

// One field of the store texts with its counter and its findings.
ColumnLayout {
    id: editor
    property var field
    signal edited(string text)
    spacing: 2

    RowLayout {
        Layout.fillWidth: true
        Label {
            text: editor.field.label + (editor.field.isRestricted ? " (nur mit neuer Version)" : "")
            font.bold: true
        }
        Item {
            Layout.fillWidth: true
        }
        Label {
            text: editor.field.countText
            color: editor.field.isOverLimit ? "#8a1c1c" : palette.placeholderText
            Accessible.name: editor.field.label + ": " + editor.field.countText + " Zeichen"
        }
    }
    Loader {
        Layout.fillWidth: true
        Layout.preferredHeight: editor.field.multiline ? 110 : implicitHeight
        sourceComponent: editor.field.multiline ? area : line
    }
    Component {
        id: line
        TextField {
            text: editor.field.text
            Accessible.name: editor.field.label
            onTextEdited: editor.edited(text)
        }
    }
    Component {
        id: area
        ScrollView {
          TextArea {
            text: editor.field.text
            wrapMode: TextEdit.Wrap
            Accessible.name: editor.field.label
            onTextChanged: if (text !== editor.field.text) editor.edited(text)
          }
        }
    }
    Repeater {
        model: editor.field.findings
        delegate: Label {
            required property var modelData
            Layout.fillWidth: true
            text: (modelData.isBlocking ? "✗ " : "⚠ ") + modelData.message
            color: modelData.isBlocking ? "#8a1c1c" : "#7a5a00"
            wrapMode: Text.Wrap
            font.pixelSize: 12
        }
    }
}
