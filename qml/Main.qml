import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import "workspace"
import "api"

ApplicationWindow {
    id: root
    objectName: "mainWindow"
    width: 1180
    height: 740
    minimumWidth: 900
    minimumHeight: 560
    visible: true
    title: workspace.windowTitle

    menuBar: MenuBar {
        Menu {
            title: "Varnis"
            Action {
                text: "Einstellungen …"
                shortcut: StandardKey.Preferences
                onTriggered: settingsWindow.open()
            }
            Action {
                text: "Änderungsprotokoll"
                onTriggered: changeLogWindow.open()
            }
            MenuSeparator {}
            Action {
                text: "Beenden"
                shortcut: StandardKey.Quit
                onTriggered: Qt.quit()
            }
        }
        Menu {
            title: "Ablage"
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
            title: "Suchen"
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
            title: "Gehe zu"
            Action {
                text: "Alle Apps"
                shortcut: "Ctrl+["
                onTriggered: workspace.showAllApps()
            }
            MenuSeparator {}
            Instantiator {
                model: workspace.sections
                delegate: Action {
                    required property var modelData
                    text: modelData.controlTitle
                    shortcut: modelData.shortcut
                    enabled: workspace.hasSelectedApp
                    onTriggered: workspace.goToSection(modelData.position)
                }
                onObjectAdded: (index, object) => goToMenu.insertAction(index + 2, object)
                onObjectRemoved: (index, object) => goToMenu.removeAction(object)
            }
        }
        Menu {
            title: "Hilfe"
            Action {
                text: "Erste Schritte …"
                onTriggered: workspace.isOnboardingPresented = true
            }
        }
    }

    header: ColumnLayout {
        spacing: 0
        DemoBanner {
            Layout.fillWidth: true
            visible: workspace.isDemoActive
            text: workspace.demoBannerText
        }
        NoticeBar {
            Layout.fillWidth: true
            visible: workspace.appsError !== ""
            text: workspace.appsError
            tone: "negative"
        }
        NoticeBar {
            Layout.fillWidth: true
            visible: workspace.cacheAgeText !== ""
            text: workspace.cacheAgeText
            tone: "neutral"
        }
    }

    RowLayout {
        anchors.fill: parent
        spacing: 0
        visible: !workspace.showsEmptyState

        AppListPane {
            Layout.preferredWidth: 280
            Layout.fillHeight: true
        }
        ToolSeparator {
            Layout.fillHeight: true
        }
        SectionSidebar {
            Layout.preferredWidth: 210
            Layout.fillHeight: true
            visible: workspace.hasSelectedApp
            sections: workspace.sidebarSections
            selectedSection: workspace.selectedSection
            onSectionChosen: raw => workspace.selectSection(raw)
        }
        ToolSeparator {
            Layout.fillHeight: true
            visible: workspace.hasSelectedApp
        }
        SectionContent {
            Layout.fillWidth: true
            Layout.fillHeight: true
            hasApp: workspace.hasSelectedApp
            title: workspace.selectedSectionTitle
            isBuilt: workspace.isSectionBuilt
            emptyText: workspace.emptySectionText
            overviewRows: workspace.overviewRows
        }
    }

    EmptyStatePage {
        anchors.fill: parent
        visible: workspace.showsEmptyState
        onOpenSettings: settingsWindow.open()
        onStartDemo: workspace.isDemoModeEnabled = true
        onShowOnboarding: workspace.isOnboardingPresented = true
    }

    footer: TaskCenterBar {}

    SettingsWindow {
        id: settingsWindow
    }

    ChangeLogWindow {
        id: changeLogWindow
    }

    WriteConfirmationSheet {
        model: writeConfirmation
    }

    OnboardingSheet {}
}
