pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Varnis.App
import Varnis.Theme

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
            visible: Shell.accountSettings.showsAddButton
            ComboBox {
                id: accountChoice
                objectName: "settingsAccountChoice"
                Layout.fillWidth: true
                model: Shell.accountSettings.accounts
                textRole: "name"
                currentIndex: Shell.accountSettings.currentIndex
                Accessible.name: "Account zum Bearbeiten"
                onActivated: index => Shell.accountSettings.currentIndex = index
            }
            Button {
                objectName: "addAccountButton"
                text: Shell.accountSettings.addButtonText
                onClicked: {
                    Shell.addAccount.reset()
                    Shell.accountSettings.toggleAdding()
                }
            }
        }

        AddAccountForm {
            Layout.fillWidth: true
            visible: Shell.accountSettings.showsAddForm
        }

        ColumnLayout {
            Layout.fillWidth: true
            visible: Shell.accountSettings.showsAccountDetails
            spacing: 8

            Switch {
                objectName: "readOnlySwitch"
                text: "Nur lesen – schreibende Aufrufe sperren"
                checked: Shell.accountSettings.isReadOnly
                onToggled: Shell.accountSettings.isReadOnly = checked
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
                    text: Shell.accountSettings.vendorNumber
                    placeholderText: "für Verkaufsberichte"
                    inputMethodHints: Qt.ImhDigitsOnly
                    Accessible.name: "Vendor-Nummer"
                    onTextEdited: Shell.accountSettings.vendorNumber = text
                }
                Button {
                    objectName: "saveVendorNumberButton"
                    text: "Sichern"
                    onClicked: Shell.accountSettings.saveVendorNumber()
                }
            }
            Label {
                Layout.fillWidth: true
                visible: text !== ""
                text: Shell.accountSettings.vendorNumberMessage
                color: Theme.negative
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
                text: Shell.accountSettings.statusMessage
                wrapMode: Text.Wrap
            }
            Label {
                objectName: "accountErrorLabel"
                Layout.fillWidth: true
                visible: text !== ""
                text: Shell.accountSettings.errorMessage
                color: Theme.negative
                wrapMode: Text.Wrap
            }

            Button {
                objectName: "removeAccountButton"
                text: "Account entfernen …"
                enabled: Shell.accountSettings.canRemove
                onClicked: removeDialog.open()
            }
        }
    }

    Connections {
        target: Shell.addAccount
        function onSaved() {
            Shell.accountSettings.finishAdding()
        }
    }

    Dialog {
        id: removeDialog
        objectName: "removeAccountDialog"
        title: Shell.accountSettings.removalQuestion
        modal: true
        parent: Overlay.overlay
        anchors.centerIn: parent
        width: 420
        Label {
            width: parent.width
            text: Shell.accountSettings.removalExplanation
            wrapMode: Text.Wrap
        }
        footer: DialogButtonBox {
            Button {
                text: "Abbrechen"
                onClicked: removeDialog.close()
            }
            Button {
                objectName: "confirmRemoveButton"
                text: "Entfernen"
                onClicked: {
                    Shell.accountSettings.removeCurrent()
                    removeDialog.close()
                }
            }
        }
    }
}
