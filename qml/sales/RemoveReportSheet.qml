pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Varnis.App

// The question before a kept report is removed for good.
Dialog {
    id: sheet
    objectName: "removeReportSheet"
    required property SalesViewModel model
    modal: true
    parent: Overlay.overlay
    anchors.centerIn: Overlay.overlay
    width: Math.min(Overlay.overlay ? Overlay.overlay.width - 80 : 460, 460)
    visible: model.isConfirmingRemoval
    closePolicy: Popup.CloseOnEscape
    title: "Aus dem Verlauf löschen"
    onRejected: model.cancelRemoval()

    ColumnLayout {
        anchors.fill: parent
        spacing: 8
        Label {
            objectName: "removalQuestion"
            Layout.fillWidth: true
            text: sheet.model.removalQuestion
            wrapMode: Text.Wrap
        }
        RowLayout {
            Layout.alignment: Qt.AlignRight
            Button {
                objectName: "cancelRemovalButton"
                text: "Abbrechen"
                onClicked: sheet.model.cancelRemoval()
            }
            Button {
                objectName: "confirmRemovalButton"
                text: "Löschen"
                onClicked: sheet.model.confirmRemoval()
            }
        }
    }
}
