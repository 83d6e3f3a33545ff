import QtQuick
import QtQuick.Controls
import QtQuick.Dialogs
import QtQuick.Layouts
import Varnis.App
import Varnis.Theme

// A new API key: the findings show up while the user types.
GroupBox {
    id: form
    title: Shell.addAccount.formTitle

    ColumnLayout {
        anchors.fill: parent
        spacing: 6

        GridLayout {
            Layout.fillWidth: true
            columns: 2
            Label {
                text: "Name"
            }
            TextField {
                Layout.fillWidth: true
                text: Shell.addAccount.name
                placeholderText: "z. B. Studio"
                objectName: "nameField"
                Accessible.name: "Name"
                onTextEdited: Shell.addAccount.name = text
            }
            Label {
                text: "Issuer-ID"
            }
            TextField {
                Layout.fillWidth: true
                text: Shell.addAccount.issuerID
                placeholderText: "57246542-96fe-1a63-e053-0824d011072a"
                objectName: "issuerIDField"
                Accessible.name: "Issuer-ID"
                onTextEdited: Shell.addAccount.issuerID = text
            }
            Label {
                text: "Key-ID"
            }
            TextField {
                Layout.fillWidth: true
                text: Shell.addAccount.keyID
                placeholderText: "ABCDE12345"
                objectName: "keyIDField"
                Accessible.name: "Key-ID"
                onTextEdited: Shell.addAccount.keyID = text
            }
            Label {
                text: "Vendor-Nummer"
            }
            TextField {
                Layout.fillWidth: true
                text: Shell.addAccount.vendorNumber
                placeholderText: "optional"
                objectName: "newVendorNumberField"
                Accessible.name: "Vendor-Nummer"
                onTextEdited: Shell.addAccount.vendorNumber = text
            }
            Label {
                text: "Schlüssel"
            }
            RowLayout {
                Layout.fillWidth: true
                TextField {
                    id: keyFileField
                    objectName: "keyFileField"
                    Layout.fillWidth: true
                    text: Shell.addAccount.keyFilePath
                    placeholderText: Shell.addAccount.keyFilePlaceholder
                    Accessible.name: "Pfad zur Schlüsseldatei"
                    // Return and leaving the field both take the typed path.
                    onEditingFinished: Shell.addAccount.loadPrivateKey(text)
                }
                Button {
                    objectName: "chooseKeyFileButton"
                    visible: Shell.addAccount.canChooseFile
                    text: "Datei wählen …"
                    onClicked: {
                        if (!form.keyDialog)
                            form.keyDialog = keyDialogComponent.createObject(form)
                        // Should the dialog fail to load, nothing is opened and the field stays.
                        if (form.keyDialog)
                            form.keyDialog.open()
                    }
                }
            }
        }

        Label {
            Layout.fillWidth: true
            visible: text !== ""
            text: Shell.addAccount.keyFileHint
            wrapMode: Text.Wrap
            color: palette.placeholderText
        }

        Label {
            Layout.fillWidth: true
            visible: text !== ""
            text: Shell.addAccount.vendorNumberMessage
            color: Theme.negative
            wrapMode: Text.Wrap
        }

        Repeater {
            model: Shell.addAccount.findings
            delegate: Label {
                required property string text
                required property string tone
                Layout.fillWidth: true
                color: Theme.toneColor(tone, palette.windowText)
                wrapMode: Text.Wrap
            }
        }

        Label {
            objectName: "addAccountError"
            Layout.fillWidth: true
            visible: text !== ""
            text: Shell.addAccount.errorMessage
            color: Theme.negative
            wrapMode: Text.Wrap
        }
        Label {
            objectName: "testResultLabel"
            visible: text !== ""
            text: Shell.addAccount.testResultText
            color: Theme.positive
        }

        RowLayout {
            BusyIndicator {
                running: Shell.addAccount.isTesting
                visible: running
                implicitWidth: 24
                implicitHeight: 24
            }
            Button {
                objectName: "testConnectionButton"
                text: "Verbindung testen"
                enabled: Shell.addAccount.canTest
                onClicked: Shell.addAccount.testConnection()
            }
            Button {
                objectName: "saveAccountButton"
                text: "Sichern"
                highlighted: true
                enabled: Shell.addAccount.canSave
                onClicked: Shell.addAccount.save()
            }
        }
    }

    // Made on first use: the dialog's QML is loaded only when someone asks for it, and should
    // making it fail there is no dialog to open rather than one without its implementation.
    property var keyDialog: null

    Component {
        id: keyDialogComponent
        FileDialog {
            objectName: "keyFileDialog"
            title: "API-Schlüssel wählen"
            currentFolder: Shell.addAccount.keyFileFolder
            nameFilters: ["API-Schlüssel (*.p8)", "Alle Dateien (*)"]
            onAccepted: Shell.addAccount.loadChosenKey(selectedFile)
        }
    }
}
