pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Varnis.Theme
import Varnis.App

// A new external group, by its name.
Dialog {
    id: sheet
    objectName: "createGroupSheet"
    required property TestFlightViewModel model
    modal: true
    parent: Overlay.overlay
    anchors.centerIn: Overlay.overlay
    width: Math.min(Overlay.overlay ? Overlay.overlay.width - 80 : 480, 480)
    visible: model.isCreatingGroup
    closePolicy: Popup.CloseOnEscape
    title: "Neue Gruppe"
    onRejected: model.isCreatingGroup = false

    ColumnLayout {
        anchors.fill: parent
        spacing: 8
        TextField {
            objectName: "newGroupNameField"
            Layout.fillWidth: true
            text: sheet.model.newGroupName
            placeholderText: "Name der Gruppe"
            Accessible.name: "Name der Gruppe"
            onTextEdited: sheet.model.newGroupName = text
            onAccepted: sheet.model.startCreateGroup()
        }
        Label {
            Layout.fillWidth: true
            text: sheet.model.newGroupNote
            wrapMode: Text.Wrap
            color: palette.placeholderText
        }
        Label {
            Layout.fillWidth: true
            visible: text !== ""
            text: sheet.model.groupActionError
            color: Theme.negative
            wrapMode: Text.Wrap
        }
        RowLayout {
            Layout.alignment: Qt.AlignRight
            Button {
                objectName: "cancelCreateGroupButton"
                text: "Abbrechen"
                onClicked: sheet.model.isCreatingGroup = false
            }
            Button {
                objectName: "confirmCreateGroupButton"
                text: "Anlegen"
                enabled: !sheet.model.isSavingGroup
                onClicked: sheet.model.startCreateGroup()
            }
        }
    }
}
