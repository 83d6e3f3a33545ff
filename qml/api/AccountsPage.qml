import QtQuick
import QtQuick.Controls
import QtQuick.Layouts

ScrollView {
    id: page
    // The form for a new key is open; without any account it is always open.
    property bool adding: false
    clip: true
    contentWidth: availableWidth

    ColumnLayout {
        width: page.availableWidth
        spacing: 10

        RowLayout {
            Layout.fillWidth: true
            Layout.margins: 12
            ComboBox {
                id: accountChoice
                objectName: "settingsAccountChoice"
                Layout.fillWidth: true
                visible: count > 0
                model: accountSettings.accounts
                textRole: "name"
                currentIndex: accountSettings.currentIndex
                Accessible.name: "Account zum Bearbeiten"
                onActivated: index => accountSettings.currentIndex = index
            }
            Button {
                objectName: "addAccountButton"
                visible: accountChoice.count > 0
                text: page.adding ? "Abbrechen" : "Account hinzufügen …"
                onClicked: {
                    addAccount.reset()
                    page.adding = !page.adding
                }
            }
        }

        AddAccountForm {
            id: addForm
            Layout.fillWidth: true
            Layout.leftMargin: 12
            Layout.rightMargin: 12
            visible: page.adding || accountChoice.count === 0
            onSaved: page.adding = false
        }

        ColumnLayout {
            Layout.fillWidth: true
            Layout.leftMargin: 12
            Layout.rightMargin: 12
            visible: accountChoice.count > 0 && !page.adding
            spacing: 8

            Switch {
                text: "Nur lesen – schreibende Aufrufe sperren"
                checked: accountSettings.isReadOnly
                onToggled: accountSettings.isReadOnly = checked
            }

            RowLayout {
                Layout.fillWidth: true
                Label {
                    text: "Vendor-Nummer"
                }
                TextField {
                    id: vendorField
                    Layout.fillWidth: true
                    text: accountSettings.vendorNumber
                    placeholderText: "für Verkaufsberichte"
                    inputMethodHints: Qt.ImhDigitsOnly
                    Accessible.name: "Vendor-Nummer"
                    onTextEdited: accountSettings.vendorNumber = text
                }
                Button {
                    text: "Sichern"
                    onClicked: accountSettings.saveVendorNumber()
                }
            }
            Label {
                Layout.fillWidth: true
                visible: text !== ""
                text: accountSettings.vendorNumberMessage
                color: "#8a1c1c"
                wrapMode: Text.Wrap
            }

            CapabilityCard {
                Layout.fillWidth: true
            }

            RateLimitPanel {
                Layout.fillWidth: true
            }

            Label {
                Layout.fillWidth: true
                visible: text !== ""
                text: accountSettings.statusMessage
                wrapMode: Text.Wrap
            }
            Label {
                Layout.fillWidth: true
                visible: text !== ""
                text: accountSettings.errorMessage
                color: "#8a1c1c"
                wrapMode: Text.Wrap
            }

            Button {
                text: "Account entfernen …"
                onClicked: removeDialog.open()
            }
        }
    }

    Dialog {
        id: removeDialog
        objectName: "removeAccountDialog"
        title: accountSettings.removalQuestion
        modal: true
        anchors.centerIn: parent
        width: 420
        Label {
            width: parent.width
            text: accountSettings.removalExplanation
            wrapMode: Text.Wrap
        }
        footer: DialogButtonBox {
            Button {
                text: "Abbrechen"
                DialogButtonBox.buttonRole: DialogButtonBox.RejectRole
            }
            Button {
                text: "Entfernen"
                DialogButtonBox.buttonRole: DialogButtonBox.DestructiveRole
                onClicked: {
                    accountSettings.removeCurrent()
                    removeDialog.close()
                }
            }
        }
    }
}
