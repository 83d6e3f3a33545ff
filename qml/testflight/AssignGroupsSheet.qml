pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Varnis.Theme
import Varnis.App

// The groups one build is in; a switch per group assigns or withdraws it at once.
Dialog {
    id: sheet
    objectName: "assignGroupsSheet"
    required property TestFlightViewModel model
    modal: true
    parent: Overlay.overlay
    anchors.centerIn: Overlay.overlay
    width: Math.min(Overlay.overlay ? Overlay.overlay.width - 80 : 460, 460)
    visible: model.assignmentBuildID !== ""
    closePolicy: Popup.CloseOnEscape
    title: model.assignmentTitle
    onRejected: model.endAssigningGroups()

    ColumnLayout {
        anchors.fill: parent
        spacing: 6
        BusyIndicator {
            visible: sheet.model.isLoadingAssignment
            running: visible
        }
        Repeater {
            model: sheet.model.assignmentGroups
            delegate: CheckBox {
                id: choice
                required property string groupId
                required property string name
                required property bool isAssigned
                required property bool isPending
                required property string accessibleName
                objectName: "assign_" + groupId
                text: name
                checked: isAssigned
                enabled: !isPending && sheet.model.pendingGroupID === ""
                Accessible.name: accessibleName
                // The model decides; the box shows what it says, not the click.
                onClicked: {
                    checked = Qt.binding(() => choice.isAssigned)
                    sheet.model.startToggleGroupAssignment(groupId)
                }
            }
        }
        Label {
            Layout.fillWidth: true
            visible: text !== ""
            text: sheet.model.assignmentError
            color: Theme.negative
            wrapMode: Text.Wrap
        }
        Button {
            Layout.alignment: Qt.AlignRight
            objectName: "closeAssignmentButton"
            text: "Fertig"
            onClicked: sheet.reject()
        }
    }
}
