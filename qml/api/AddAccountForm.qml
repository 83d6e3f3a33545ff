import QtQuick
import QtQuick.Controls
import QtQuick.Dialogs
import QtQuick.Layouts

// A new API key: the findings show up while the user types.
GroupBox {
    id: form
    signal saved
    title: "Neuer Account"

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
                text: addAccount.name
                placeholderText: "z. B. Studio"
                Accessible.name: "Name"
                onTextEdited: addAccount.name = text
            }
            Label {
                text: "Issuer-ID"
            }
            TextField {
                Layout.fillWidth: true
                text: addAccount.issuerID
                placeholderText: "57246542-96fe-1a63-e053-0824d011072a"
                Accessible.name: "Issuer-ID"
                onTextEdited: addAccount.issuerID = text
            }
            Label {
                text: "Key-ID"
            }
            TextField {
                Layout.fillWidth: true
                text: addAccount.keyID
                placeholderText: "ABCDE12345"
                Accessible.name: "Key-ID"
                onTextEdited: addAccount.keyID = text
            }
            Label {
                text: "Vendor-Nummer"
            }
            TextField {
                Layout.fillWidth: true
                text: addAccount.vendorNumber
                placeholderText: "optional"
                Accessible.name: "Vendor-Nummer"
                onTextEdited: addAccount.vendorNumber = text
            }
            Label {
                text: "Schlüssel"
            }
            RowLayout {
                Layout.fillWidth: true
                Label {
                    Layout.fillWidth: true
                    text: addAccount.hasPrivateKey ? addAccount.privateKeyFilename : "Keine Datei gewählt"
                    elide: Text.ElideMiddle
                }
                Button {
                    text: "Datei wählen …"
                    onClicked: keyDialog.open()
                }
            }
        }

        Label {
            Layout.fillWidth: true
            visible: text !== ""
            text: addAccount.vendorNumberMessage
            color: "#8a1c1c"
            wrapMode: Text.Wrap
        }

        Repeater {
            model: addAccount.findings
            delegate: Label {
                required property var modelData
                Layout.fillWidth: true
                text: (modelData.severity === "blocking" ? "✗ " : "⚠ ") + modelData.message
                color: modelData.severity === "blocking" ? "#8a1c1c" : "#7a5a00"
                wrapMode: Text.Wrap
            }
        }

        Label {
            Layout.fillWidth: true
            visible: text !== ""
            text: addAccount.errorMessage
            color: "#8a1c1c"
            wrapMode: Text.Wrap
        }
        Label {
            visible: addAccount.testSucceeded
            text: "✓ Verbindung steht."
            color: "#1d6b2a"
        }

        RowLayout {
            BusyIndicator {
                running: addAccount.isTesting
                visible: running
                implicitWidth: 24
                implicitHeight: 24
            }
            Button {
                text: "Verbindung testen"
                enabled: addAccount.isValid && !addAccount.isTesting
                onClicked: addAccount.testConnection()
            }
            Button {
                text: "Sichern"
                highlighted: true
                enabled: addAccount.isValid && !addAccount.isTesting
                onClicked: addAccount.save()
            }
        }
    }

    Connections {
        target: addAccount
        function onSaved() {
            form.saved()
        }
    }

    FileDialog {
        id: keyDialog
        title: "API-Schlüssel wählen"
        nameFilters: ["API-Schlüssel (*.p8)", "Alle Dateien (*)"]
        onAccepted: addAccount.loadPrivateKey(selectedFile.toString())
    }
}
