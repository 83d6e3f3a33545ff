pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Controls
import QtQml.Models
import Varnis.App

// The menus of the main window with their shortcuts.
MenuBar {
    id: bar

    Menu {
        title: "&Varnis"
        delegate: ShortcutMenuItem {}
        width: 300
        Action {
            text: "Einstellungen …"
            shortcut: "Ctrl+,"
            onTriggered: Shell.requestSettings()
        }
        Action {
            text: "Änderungsprotokoll"
            shortcut: "Ctrl+Shift+L"
            onTriggered: Shell.requestChangeLog()
        }
        MenuSeparator {}
        Action {
            text: "Beenden"
            shortcut: "Ctrl+Q"
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
            enabled: Shell.workspace.hasSelectedApp
            onTriggered: Shell.workspace.openInNewWindow()
        }
        Action {
            text: "Apps neu laden"
            enabled: !Shell.workspace.isLoadingApps
            onTriggered: Shell.workspace.refreshApps()
        }
        MenuSeparator {}
        Action {
            text: "Sammelaktionen …"
            shortcut: "Ctrl+Shift+B"
            onTriggered: Shell.openBulkActions()
        }
    }
    Menu {
        title: "&Suchen"
        delegate: ShortcutMenuItem {}
        width: 300
        Action {
            text: "Befehlspalette"
            shortcut: "Ctrl+K"
            enabled: Shell.workspace.isCommandPaletteAvailable
        }
        Action {
            text: "In dieser App suchen"
            shortcut: "Ctrl+F"
            enabled: Shell.workspace.isSearchAvailable && Shell.workspace.hasSelectedApp
        }
        Action {
            text: "Jetzt auf Änderungen prüfen"
            shortcut: "Ctrl+Shift+R"
            enabled: Shell.workspace.isCheckChangesAvailable
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
            onTriggered: Shell.workspace.showAllApps()
        }
        MenuSeparator {}
        Instantiator {
            model: Shell.workspace.sections.sidebar
            delegate: Action {
                required property var model
                text: model.controlTitle
                shortcut: model.shortcut
                enabled: Shell.workspace.hasSelectedApp
                onTriggered: Shell.workspace.goToSection(model.position)
            }
            onObjectAdded: (index, object) => goToMenu.insertAction(index + 2, object)
            onObjectRemoved: (index, object) => goToMenu.removeAction(object)
        }
        MenuSeparator {}
        Action {
            text: Shell.workspace.reportsTitle
            shortcut: "Ctrl+B"
            onTriggered: Shell.workspace.showReports()
        }
    }
    Menu {
        title: "&Hilfe"
        delegate: ShortcutMenuItem {}
        width: 300
        Action {
            text: "Erste Schritte …"
            onTriggered: Shell.workspace.isOnboardingPresented = true
        }
    }
}
