import QtQuick
import QtQuick.Controls

// The menus of the main window with their shortcuts.
MenuBar {
    id: bar
    signal settingsRequested
    signal changeLogRequested

    Menu {
        title: "&Varnis"
        delegate: ShortcutMenuItem {}
        width: 300
        Action {
            text: "Einstellungen …"
            shortcut: "Ctrl+,"
            onTriggered: bar.settingsRequested()
        }
        Action {
            text: "Änderungsprotokoll"
            shortcut: "Ctrl+Shift+L"
            onTriggered: bar.changeLogRequested()
        }
        MenuSeparator {}
        Action {
            text: "Beenden"
            shortcut: StandardKey.Quit
            onTriggered: Qt.quit()
        }
    }
    Menu {
        title: "&Ablage"
        delegate: ShortcutMenuItem {}
        width: 300
        Action {
            text: "In neuem Fenster öffnen"
            shortcut: "Ctrl+Shift+N"
            enabled: workspace.hasSelectedApp
            onTriggered: workspace.openInNewWindow()
        }
        Action {
            text: "Apps neu laden"
            enabled: !workspace.isLoadingApps
            onTriggered: workspace.refreshApps()
        }
    }
    Menu {
        title: "&Suchen"
        delegate: ShortcutMenuItem {}
        width: 300
        Action {
            text: "Befehlspalette"
            shortcut: "Ctrl+K"
            enabled: workspace.isCommandPaletteAvailable
        }
        Action {
            text: "In dieser App suchen"
            shortcut: "Ctrl+F"
            enabled: workspace.isSearchAvailable && workspace.hasSelectedApp
        }
        Action {
            text: "Jetzt auf Änderungen prüfen"
            shortcut: "Ctrl+Shift+R"
            enabled: workspace.isCheckChangesAvailable
        }
    }
    Menu {
        id: goToMenu
        title: "&Gehe zu"
        delegate: ShortcutMenuItem {}
        width: 300
        Action {
            text: "Alle Apps"
            shortcut: "Ctrl+["
            onTriggered: workspace.showAllApps()
        }
        MenuSeparator {}
        Instantiator {
            model: workspace.sections.sidebar
            delegate: Action {
                required property var model
                text: model.controlTitle
                shortcut: model.shortcut
                enabled: workspace.hasSelectedApp
                onTriggered: workspace.goToSection(model.position)
            }
            onObjectAdded: (index, object) => goToMenu.insertAction(index + 2, object)
            onObjectRemoved: (index, object) => goToMenu.removeAction(object)
        }
    }
    Menu {
        title: "&Hilfe"
        delegate: ShortcutMenuItem {}
        width: 300
        Action {
            text: "Erste Schritte …"
            onTriggered: workspace.isOnboardingPresented = true
        }
    }
}
