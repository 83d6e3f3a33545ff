import QtQuick
import QtQuick.Controls

ComboBox {
    id: switcher
    objectName: "accountSwitcher"
    visible: count > 0
    model: accountSettings.accounts
    textRole: "name"
    currentIndex: accountSettings.selectedRow
    Accessible.name: "Account wählen"
    onActivated: index => accountSettings.selectForWork(index)
}
