import QtQuick
import QtQuick.Controls
import QtQuick.Layouts

// The accounts: the one being edited with its switches and measurements, or the form for a new
// key. Scrolls as a whole; the scroll bar keeps a lane of its own beside the fields.
ScrollView {
    id: page
    objectName: "accountsPage"
    clip: true
    contentWidth: availableWidth
    contentHeight: content.implicitHeight + 24

    ColumnLayout {
        id: content
        x: 12
        y: 12
        width: page.availableWidth - 24 - page.ScrollBar.vertical.width
        spacing: 10

        RowLayout {
            Layout.fillWidth: true
            visible: accountSettings.showsAddButton
            ComboBox {
                id: accountChoice
                objectName: "settingsAccountChoice"
                Layout.fillWidth: true
                model: accountSettings.accounts
                textRole: "name"
                currentIndex: accountSettings.currentIndex
                Accessible.name: "Account zum Bearbeiten"
                onActivated: index => accountSettings.currentIndex = index
            }
            Button {
                objectName: "addAccountButton"
                text: accountSettings.addButtonText
                onClicked: {
                    addAccount.reset()
                    accountSettings.toggleAdding()
                }
            }
        }

        AddAccountForm {
            Layout.fillWidth: true
            visible: accountSettings.showsAddForm
        }

        ColumnLayout {
            Layout.fillWidth: true
            visible: accountSettings.showsAccountDetails
            spacing: 8

            Switch {
                objectName: "readOnlySwitch"
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
                    objectName: "vendorNumberField"
                    Layout.fillWidth: true
                    text: accountSettings.vendorNumber
                    placeholderText: "für Verkaufsberichte"
                    inputMethodHints: Qt.ImhDigitsOnly
                    Accessible.name: "Vendor-Nummer"
                    onTextEdited: accountSettings.vendorNumber = text
                }
                Button {
                    objectName: "saveVendorNumberButton"
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
                objectName: "accountStatusLabel"
                Layout.fillWidth: true
                visible: text !== ""
                text: accountSettings.statusMessage
                wrapMode: Text.Wrap
            }
            Label {
                objectName: "accountErrorLabel"
                Layout.fillWidth: true
                visible: text !== ""
                text: accountSettings.errorMessage
                color: "#8a1c1c"
                wrapMode: Text.Wrap
            }

            Button {
                objectName: "removeAccountButton"
                text: "Account entfernen …"
                enabled: accountSettings.canRemove
                onClicked: removeDialog.open()
            }
        }
    }

    Connections {
        target: addAccount
        function onSaved() {
            accountSettings.finishAdding()
        }
    }

    Dialog {
        id: removeDialog
        objectName: "removeAccountDialog"
        title: accountSettings.removalQuestion
        modal: true
        parent: Overlay.overlay
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
                objectName: "confirmRemoveButton"
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
