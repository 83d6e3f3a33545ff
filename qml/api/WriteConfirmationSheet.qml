pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Varnis.Theme
import Varnis.App

// Shows a write field by field before it happens.
Dialog {
    id: sheet
    objectName: "writeConfirmationSheet"
    required property WriteConfirmationViewModel model
    modal: true
    parent: Overlay.overlay
    anchors.centerIn: Overlay.overlay
    width: Math.min(Overlay.overlay ? Overlay.overlay.width - 80 : 560, 560)
    visible: model.isPresented
    closePolicy: Popup.CloseOnEscape
    onRejected: model.cancel()
    // Closed before the write is handed on: a dialog that its loader drops while still shown
    // takes its layouts down mid-way and crashes.
    onAccepted: model.confirm()

    header: RowLayout {
        spacing: 8
        Label {
            Layout.leftMargin: 16
            Layout.topMargin: 12
            text: sheet.model.symbol
            font.pixelSize: Theme.pageTitleSize
            color: sheet.model.isDestructive ? Theme.negative : Theme.accent
            Accessible.ignored: true
        }
        Label {
            Layout.fillWidth: true
            Layout.topMargin: 12
            text: sheet.model.title
            font.pixelSize: Theme.headingSize
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
                required property var model
                Layout.fillWidth: true
                field: model.field
                before: model.before
                after: model.after
                hasBefore: model.hasBefore
                spokenLabel: model.spokenLabel
            }
        }
        Label {
            Layout.fillWidth: true
            visible: sheet.model.isDestructive
            text: sheet.model.destructiveNoticeLine
            color: Theme.negative
        }
    }

    footer: DialogButtonBox {
        Button {
            objectName: "cancelWriteButton"
            text: "Abbrechen"
            onClicked: sheet.reject()
        }
        Button {
            objectName: "confirmWriteButton"
            text: sheet.model.confirmLabel
            highlighted: true
            onClicked: sheet.accept()
        }
    }
}
