import QtQuick
import QtQuick.Controls
import QtQuick.Layouts

Pane {
    ColumnLayout {
        anchors.fill: parent
        spacing: 10
        Label {
            Layout.fillWidth: true
            text: backgroundSettings.explanation
            wrapMode: Text.Wrap
        }
        Switch {
            text: "Im Hintergrund auf Änderungen prüfen"
            checked: backgroundSettings.isBackgroundRefreshEnabled
            onToggled: backgroundSettings.isBackgroundRefreshEnabled = checked
        }
        RowLayout {
            Label {
                text: "Abstand"
            }
            ComboBox {
                model: backgroundSettings.intervalTitles
                currentIndex: backgroundSettings.intervalIndex
                enabled: backgroundSettings.isBackgroundRefreshEnabled
                Accessible.name: "Abstand der Prüfungen"
                onActivated: index => backgroundSettings.intervalIndex = index
            }
        }
        Switch {
            text: "Mitteilungen zeigen"
            checked: backgroundSettings.areNotificationsEnabled
            onToggled: backgroundSettings.areNotificationsEnabled = checked
        }
        Switch {
            text: "Symbol in der Menüleiste"
            checked: backgroundSettings.isMenuBarEnabled
            onToggled: backgroundSettings.isMenuBarEnabled = checked
        }
        Item {
            Layout.fillHeight: true
        }
    }
}
