import QtQuick
import QtQuick.Controls
import QtQuick.Layouts

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
            text: backgroundSettings.explanation
            wrapMode: Text.Wrap
        }
        Switch {
            objectName: "backgroundRefreshSwitch"
            text: "Im Hintergrund auf Änderungen prüfen"
            checked: backgroundSettings.isBackgroundRefreshEnabled
            onToggled: backgroundSettings.isBackgroundRefreshEnabled = checked
        }
        RowLayout {
            Layout.fillWidth: true
            Label {
                text: "Abstand"
            }
            ComboBox {
                objectName: "intervalChoice"
                Layout.fillWidth: true
                model: backgroundSettings.intervalTitles
                currentIndex: backgroundSettings.intervalIndex
                enabled: backgroundSettings.isBackgroundRefreshEnabled
                Accessible.name: "Abstand der Prüfungen"
                onActivated: index => backgroundSettings.intervalIndex = index
            }
        }
        Switch {
            objectName: "notificationsSwitch"
            text: "Mitteilungen zeigen"
            checked: backgroundSettings.areNotificationsEnabled
            onToggled: backgroundSettings.areNotificationsEnabled = checked
        }
        Switch {
            objectName: "menuBarSwitch"
            text: "Symbol in der Menüleiste"
            checked: backgroundSettings.isMenuBarEnabled
            onToggled: backgroundSettings.isMenuBarEnabled = checked
        }
    }
}
