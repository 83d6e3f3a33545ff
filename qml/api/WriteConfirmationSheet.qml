import QtQuick
import QtQuick.Controls
import QtQuick.Layouts

// Shows a write field by field before it happens.
Dialog {
    id: sheet
    objectName: "writeConfirmationSheet"
    required property var model
    modal: true
    parent: Overlay.overlay
    anchors.centerIn: Overlay.overlay
    width: Math.min(Overlay.overlay ? Overlay.overlay.width - 80 : 560, 560)
    visible: model.isPresented
    closePolicy: Popup.CloseOnEscape
    onRejected: model.cancel()

    header: RowLayout {
        spacing: 8
        Label {
            Layout.leftMargin: 16
            Layout.topMargin: 12
            text: sheet.model.isDestructive ? "⚠" : "⬆"
            font.pixelSize: 20
            color: sheet.model.isDestructive ? "#8a1c1c" : "#1f5fa8"
            Accessible.ignored: true
        }
        Label {
            Layout.fillWidth: true
            Layout.topMargin: 12
            text: sheet.model.title
            font.pixelSize: 17
            font.bold: true
            wrapMode: Text.Wrap
            Accessible.role: Accessible.Heading
        }
    }

    ColumnLayout {
        anchors.fill: parent
        spacing: 8
        Label {
            Layout.fillWidth: true
            text: sheet.model.explanation
            wrapMode: Text.Wrap
        }
        Repeater {
            model: sheet.model.changes
            delegate: WriteChangeRow {
                required property var modelData
                Layout.fillWidth: true
                field: modelData.field
                before: modelData.before
                after: modelData.after
                hasBefore: modelData.hasBefore
                spokenLabel: modelData.spokenLabel
            }
        }
        Label {
            Layout.fillWidth: true
            visible: sheet.model.isDestructive
            text: "⊘ " + sheet.model.destructiveNotice
            color: "#8a1c1c"
        }
    }

    footer: DialogButtonBox {
        Button {
            objectName: "cancelWriteButton"
            text: "Abbrechen"
            DialogButtonBox.buttonRole: DialogButtonBox.RejectRole
        }
        Button {
            objectName: "confirmWriteButton"
            text: sheet.model.confirmLabel
            highlighted: true
            DialogButtonBox.buttonRole: DialogButtonBox.AcceptRole
            onClicked: sheet.model.confirm()
        }
    }
}
