import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Varnis.Theme

// One field of the store texts with its counter and its findings. The text field binds to the
// model's text; an edit goes to the model, and the model's answer equals what is already typed,
// so the field keeps its cursor and its focus.
ColumnLayout {
    id: editor
    required property string fieldKey
    required property string label
    required property string title
    required property string text
    required property string countText
    required property string countName
    required property bool isOverLimit
    required property bool multiline
    required property string blockingText
    required property string warningText
    signal edited(string text)
    spacing: 2

    RowLayout {
        Layout.fillWidth: true
        Label {
            Layout.fillWidth: true
            text: editor.title
            font.bold: true
            elide: Text.ElideRight
        }
        Label {
            visible: text !== ""
            text: editor.countText
            color: editor.isOverLimit ? Theme.negative : palette.placeholderText
            Accessible.name: editor.countName
        }
    }
    // One line or a text area, as the field asks; the other one stays hidden and unnamed.
    TextField {
        Layout.fillWidth: true
        visible: !editor.multiline
        objectName: editor.multiline ? "" : "field_" + editor.fieldKey
        text: editor.text
        Accessible.name: editor.label
        onTextEdited: editor.edited(text)
    }
    ScrollView {
        Layout.fillWidth: true
        Layout.preferredHeight: 110
        visible: editor.multiline
        clip: true
        // The text wraps at the frame; only the height scrolls.
        contentWidth: availableWidth
        background: Rectangle {
            color: textArea.palette.base
            border.color: textArea.activeFocus ? textArea.palette.highlight : textArea.palette.mid
            radius: 2
        }
        TextArea {
            id: textArea
            objectName: editor.multiline ? "field_" + editor.fieldKey : ""
            text: editor.multiline ? editor.text : ""
            wrapMode: TextEdit.Wrap
            Accessible.name: editor.label
            // Also runs when the model sets the text; the model ignores a text it already has.
            onTextChanged: if (editor.multiline) editor.edited(text)
        }
    }
    Label {
        Layout.fillWidth: true
        visible: text !== ""
        text: editor.blockingText
        color: Theme.negative
        wrapMode: Text.WordWrap
        font.pixelSize: Theme.smallSize
    }
    Label {
        Layout.fillWidth: true
        visible: text !== ""
        text: editor.warningText
        color: Theme.caution
        wrapMode: Text.WordWrap
        font.pixelSize: Theme.smallSize
    }
}
