pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import QtQuick.Window

// Accounts, background watch and demo mode, in a window of fixed size.
Window {
    id: settings
    objectName: "settingsWindow"
    title: "Einstellungen"
    width: 600
    height: 520
    minimumWidth: 600
    maximumWidth: 600
    minimumHeight: 520
    maximumHeight: 520
    visible: false
    color: palette.window

    // Esc and Ctrl+W close the window, as its own close button does; an open popup takes Esc first.
    Shortcut {
        sequences: ["Esc", "Ctrl+W"]
        onActivated: settings.close()
    }

    ColumnLayout {
        anchors.fill: parent
        spacing: 0
        TabBar {
            id: tabs
            objectName: "settingsTabs"
            Layout.fillWidth: true
            TabButton {
                objectName: "accountsTab"
                text: "Accounts"
            }
            TabButton {
                objectName: "backgroundTab"
                text: "Hintergrund"
            }
            TabButton {
                objectName: "generalTab"
                text: "Allgemein"
            }
        }
        StackLayout {
            Layout.fillWidth: true
            Layout.fillHeight: true
            currentIndex: tabs.currentIndex
            AccountsPage {}
            BackgroundPage {}
            GeneralPage {}
        }
    }
}
