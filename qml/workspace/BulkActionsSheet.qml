pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Varnis.Theme
import Varnis.App

// One action over many apps: the action, the apps, its inputs, and a result row per app.
Dialog {
    id: sheet
    objectName: "bulkActionsSheet"
    required property BulkActionsViewModel model
    title: "Sammelaktionen"
    modal: true
    parent: Overlay.overlay
    anchors.centerIn: Overlay.overlay
    width: Math.min(Overlay.overlay ? Overlay.overlay.width - 80 : 620, 620)
    height: Math.min(Overlay.overlay ? Overlay.overlay.height - 60 : 640, 640)
    visible: true
    // A run goes on to its last app; the sheet stays until then.
    closePolicy: sheet.model.isRunning ? Popup.NoAutoClose : Popup.CloseOnEscape
    onClosed: Shell.closeBulkActions()

    footer: DialogButtonBox {
        Button {
            objectName: "closeBulkActionsButton"
            text: "Schließen"
            enabled: !sheet.model.isRunning
            onClicked: sheet.close()
        }
        Button {
            objectName: "runBulkActionButton"
            text: "Ausführen …"
            highlighted: true
            enabled: sheet.model.isRunEnabled
            onClicked: sheet.model.requestRun()
        }
    }

    ScrollView {
        id: scroller
        anchors.fill: parent
        contentWidth: availableWidth
        clip: true

        ColumnLayout {
            width: scroller.availableWidth
            spacing: Theme.spacing

            Label {
                text: "Aktion"
                font.bold: true
            }
            ComboBox {
                objectName: "bulkActionChoice"
                Layout.fillWidth: true
                model: sheet.model.actionLabels
                currentIndex: sheet.model.action
                onActivated: index => sheet.model.action = index
            }
            Label {
                Layout.fillWidth: true
                text: sheet.model.explanation
                wrapMode: Text.Wrap
                color: palette.placeholderText
            }

            Label {
                Layout.topMargin: Theme.margin
                text: sheet.model.appsTitle
                font.bold: true
            }
            Repeater {
                model: sheet.model.apps
                delegate: CheckBox {
                    required property string appID
                    required property string title
                    required property bool isSelected
                    objectName: "bulkApp_" + appID
                    Layout.fillWidth: true
                    text: title
                    checked: isSelected
                    onToggled: sheet.model.toggle(appID)
                }
            }

            Label {
                Layout.topMargin: Theme.margin
                visible: sheet.model.showsWhatsNewInputs
                text: "Text"
                font.bold: true
            }
            TextArea {
                objectName: "bulkWhatsNewText"
                Layout.fillWidth: true
                Layout.preferredHeight: 90
                visible: sheet.model.showsWhatsNewInputs
                wrapMode: TextEdit.Wrap
                placeholderText: "Neu in dieser Version"
                text: sheet.model.whatsNewText
                onTextChanged: sheet.model.whatsNewText = text
            }
            Label {
                visible: sheet.model.showsWhatsNewInputs
                text: "Sprache"
            }
            ComboBox {
                objectName: "bulkLocaleChoice"
                Layout.fillWidth: true
                visible: sheet.model.showsWhatsNewInputs
                model: sheet.model.localeChoices
                currentIndex: sheet.model.localeIndex
                onActivated: index => sheet.model.localeIndex = index
            }

            Label {
                Layout.topMargin: Theme.margin
                visible: !sheet.model.showsWhatsNewInputs
                text: "Tester"
                font.bold: true
            }
            TextField {
                objectName: "bulkTesterEmail"
                Layout.fillWidth: true
                visible: !sheet.model.showsWhatsNewInputs
                placeholderText: "E-Mail"
                text: sheet.model.testerEmail
                onTextEdited: sheet.model.testerEmail = text
            }
            TextField {
                objectName: "bulkTesterFirstName"
                Layout.fillWidth: true
                visible: !sheet.model.showsWhatsNewInputs
                placeholderText: "Vorname (optional)"
                text: sheet.model.testerFirstName
                onTextEdited: sheet.model.testerFirstName = text
            }
            TextField {
                objectName: "bulkTesterLastName"
                Layout.fillWidth: true
                visible: !sheet.model.showsWhatsNewInputs
                placeholderText: "Nachname (optional)"
                text: sheet.model.testerLastName
                onTextEdited: sheet.model.testerLastName = text
            }

            Label {
                objectName: "bulkErrorMessage"
                Layout.fillWidth: true
                visible: sheet.model.errorMessage !== ""
                text: sheet.model.errorMessage
                color: Theme.negative
                wrapMode: Text.Wrap
            }

            Label {
                Layout.topMargin: Theme.margin
                visible: sheet.model.results.count > 0
                text: "Ergebnis"
                font.bold: true
            }
            Repeater {
                model: sheet.model.results
                delegate: Label {
                    required property bool succeeded
                    required property string line
                    Layout.fillWidth: true
                    text: line
                    color: succeeded ? Theme.positive : Theme.negative
                    wrapMode: Text.Wrap
                }
            }
        }
    }
}
