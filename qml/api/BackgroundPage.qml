pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Varnis.App

ScrollView {
    id: page
    objectName: "backgroundPage"
    clip: true
    contentWidth: availableWidth
    contentHeight: content.implicitHeight + 24

    ColumnLayout {
        id: content
        x: 12
        y: 12
        width: page.availableWidth - 24 - page.ScrollBar.vertical.width
        spacing: 10
        Label {
            Layout.fillWidth: true
            text: Shell.backgroundSettings.explanation
            wrapMode: Text.Wrap
        }
        Switch {
            objectName: "backgroundRefreshSwitch"
            text: "Im Hintergrund auf Änderungen prüfen"
            checked: Shell.backgroundSettings.isBackgroundRefreshEnabled
            onToggled: Shell.backgroundSettings.isBackgroundRefreshEnabled = checked
        }
        RowLayout {
            Layout.fillWidth: true
            Label {
                text: "Abstand"
            }
            ComboBox {
                objectName: "intervalChoice"
                Layout.fillWidth: true
                model: Shell.backgroundSettings.intervalTitles
                currentIndex: Shell.backgroundSettings.intervalIndex
                enabled: Shell.backgroundSettings.isBackgroundRefreshEnabled
                Accessible.name: "Abstand der Prüfungen"
                onActivated: index => Shell.backgroundSettings.intervalIndex = index
            }
        }
        Switch {
            objectName: "notificationsSwitch"
            text: "Mitteilungen zeigen"
            checked: Shell.backgroundSettings.areNotificationsEnabled
            onToggled: Shell.backgroundSettings.areNotificationsEnabled = checked
        }
        Switch {
            objectName: "menuBarSwitch"
            text: "Symbol in der Menüleiste"
            checked: Shell.backgroundSettings.isMenuBarEnabled
            onToggled: Shell.backgroundSettings.isMenuBarEnabled = checked
        }
    }
}
