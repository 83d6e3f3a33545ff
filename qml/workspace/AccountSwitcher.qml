pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Controls
import Varnis.App

ComboBox {
    id: switcher
    objectName: "accountSwitcher"
    visible: count > 0
    model: Shell.accountSettings.accounts
    textRole: "name"
    currentIndex: Shell.accountSettings.selectedRow
    Accessible.name: "Account wählen"
    onActivated: index => Shell.accountSettings.selectForWork(index)
}
